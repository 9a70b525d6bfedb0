// What the scripted SDKs of all makers share: where their answers come from, which devices are
// open, and what the library did that it must not.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "common/input.hpp"
#include "doubles/scripted_platform.hpp"

namespace orvane::fuzz {

/// What an SDK knows of a device while it is open.
struct Device {
  bool isStreaming = false;
  std::int64_t frameWidth = 0;  ///< as last set or reported
  std::int64_t frameHeight = 0;
  std::int64_t bytesPerPixel = 1;
  std::int64_t frameMemory = 0;  ///< as last reported, for the SDK that does
};

/// One SDK: its functions, and the devices that are open in it.
struct Sdk {
  const char* baseName = "";
  scripted::Library* library = nullptr;  ///< of the platform layer
  const char* stopFunction = "";
  const char* closeFunction = "";
  std::map<std::uintptr_t, Device> open;  ///< by key

  /// Adds a function: its declaration in the library, and a body.
  template <class Declared, class Body>
  void add(const Declared& declared, Body body) {
    library->add(declared, body);
  }
};

/// What tells the open devices of an SDK apart: the camera id, or the handle.
inline std::uintptr_t keyOf(int cameraId) {
  return static_cast<std::uintptr_t>(static_cast<unsigned>(cameraId));
}
inline std::uintptr_t keyOf(const void* handle) {
  return reinterpret_cast<std::uintptr_t>(handle);
}

/// All SDKs of one run.
class Adversary {
 public:
  /// More calls than this and every SDK lacks all functions but those that stop and close: an SDK
  /// may claim any number of cameras and controls, and a run must come to an end.
  static constexpr int maxCalls = 2000;

  /// Puts the SDKs of all families, complete and loadable, into the platform layer.
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
  /// The same for an SDK that gives handles: null now and then, else a new handle. No handle is
  /// given twice, so that a stale one is noticed.
  void* openedHandle(Vendor vendor);
  /// The device of a call, which has to be open; never null.
  Device& used(Vendor vendor, std::uintptr_t key, const char* call);
  /// A device's stream is stopped, or the device closed.
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

/// The one adversary of the process.
Adversary& adversary();

/// The device of a call of this function, by camera id or handle.
template <Vendor vendor, void (*check)(std::int64_t, const char*), class Signature, class Id>
Device& used(Id id, const SdkFunction<vendor, check, Signature>& function) {
  return adversary().used(vendor, keyOf(id), function.name());
}

}  // namespace orvane::fuzz
