// live_view, which shows a camera's picture live: the start of the program.
#include <windows.h>

#include <array>
#include <exception>
#include <filesystem>
#include <string>
#include <utility>
#include <variant>

#include "live_view/command_line.hpp"
#include "live_view/live_settings.hpp"
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

std::filesystem::path programDirectory() {
  std::array<wchar_t, 32768> path{};  // as long as a path may be
  const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
  return std::filesystem::path(std::wstring(path.data(), length)).parent_path();
}

void openWindow(LiveOptions options) {
  const std::filesystem::path file =
      options.keepsSettings ? settingsFile() : std::filesystem::path();
  RememberedSettings settings;
  try {
    settings = readSettings(file);
  } catch (const std::exception& error) {
    options.warning = error.what();
  }
  fillIn(options, settings, programDirectory());
  runLiveWindow(std::move(options), std::move(settings), [&](const RememberedSettings& now) {
    try {
      if (!file.empty()) {
        writeSettings(file, now);
      }
    } catch (const std::exception& error) {
      tell(error.what(), MB_ICONWARNING);
    }
  });
}

int run() {
  const LiveCommand command = parseLiveCommandLine(commandLineArguments(0, nullptr));
  if (const auto* help = std::get_if<std::string>(&command)) {
    tell(*help, MB_ICONINFORMATION);
  } else {
    openWindow(std::get<LiveOptions>(command));
  }
  return 0;
}

}  // namespace

}  // namespace orvane::host

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  using namespace orvane::host;
  return exitStatusOf(run, [](const char* text) { tell(text, MB_ICONERROR); });
}
