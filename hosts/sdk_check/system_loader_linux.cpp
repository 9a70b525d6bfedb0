// Loading libraries on Linux.
#include <dlfcn.h>
#include <link.h>

#include "sdk_check/system_loader.hpp"

namespace orvane::host {

namespace {

std::filesystem::path fileOf(void* module) {
  link_map* map = nullptr;
  return dlinfo(module, RTLD_DI_LINKMAP, &map) == 0 && map != nullptr ? map->l_name : "";
}

// A directory from a library's search path. "$ORIGIN" stands for the library's own directory.
std::filesystem::path searchDirectory(std::string text, const std::filesystem::path& origin) {
  for (const std::string mark : {"$ORIGIN", "${ORIGIN}"}) {
    const std::size_t at = text.find(mark);
    if (at != std::string::npos) {
      text.replace(at, mark.size(), origin.string());
    }
  }
  return text;
}

}  // namespace

std::string libraryFileName(const std::string& baseName) {
  return "lib" + baseName + ".so";
}

LoadResult loadLibrary(const std::filesystem::path& file) {
  LoadResult result;
  result.module = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (result.module == nullptr) {
    const char* const problem = dlerror();  // NOLINT(concurrency-mt-unsafe): per thread
    result.problem = problem != nullptr ? problem : "unknown";
  }
  return result;
}

void* functionNamed(void* module, const std::string& name) {
  return dlsym(module, name.c_str());
}

// The loader maps as much as the headers state. Reading beyond the end of the file ends the
// process.
const bool loaderSurvivesDamage = false;

ImportPlace findImport(const std::string& name, const std::filesystem::path& /*sdkFile*/,
                       const std::filesystem::path& importer, const LibraryFile& content) {
  if (void* const loaded = dlopen(name.c_str(), RTLD_LAZY | RTLD_NOLOAD)) {
    const std::filesystem::path file = fileOf(loaded);
    dlclose(loaded);  // undoes only this dlopen()
    return {file, true};
  }
  for (const std::string& directory : content.searchDirectories) {
    const std::filesystem::path file = searchDirectory(directory, importer.parent_path()) / name;
    std::error_code ignored;
    if (std::filesystem::exists(file, ignored)) {
      return {file, false};
    }
  }
  if (void* const found = dlopen(name.c_str(), RTLD_LAZY | RTLD_LOCAL)) {
    return {fileOf(found), true};
  }
  return {};
}

}  // namespace orvane::host
