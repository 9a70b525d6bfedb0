// What the host programs ask of the operating system, on Windows.
#include <io.h>
#include <windows.h>
// After windows.h, which they need.
#include <psapi.h>
#include <shellapi.h>
#include <timeapi.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <memory>

#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

std::atomic<bool> stopWasRequested = false;
UINT earlierCodePage = 0;

BOOL WINAPI requestStop(DWORD event) {
  const bool isSecond = stopWasRequested.exchange(true);
  if (event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT) {
    return isSecond ? FALSE : TRUE;
  }
  // When the console is closed or the user logs off, the process ends as soon as this returns.
  // Until Windows ends it, another thread can finish the recording.
  Sleep(INFINITE);
  return TRUE;
}

std::string utf8FromWide(const wchar_t* text) {
  const int length = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
  if (length <= 0) {
    return {};
  }
  std::string utf8(static_cast<std::size_t>(length), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8.data(), length, nullptr, nullptr);
  utf8.pop_back();  // the terminator
  return utf8;
}

std::wstring wideFromUtf8(const std::string& text) {
  return pathFromUtf8(text).wstring();
}

}  // namespace

std::vector<std::string> commandLineArguments(int, char**) {
  // main()'s arguments are in the system's code page and lack the characters outside it.
  int count = 0;
  const std::unique_ptr<LPWSTR[], decltype(&LocalFree)> wide(
      CommandLineToArgvW(GetCommandLineW(), &count), &LocalFree);
  std::vector<std::string> arguments;
  for (int index = 1; wide != nullptr && index < count; ++index) {
    arguments.push_back(utf8FromWide(wide[static_cast<std::size_t>(index)]));
  }
  return arguments;
}

void useUtf8Console() {
  earlierCodePage = GetConsoleOutputCP();
  if (earlierCodePage != 0 && SetConsoleOutputCP(CP_UTF8) != 0) {
    // The shell goes on to use the same console.
    static_cast<void>(std::atexit([] { SetConsoleOutputCP(earlierCodePage); }));
  }
}

bool isTerminal(std::FILE* stream) {
  return _isatty(_fileno(stream)) != 0;
}

void catchStopRequests() {
  SetConsoleCtrlHandler(requestStop, TRUE);
}

bool stopRequested() {
  return stopWasRequested;
}

void useFineSleep() {
  timeBeginPeriod(1);  // until the process ends
}

std::int64_t peakMemory() {
  PROCESS_MEMORY_COUNTERS counters = {};
  return GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters) != 0
             ? static_cast<std::int64_t>(counters.PeakWorkingSetSize)
             : 0;
}

std::tm localTime(std::time_t time) {
  std::tm calendar = {};
  static_cast<void>(localtime_s(&calendar, &time));
  return calendar;
}

std::FILE* openFile(const std::filesystem::path& path, const std::string& mode) {
  return _wfopen(path.c_str(), wideFromUtf8(mode).c_str());
}

bool seekFile(std::FILE* file, std::int64_t position) {
  return _fseeki64(file, position, SEEK_SET) == 0;
}

bool truncateFile(std::FILE* file, std::int64_t size) {
  const errno_t error = _chsize_s(_fileno(file), size);
  if (error != 0) {
    errno = error;
  }
  return error == 0;
}

std::string environmentVariable(const char* name) {
  const std::wstring wideName = wideFromUtf8(name);
  std::wstring value(GetEnvironmentVariableW(wideName.c_str(), nullptr, 0), L'\0');
  GetEnvironmentVariableW(wideName.c_str(), value.data(), static_cast<DWORD>(value.size()));
  return value.empty() ? "" : utf8FromWide(value.c_str());
}

void setEnvironmentVariable(const char* name, const std::string& value) {
  SetEnvironmentVariableW(wideFromUtf8(name).c_str(), wideFromUtf8(value).c_str());
}

}  // namespace orvane::host
