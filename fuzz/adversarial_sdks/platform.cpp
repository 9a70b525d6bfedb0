// The platform layer of the adversarial SDKs: its libraries are the adversary's four.
#include "platform/platform.hpp"

#include "adversarial_sdks/adversary.hpp"

namespace orvane::platform {

NativeString libraryPath(std::string_view /*directory*/, std::string_view baseName) {
  return {baseName.begin(), baseName.end()};
}

Module loadLibrary(const NativeString& path) noexcept {
  for (fuzz::Sdk& sdk : fuzz::adversary().sdks) {
    const std::string_view name = sdk.baseName;
    if (sdk.canLoad && path == NativeString(name.begin(), name.end())) {
      return &sdk;
    }
  }
  return nullptr;
}

FunctionAddress findFunction(Module library, const char* name) noexcept {
  return fuzz::adversary().find(*static_cast<fuzz::Sdk*>(library), name);
}

std::string utf8FromDisplayName(const NativeChar* text) {
  std::string bytes;
  for (; *text != NativeChar{}; ++text) {
    bytes += static_cast<char>(*text);
  }
  return bytes;
}

}  // namespace orvane::platform
