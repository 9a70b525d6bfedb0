// Loading libraries on Windows.
#include <windows.h>

#include <array>

#include "sdk_check/system_loader.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

constexpr std::size_t longestPath = 32'768;

// The system's message for an error code. "%1" in it stands for the file's name.
std::string systemMessage(DWORD code, const std::filesystem::path& file) {
  std::array<wchar_t, 1024> text{};
  const DWORD length = FormatMessageW(
      FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
      nullptr, code, 0, text.data(), static_cast<DWORD>(text.size()), nullptr);
  std::wstring message(text.data(), length);
  message.erase(message.find_last_not_of(L" \r\n") + 1);
  const std::size_t place = message.find(L"%1");
  if (place != std::wstring::npos) {
    message.replace(place, 2, file.filename().wstring());
  }
  return message.empty() ? "unknown" : utf8FromPath(message);
}

std::filesystem::path fileOf(HMODULE module) {
  std::wstring text(longestPath, L'\0');
  text.resize(GetModuleFileNameW(module, text.data(), static_cast<DWORD>(text.size())));
  return text;
}

std::filesystem::path systemDirectory() {
  std::wstring text(longestPath, L'\0');
  text.resize(GetSystemDirectoryW(text.data(), static_cast<UINT>(text.size())));
  return text;
}

}  // namespace

std::string libraryFileName(const std::string& baseName) {
  return baseName + ".dll";
}

LoadResult loadLibrary(const std::filesystem::path& file) {
  SetThreadErrorMode(SEM_FAILCRITICALERRORS, nullptr);
  LoadResult result;
  result.module = LoadLibraryExW(
      file.c_str(), nullptr, LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
  if (result.module == nullptr) {
    const DWORD code = GetLastError();
    result.problem = systemMessage(code, file);
    result.code = code;
  }
  return result;
}

void* functionNamed(void* module, const std::string& name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module), name.c_str()));
}

const bool loaderSurvivesDamage = true;

ImportPlace findImport(const std::string& name, const std::filesystem::path& sdkFile,
                       const std::filesystem::path& /*importer*/, const LibraryFile& /*content*/) {
  const std::wstring wideName(name.begin(), name.end());  // import names are ASCII
  const std::filesystem::path system = systemDirectory();
  for (const std::filesystem::path& directory :
       {sdkFile.parent_path(), fileOf(nullptr).parent_path(), system}) {
    std::error_code ignored;
    if (std::filesystem::is_regular_file(directory / wideName, ignored)) {
      return {directory / wideName, directory == system};
    }
  }
  // An API set has no file of its name. The loader knows the file that implements it.
  HMODULE const module = LoadLibraryExW(wideName.c_str(), nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  return module == nullptr ? ImportPlace{} : ImportPlace{fileOf(module), true};
}

}  // namespace orvane::host
