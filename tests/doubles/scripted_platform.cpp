// A platform layer whose libraries are tables in the test.
#include "doubles/scripted_platform.hpp"

namespace orvane {

namespace scripted {

Platform& platform() {
  static Platform instance;
  return instance;
}

}  // namespace scripted

namespace platform {

NativeString libraryPath(std::string_view directory, std::string_view baseName) {
  NativeString path(directory.begin(), directory.end());
  path += NativeChar{'/'};
  return path.append(baseName.begin(), baseName.end());
}

Module loadLibrary(const NativeString& path) noexcept {
  std::string name;
  for (const NativeChar unit : path) {
    name += static_cast<char>(unit);
  }
  scripted::Platform& script = scripted::platform();
  script.loads.push_back(name);
  const auto found = script.libraries.find(name);
  return found != script.libraries.end() ? &found->second : nullptr;
}

FunctionAddress findFunction(Module library, const char* name) noexcept {
  scripted::platform().lookups.emplace_back(name);
  const auto& functions = static_cast<scripted::Library*>(library)->functions;
  const auto found = functions.find(name);
  return found != functions.end() ? found->second : nullptr;
}

std::string utf8FromDisplayName(const NativeChar* text) {
  return {text, text + NativeString(text).size()};
}

}  // namespace platform

}  // namespace orvane
