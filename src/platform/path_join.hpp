// Joins a directory and a file name by the rules of each system. Pure text functions: they look at
// no file. Both are here so that each system's tests cover both.
#pragma once

#include <string>
#include <string_view>

namespace orvane::platform {

/// Joins by the rules of Windows: inserts a backslash unless the directory is empty, ends with a
/// backslash or a slash, or is a bare drive ("C:", which means the drive's current directory).
inline std::wstring joinWindowsPath(std::wstring_view directory, std::wstring_view fileName) {
  const bool isBareDrive = directory.size() == 2 && directory[1] == L':' &&
                           ((directory[0] >= L'A' && directory[0] <= L'Z') ||
                            (directory[0] >= L'a' && directory[0] <= L'z'));
  const bool isComplete =
      directory.empty() || isBareDrive || directory.back() == L'\\' || directory.back() == L'/';
  std::wstring path(directory);
  if (!isComplete) {
    path += L'\\';
  }
  return path += fileName;
}

/// Joins by the rules of POSIX: inserts a slash unless the directory is empty or ends with one.
inline std::string joinPosixPath(std::string_view directory, std::string_view fileName) {
  std::string path(directory);
  if (!directory.empty() && directory.back() != '/') {
    path += '/';
  }
  return path += fileName;
}

}  // namespace orvane::platform
