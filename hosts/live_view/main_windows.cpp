// live_view, which shows a camera's picture live: the start of the program, and its error messages.
#include <windows.h>

#include <exception>
#include <string>
#include <variant>

#include "live_view/command_line.hpp"
#include "live_view/live_window_windows.hpp"
#include "system/failures.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

constexpr int done = 0;
constexpr int failed = 1;
constexpr int wrongArguments = 2;

// A program with a window has no console to write to.
void tell(const std::string& utf8, UINT icon) {
  MessageBoxW(nullptr, pathFromUtf8(utf8).c_str(), L"Live view", MB_OK | icon);
}

int report(const std::exception& error, int status) {
  tell(error.what(), MB_ICONERROR);
  return status;
}

int run() {
  try {
    const LiveCommand command = parseLiveCommandLine(commandLineArguments(0, nullptr));
    if (const auto* help = std::get_if<std::string>(&command)) {
      tell(*help, MB_ICONINFORMATION);
    } else {
      runLiveWindow(std::get<LiveOptions>(command));
    }
    return done;
  } catch (const UsageError& error) {
    return report(error, wrongArguments);
  } catch (const std::exception& error) {
    return report(error, failed);
  }
}

}  // namespace

}  // namespace orvane::host

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  return orvane::host::run();
}
