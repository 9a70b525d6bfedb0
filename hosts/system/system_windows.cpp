// What the host programs ask of the operating system, on Windows.
#include <fcntl.h>
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

int errnoOf(DWORD error) {
  switch (error) {
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
      return EBUSY;
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
      return EACCES;
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
      return ENOENT;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
      return EEXIST;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      return ENOSPC;
    case ERROR_INVALID_NAME:
      return EINVAL;
    default:
      return EIO;
  }
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

void stayAwake(bool isWanted) {
  SetThreadExecutionState(ES_CONTINUOUS | (isWanted ? ES_SYSTEM_REQUIRED : 0));
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

std::FILE* openFileToWrite(const std::filesystem::path& path) {
  // Without FILE_SHARE_WRITE, this is the lock. With FILE_SHARE_DELETE, the file can be renamed. A
  // handle with the access right DELETE would keep most programs from reading the file.
  const HANDLE handle =
      CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE,
                  nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    errno = errnoOf(GetLastError());
    return nullptr;
  }
  const int descriptor =
      _open_osfhandle(reinterpret_cast<std::intptr_t>(handle), _O_RDWR | _O_BINARY | _O_NOINHERIT);
  if (descriptor < 0) {
    CloseHandle(handle);
    return nullptr;
  }
  std::FILE* const file = _fdopen(descriptor, "r+b");
  if (file == nullptr) {
    _close(descriptor);
  }
  return file;
}

bool isBeingWritten(const std::filesystem::path& path) {
  const HANDLE handle = CreateFileW(path.c_str(), GENERIC_WRITE,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    return GetLastError() == ERROR_SHARING_VIOLATION;
  }
  CloseHandle(handle);
  return false;
}

bool renameFile(const std::filesystem::path& from, const std::filesystem::path& to,
                bool mayReplace) {
  if (mayReplace && isBeingWritten(to)) {
    errno = EBUSY;
    return false;
  }
  if (MoveFileExW(from.c_str(), to.c_str(), mayReplace ? MOVEFILE_REPLACE_EXISTING : 0U) == 0) {
    errno = errnoOf(GetLastError());
    return false;
  }
  return true;
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

bool flushToDisk(std::FILE* file) {
  return _commit(_fileno(file)) == 0;
}

std::string environmentVariable(const char* name) {
  const std::wstring wideName = wideFromUtf8(name);
  std::wstring value(GetEnvironmentVariableW(wideName.c_str(), nullptr, 0), L'\0');
  GetEnvironmentVariableW(wideName.c_str(), value.data(), static_cast<DWORD>(value.size()));
  return value.empty() ? "" : utf8FromWide(value.c_str());
}

std::filesystem::path userDataFile(const char* name) {
  const std::string profile = environmentVariable("APPDATA");
  return profile.empty() ? std::filesystem::path() : pathFromUtf8(profile) / "Orvane" / name;
}

void setEnvironmentVariable(const char* name, const std::string& value) {
  SetEnvironmentVariableW(wideFromUtf8(name).c_str(), wideFromUtf8(value).c_str());
}

}  // namespace orvane::host
