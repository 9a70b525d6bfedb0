#include "core/system.hpp"

#include <sys/stat.h>

#include <cstdlib>

#ifdef _WIN32
#  include <windows.h>
#endif

namespace orvane::sim {

#ifdef _WIN32

namespace {

std::wstring wide(const std::string& text) {
  const int length =
      MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
  std::wstring result(static_cast<std::size_t>(length), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), result.data(),
                      length);
  return result;
}

std::string narrow(const std::wstring& text) {
  const int length = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()),
                                         nullptr, 0, nullptr, nullptr);
  std::string result(static_cast<std::size_t>(length), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), result.data(), length,
                      nullptr, nullptr);
  return result;
}

}  // namespace

File openFile(const std::string& path, const char* mode) {
  return File(_wfopen(wide(path).c_str(), wide(mode).c_str()));
}

std::int64_t sizeOf(std::FILE* file) {
  struct _stat64 status = {};
  const bool isFile = _fstat64(_fileno(file), &status) == 0 && (status.st_mode & _S_IFREG) != 0;
  return isFile ? status.st_size : -1;
}

bool seek(std::FILE* file, std::int64_t position) {
  return _fseeki64(file, position, SEEK_SET) == 0;
}

std::string environmentVariable(const char* name) {
  const std::wstring wideName = wide(name);
  std::wstring value(GetEnvironmentVariableW(wideName.c_str(), nullptr, 0), L'\0');
  value.resize(
      GetEnvironmentVariableW(wideName.c_str(), value.data(), static_cast<DWORD>(value.size())));
  return narrow(value);
}

#else

File openFile(const std::string& path, const char* mode) {
  return File(std::fopen(path.c_str(), mode));
}

std::int64_t sizeOf(std::FILE* file) {
  struct stat status = {};
  return fstat(fileno(file), &status) == 0 && S_ISREG(status.st_mode) ? status.st_size : -1;
}

bool seek(std::FILE* file, std::int64_t position) {
  return fseeko(file, position, SEEK_SET) == 0;
}

std::string environmentVariable(const char* name) {
  // Called while the library is being loaded, when no other thread changes the environment.
  const char* const value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
  return value == nullptr ? "" : value;
}

#endif

}  // namespace orvane::sim
