// The platform layer for Windows: LoadLibraryExW, GetProcAddress and code pages.
#include "platform/platform.hpp"

#include <windows.h>

#include <locale.h>
#include <limits>
#include <system_error>

#include "platform/path_join.hpp"

namespace orvane::platform {

namespace {

[[noreturn]] void throwWindowsError(DWORD code) {
  throw std::system_error(static_cast<int>(code), std::system_category());
}

std::wstring wideFromBytes(std::string_view bytes, UINT codePage) {
  if (bytes.empty()) {
    return {};
  }
  if (bytes.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
    throwWindowsError(ERROR_INVALID_PARAMETER);
  }
  const int byteCount = static_cast<int>(bytes.size());
  const int length =
      MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, bytes.data(), byteCount, nullptr, 0);
  if (length <= 0) {
    throwWindowsError(GetLastError());
  }
  std::wstring wide(static_cast<std::size_t>(length), L'\0');
  if (MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, bytes.data(), byteCount, wide.data(),
                          length) <= 0) {
    throwWindowsError(GetLastError());
  }
  return wide;
}

// The code page of this process's narrow file functions.
UINT fileNameCodePage() {
  if (___lc_codepage_func() == CP_UTF8) {
    return CP_UTF8;
  }
  return AreFileApisANSI() != 0 ? CP_ACP : CP_OEMCP;
}

}  // namespace

NativeString libraryPath(std::string_view directory, std::string_view baseName) {
  const std::wstring wideDirectory = wideFromBytes(directory, CP_UTF8);
  const std::string fileName = std::string(baseName) + ".dll";
  return joinWindowsPath(wideDirectory, wideFromBytes(fileName, fileNameCodePage()));
}

Module loadLibrary(const NativeString& path) noexcept {
  return LoadLibraryExW(path.c_str(), nullptr,
                        LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
}

FunctionAddress findFunction(Module library, const char* name) noexcept {
  return reinterpret_cast<FunctionAddress>(GetProcAddress(static_cast<HMODULE>(library), name));
}

std::string utf8FromDisplayName(const NativeChar* text) {
  const int length = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
  if (length <= 0) {
    return {};
  }
  std::string utf8(static_cast<std::size_t>(length), '\0');
  if (WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8.data(), length, nullptr, nullptr) <= 0) {
    return {};
  }
  utf8.pop_back();  // the terminator
  return utf8;
}

}  // namespace orvane::platform
