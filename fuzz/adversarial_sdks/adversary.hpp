// What the scripted SDKs of all makers share: where their answers come from, which devices are
// open, and what the library did that it must not.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "common/input.hpp"
#include "vendors/sdk_function.hpp"

namespace orvane::fuzz {

/// What an SDK knows of a device while it is open.
struct Device {
  bool isStreaming = false;
  std::int64_t frameWidth = 0;  ///< as last set or reported
  std::int64_t frameHeight = 0;
  std::int64_t bytesPerPixel = 1;
  std::int64_t frameMemory = 0;  ///< as last reported, for the SDK that does
};

/// One SDK: its functions by name, and those that it lacks at present.
struct Sdk {
  const char* baseName = "";
  const char* stopFunction = "";
  const char* closeFunction = "";
  bool canLoad = true;
  std::map<std::string, platform::FunctionAddress, std::less<>> functions;
  std::set<std::string, std::less<>> missing;
  std::map<std::uintptr_t, Device> open;  ///< by camera id or handle
};

/// All four SDKs of one run.
class Adversary {
 public:
  /// More calls than this and every SDK lacks all functions but those that stop and close: an SDK
  /// may claim any number of cameras and controls, and a run must come to an end.
  static constexpr int maxCalls = 2000;

  /// An adversary whose four SDKs are complete and loadable.
  Adversary();

  /// Starts a run: everything is closed, nothing is missing, answers come from these bytes.
  void begin(std::span<const std::uint8_t> bytes);

  Input input;
  std::array<Sdk, vendorCount> sdks;    ///< in the order of Vendor
  std::uint32_t qhyResourceResult = 0;  ///< the library asks for it once in a process: no input
  std::vector<std::string> violations;  ///< what the library did wrong

  Sdk& of(Vendor vendor) { return sdks[static_cast<std::size_t>(vendor)]; }

  /// Notes a rule that is broken, and what broke it.
  void require(bool holds, const char* rule, const char* culprit = nullptr) {
    if (!holds) {
      noteViolation(rule, culprit);
    }
  }

  /// The function, unless the SDK lacks it. Where it cannot be closed or stopped for want of a
  /// function, the library is not to blame for what stays open or running.
  platform::FunctionAddress find(Sdk& sdk, const char* name);

  /// The result of a call: success as a rule, else any code; now and then an exception, as SDKs
  /// written in C++ let them pass.
  std::int32_t result();

  /// A side of a sensor or frame: as a rule small enough for real frames, else anything.
  std::int32_t length();

  /// True as a rule.
  bool isSound() { return input.byte() < 224; }

  /// Writes any text into an array: none, a short one, or one that fills it without an end.
  template <class Char, std::size_t size>
  void fill(Char (&text)[size]) {
    const std::size_t written = fillLength(size);
    for (std::size_t i = 0; i < written; ++i) {
      text[i] = static_cast<Char>(input.empty() ? 'a' + i % 26 : input.byte());
    }
  }

  /// Writes any numbers into a list: an ordinary one, an empty one, or one without an end.
  template <std::size_t size>
  void fill(int (&list)[size], int end, int first) {
    const std::uint8_t choice = input.byte();
    const std::size_t written = choice < 128 ? choice % 5 : std::min<std::size_t>(choice, size);
    for (std::size_t i = 0; i < written; ++i) {
      list[i] = choice < 128 ? first + static_cast<int>(i) : input.number();
    }
    if (written < size) {
      list[written] = end;
    }
  }

  /// A device is opened; a device that is open cannot be opened again.
  void opened(Vendor vendor, std::uintptr_t key);
  /// The device of a call, which has to be open; never null.
  Device& used(Vendor vendor, std::uintptr_t key, const char* call);
  /// A device's stream is stopped, or the device closed.
  void stopped(Vendor vendor, std::uintptr_t key);
  void closed(Vendor vendor, std::uintptr_t key);

  std::size_t openDevices() const;
  std::size_t runningStreams() const;

 private:
  void noteViolation(const char* rule, const char* culprit);
  std::size_t fillLength(std::size_t size);

  int calls_ = 0;
  Device none_;
};

/// The one adversary of the process.
Adversary& adversary();

/// Adds a function to an SDK under the name and the type that the library declares for it: one that
/// differs does not compile.
template <Vendor vendor, void (*check)(std::int64_t, const char*), class Signature>
void script(Sdk& sdk, const char* name, const SdkFunction<vendor, check, Signature>& /*declared*/,
            std::type_identity_t<Signature>* body) {
  sdk.functions[name] = reinterpret_cast<platform::FunctionAddress>(body);
}

#define ORVANE_SCRIPT(sdk, function, ...) script(sdk, #function, function, __VA_ARGS__)

/// Add all functions of one maker.
void addAsi(Sdk& sdk);
void addPlayerOne(Sdk& sdk);
void addQhy(Sdk& sdk);
void addToupTek(Sdk& sdk);

}  // namespace orvane::fuzz
