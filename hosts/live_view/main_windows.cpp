// live_view, which shows a camera's picture live: the start of the program.
#include <windows.h>

#include <string>
#include <variant>

#include "live_view/command_line.hpp"
#include "live_view/live_window_windows.hpp"
#include "system/failures.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

// A program with a window has no console to write to.
void tell(const std::string& utf8, UINT icon) {
  MessageBoxW(nullptr, pathFromUtf8(utf8).c_str(), L"Live view", MB_OK | icon);
}

int run() {
  const LiveCommand command = parseLiveCommandLine(commandLineArguments(0, nullptr));
  if (const auto* help = std::get_if<std::string>(&command)) {
    tell(*help, MB_ICONINFORMATION);
  } else {
    runLiveWindow(std::get<LiveOptions>(command));
  }
  return 0;
}

}  // namespace

}  // namespace orvane::host

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  using namespace orvane::host;
  return exitStatusOf(run, [](const char* text) { tell(text, MB_ICONERROR); });
}
