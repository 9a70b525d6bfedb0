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
#include "live_view/text_window_windows.hpp"
#include "system/failures.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

// A program with a window has no console to write to.
void tell(const std::string& utf8, UINT icon) {
  MessageBoxW(nullptr, pathFromUtf8(utf8).c_str(), L"Live view", MB_OK | icon);
}

// Writes to the file or the program that takes this program's output; false if there is none.
bool writeToOutput(const std::string& utf8) {
  const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
  const DWORD type = output == nullptr ? FILE_TYPE_UNKNOWN : GetFileType(output);
  DWORD written = 0;
  return (type == FILE_TYPE_DISK || type == FILE_TYPE_PIPE) &&
         WriteFile(output, utf8.data(), static_cast<DWORD>(utf8.size()), &written, nullptr) != 0;
}

void showText(const std::string& utf8) {
  if (!writeToOutput(utf8 + "\n")) {
    showTextWindow(L"Live view", utf8);
  }
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
  if (const auto* text = std::get_if<std::string>(&command)) {
    showText(*text);
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
