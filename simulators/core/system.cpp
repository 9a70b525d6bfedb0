#include "core/system.hpp"

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <thread>

#ifdef _WIN32
#  include <windows.h>
#else
#  include <unistd.h>
#endif

namespace orvane::sim {

void neverReturn() {
  while (true) {
    std::this_thread::sleep_for(std::chrono::hours(1));
  }
}

void violateAccess() {
  // In the first page of memory, which no system gives to a program. Not null: a compiler may drop
  // a write to that. Read from a variable that it cannot see through.
  static volatile std::uintptr_t firstPage = 8;
  *reinterpret_cast<volatile int*>(  // NOLINT(performance-no-int-to-ptr)
      static_cast<std::uintptr_t>(firstPage)) = 0;
  std::abort();  // never gets here
}

#ifdef _WIN32

std::filesystem::path pathFromUtf8(const std::string& text) {
  const auto length = static_cast<int>(text.size());  // UTF-16 has no more units than UTF-8 bytes
  std::wstring wide(text.size(), L'\0');
  wide.resize(static_cast<std::size_t>(
      MultiByteToWideChar(CP_UTF8, 0, text.data(), length, wide.data(), length)));
  return wide;
}

std::string environmentVariable(const char* name) {
  const std::filesystem::path wideName = pathFromUtf8(name);
  std::wstring value(GetEnvironmentVariableW(wideName.c_str(), nullptr, 0), L'\0');
  value.resize(
      GetEnvironmentVariableW(wideName.c_str(), value.data(), static_cast<DWORD>(value.size())));
  std::string text(3 * value.size(), '\0');  // a unit of UTF-16 has at most 3 bytes in UTF-8
  text.resize(static_cast<std::size_t>(
      WideCharToMultiByte(CP_UTF8, 0, value.data(), static_cast<int>(value.size()), text.data(),
                          static_cast<int>(text.size()), nullptr, nullptr)));
  return text;
}

void setEnvironmentVariable(const char* name, const std::string& value) {
  SetEnvironmentVariableW(pathFromUtf8(name).c_str(), pathFromUtf8(value).c_str());
}

std::string processId() {
  return std::to_string(GetCurrentProcessId());
}

#else

std::filesystem::path pathFromUtf8(const std::string& text) {
  return text;
}

std::string environmentVariable(const char* name) {
  // Called at the first call into the library, when no other thread changes the environment.
  const char* const value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
  return value == nullptr ? "" : value;
}

void setEnvironmentVariable(const char* name, const std::string& value) {
  // Called only when a command is wrong, and the simulated SDK is of no use.
  static_cast<void>(setenv(name, value.c_str(), 1));  // NOLINT(concurrency-mt-unsafe)
}

std::string processId() {
  return std::to_string(getpid());
}

#endif

}  // namespace orvane::sim
