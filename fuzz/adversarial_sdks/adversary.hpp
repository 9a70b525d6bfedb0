// What the scripted SDKs of all makers share: the source of their answers, the open devices, and
// the violations by the library.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "input.hpp"
#include "doubles/scripted_platform.hpp"

namespace orvane::fuzz {

/// The state of an open device.
struct Device {
  bool isStreaming = false;
  std::int64_t frameWidth = 0;  ///< as last set or reported
  std::int64_t frameHeight = 0;
  std::int64_t bytesPerPixel = 1;
  std::int64_t frameMemory = 0;  ///< as last reported, for SDKs that report it
};

/// One SDK: its functions and its open devices.
struct Sdk {
  const char* baseName = "";
  scripted::Library* script = nullptr;  ///< in the scripted platform layer
  const char* stopFunction = "";
  const char* closeFunction = "";
  std::map<std::uintptr_t, Device> open;  ///< by key

  /// Adds a function under the name and type of `declared`.
  template <class Declared, class Body>
  void add(const Declared& declared, Body body) {
    script->add(declared, body);
  }
};

/// A device's key: the camera id or the handle.
inline std::uintptr_t keyOf(int cameraId) {
  return static_cast<std::uintptr_t>(static_cast<unsigned>(cameraId));
}
inline std::uintptr_t keyOf(const void* handle) {
  return reinterpret_cast<std::uintptr_t>(handle);
}

/// All SDKs of one run.
class Adversary {
 public:
  /// After this many calls every SDK loses all functions except stop and close. This ends the run:
  /// an SDK may claim any number of cameras and controls.
  static constexpr int maxCalls = 2000;

  /// Puts the SDKs of all families, complete and loadable, into the platform layer.
  Adversary();

  /// Starts a run: closes everything, restores all functions, and takes the answers from these
  /// bytes.
  void begin(std::span<const std::uint8_t> bytes);

  Input input;
  std::array<Sdk, vendorCount> sdks;  ///< in the order of Vendor
  /// Not from the input, because the library asks for it only once per process.
  std::uint32_t qhyResourceResult = 0;
  std::vector<std::string> violations;  ///< the rules that the library broke

  Sdk& of(Vendor vendor) { return sdks[static_cast<std::size_t>(vendor)]; }

  /// Records a violation unless the rule holds.
  void require(bool holds, const char* rule, const char* culprit = nullptr) {
    if (!holds) {
      noteViolation(rule, culprit);
    }
  }

  /// The result of a call: usually success, else any code. Sometimes throws, as an SDK written in
  /// C++ may do.
  std::int32_t result();

  /// A width or height of a sensor or frame: usually small enough for real frames, else any number.
  std::int32_t length();

  /// Usually true.
  bool isSound() { return input.byte() < 224; }

  /// Fills an array with any text: empty, short, or without a terminator.
  template <class Char, std::size_t size>
  void fill(Char (&text)[size]) {
    const std::size_t written = fillLength(size);
    for (std::size_t i = 0; i < written; ++i) {
      text[i] = static_cast<Char>(input.empty() ? 'a' + i % 26 : input.byte());
    }
  }

  /// Fills a list with any numbers: an ordinary list, an empty one, or one without an end mark.
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

  /// Opens a device. It is a violation if the device is already open.
  void opened(Vendor vendor, std::uintptr_t key);
  /// The same for an SDK that returns handles: sometimes null, else a new handle. No handle is used
  /// twice, so a stale one is detected.
  void* openedHandle(Vendor vendor);
  /// The device of a call. It is a violation if the device is not open. Never null.
  Device& used(Vendor vendor, std::uintptr_t key, const char* call);
  /// Stops the stream of a device, or closes the device.
  void stopped(Vendor vendor, std::uintptr_t key);
  void closed(Vendor vendor, std::uintptr_t key);

  std::size_t openDevices() const;
  std::size_t runningStreams() const;

 private:
  bool admits(const scripted::Library& library, const char* name);
  void noteViolation(const char* rule, const char* culprit);
  std::size_t fillLength(std::size_t size);

  int calls_ = 0;
  std::uintptr_t lastHandle_ = 0x1000;
  Device none_;
};

/// The only instance in the process.
Adversary& adversary();

/// The device of a call to this function, by camera id or handle.
template <Vendor vendor, void (*check)(std::int64_t, const char*), class Signature, class Id>
Device& used(Id id, const SdkFunction<vendor, check, Signature>& function) {
  return adversary().used(vendor, keyOf(id), function.name());
}

}  // namespace orvane::fuzz
