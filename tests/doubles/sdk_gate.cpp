// The gate: the platform layer of the torture tests.
#include "doubles/sdk_gate.hpp"

#include <exception>

#include "platform/platform.hpp"
#include "torture/failing_allocation.hpp"

namespace orvane {

namespace testing {

SdkGate& sdkGate() {
  static SdkGate gate;
  return gate;
}

std::vector<Event> SdkGate::takeEvents() {
  const std::vector<SdkCall> calls = parseLog(sdk->takeLog());
  std::size_t used = 0;
  std::vector<Event> events;
  for (const Passed& one : passed) {
    Event event;
    if (one.isLoad) {
      event.kind = Event::Kind::Load;
      event.name = one.baseName;
      event.isLoaded = one.isFound;
    } else if (!one.isFound) {
      event.kind = Event::Kind::Missing;
      event.name = one.name;
    } else if (used < calls.size() && calls[used].function == one.name) {
      event.call = calls[used++];
    } else {
      throw Violation{std::string("looked up, but not called: ") + one.name};
    }
    events.push_back(std::move(event));
  }
  if (used != calls.size()) {
    throw Violation{"called without a look-up of its own: " + calls[used].function};
  }
  passed.clear();
  return events;
}

void SdkGate::reset() {
  hidden.clear();
  hiddenLookup = 0;
  lookups.clear();
  passed.clear();
  sdk->takeLog();
}

}  // namespace testing

namespace platform {

namespace {

// The library path's two parts, as libraryPath() puts them together.
constexpr NativeChar separator = '/';

std::string plain(const NativeString& text) {
  std::string bytes;
  for (const NativeChar unit : text) {
    bytes += static_cast<char>(unit);
  }
  return bytes;
}

}  // namespace

NativeString libraryPath(std::string_view directory, std::string_view baseName) {
  NativeString path(directory.begin(), directory.end());
  path += separator;
  return path.append(baseName.begin(), baseName.end());
}

Module loadLibrary(const NativeString& path) noexcept {
  const testing::Uncounted uncounted;
  testing::SdkGate& gate = testing::sdkGate();
  const std::string bytes = plain(path);
  const std::size_t split = bytes.rfind('/');
  testing::SdkGate::Passed load;
  load.isLoad = true;
  load.baseName = bytes.substr(split + 1);
  load.isFound = load.baseName == gate.baseName && bytes.substr(0, split) == gate.directory;
  gate.passed.push_back(load);
  return load.isFound ? const_cast<testing::SimulatedSdk*>(gate.sdk) : nullptr;
}

FunctionAddress findFunction(Module library, const char* name) noexcept {
  const testing::Uncounted uncounted;
  testing::SdkGate& gate = testing::sdkGate();
  gate.lookups.push_back(name);
  testing::SdkGate::Passed lookup;
  lookup.name = name;
  FunctionAddress address = nullptr;
  if (gate.hidden != name && gate.hiddenLookup != gate.lookups.size()) {
    try {
      const auto* const sdk = static_cast<const testing::SimulatedSdk*>(library);
      address = sdk->module.function<void()>(name);
      lookup.isFound = true;
    } catch (const std::exception&) {
      lookup.isFound = false;
    }
  }
  gate.passed.push_back(lookup);
  return address;
}

// The simulated cameras' names are plain.
std::string utf8FromDisplayName(const NativeChar* text) {
  return plain(text);
}

}  // namespace platform

}  // namespace orvane
