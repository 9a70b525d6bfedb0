// The platform layer of the tests.
#include "doubles/scripted_platform.hpp"

namespace orvane {

namespace scripted {

Platform& platform() {
  static Platform instance;
  return instance;
}

std::vector<std::string> Platform::namesOf(bool loads) const {
  std::vector<std::string> names;
  for (const Passage& one : passed) {
    if (one.isLoad == loads) {
      names.push_back(one.name);
    }
  }
  return names;
}

}  // namespace scripted

namespace platform {

namespace {

class OwnWork {
 public:
  OwnWork() { scripted::platform().begins(); }
  ~OwnWork() { scripted::platform().ends(); }
  OwnWork(const OwnWork&) = delete;
  OwnWork& operator=(const OwnWork&) = delete;
};

}  // namespace

NativeString libraryPath(std::string_view directory, std::string_view baseName) {
  NativeString path(directory.begin(), directory.end());
  path += NativeChar{'/'};
  return path.append(baseName.begin(), baseName.end());
}

Module loadLibrary(const NativeString& path) noexcept {
  const OwnWork ownWork;
  scripted::Platform& script = scripted::platform();
  const std::string name = utf8FromDisplayName(path.c_str());
  auto found = script.libraries.find(name);
  if (found == script.libraries.end()) {
    found = script.libraries.find(name.substr(name.rfind('/') + 1));
  }
  const bool isFound = found != script.libraries.end() && found->second.canLoad;
  script.passed.push_back({true, name, isFound});
  return isFound ? &found->second : nullptr;
}

FunctionAddress findFunction(Module module, const char* name) noexcept {
  const OwnWork ownWork;
  scripted::Platform& script = scripted::platform();
  const scripted::Library& library = *static_cast<scripted::Library*>(module);
  const bool isAdmitted = !script.admits || script.admits(library, name);
  const auto found = library.functions.find(name);
  const bool isFound =
      isAdmitted && found != library.functions.end() && !library.missing.contains(name);
  script.passed.push_back({false, name, isFound});
  return isFound ? found->second : nullptr;
}

// Copies bytes: names in tests are ASCII, or arbitrary bytes of an adversarial SDK.
std::string utf8FromDisplayName(const NativeChar* text) {
  std::string bytes;
  for (; *text != NativeChar{}; ++text) {
    bytes += static_cast<char>(*text);
  }
  return bytes;
}

}  // namespace platform

}  // namespace orvane
