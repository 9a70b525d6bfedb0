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

#include "doubles/scripted_platform.hpp"
#include "input.hpp"

namespace orvane::fuzz {

/// The state of an open device.
struct Device {
  bool isStreaming = false;
  std::int64_t frameWidth = 0;  ///< as last set or reported
  std::int64_t frameHeight = 0;
  std::int64_t bytesPerPixel = 1;
  std::int64_t frameMemory = 0;  ///< as last reported, for SDKs that report it

  /// The most that the SDK may write into a frame's buffer.
  std::int64_t frameBytes() const {
    return std::max(frameMemory, frameWidth * frameHeight * bytesPerPixel);
  }
};

struct FillOutputs;

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

  /// Adds a call that takes an open device. `body` gets the device, unless it takes none, and the
  /// other arguments. If it returns nothing, the call returns any result.
  template <const auto& declared, class Body = FillOutputs>
  void addCall(Body body = {}) {
    addCall<declared>(declared, body);
  }

  /// Adds the calls that stop the stream of a device and close the device. They return any number.
  template <const auto& stop, const auto& close>
  void addEnds();

 private:
  template <const auto& declared, Vendor vendor, void (*check)(std::int64_t, const char*),
            class Result, class Id, class... Rest, class Body>
  void addCall(const SdkFunction<vendor, check, Result(Id, Rest...)>& type, Body body);
  template <auto effect, Vendor vendor, void (*check)(std::int64_t, const char*), class Result,
            class Id>
  void addEnd(const SdkFunction<vendor, check, Result(Id)>& declared);
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
  void require(bool holds, const char* rule, const char* culprit = nullptr);

  /// The result of a call: usually success, else any code. Sometimes throws, as an SDK written in
  /// C++ may do.
  std::int32_t result(Vendor vendor);

  /// The number of cameras: usually 1 to 3.
  std::int32_t cameraCount() { return isSound() ? 1 + input.byte() % 3 : input.number(); }

  /// A width or height of a sensor or frame: usually small enough for real frames, else any number.
  std::int32_t length();
  template <class... Numbers>
  void fillLengths(Numbers&... outputs) {
    ((outputs = static_cast<Numbers>(length())), ...);
  }

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
  /// The open call of an SDK that names cameras by id. Returns any result.
  std::int32_t openedId(Vendor vendor, int cameraId);
  /// The open call of an SDK that returns handles: sometimes null, else a new handle. No handle is
  /// used twice, so a stale one is detected.
  void* openedHandle(Vendor vendor);
  /// The device of a call. It is a violation if the device is not open. Never null.
  Device& used(Vendor vendor, std::uintptr_t key, const char* call);
  /// Starts the stream of a device, unless the result is a failure. Returns the result.
  std::int32_t started(Vendor vendor, Device& device);
  /// Stops the stream of a device, or closes the device.
  void stopped(Vendor vendor, std::uintptr_t key);
  void closed(Vendor vendor, std::uintptr_t key);

  /// Sets the size of the frames, which must have pixels.
  void setSize(Device& device, std::int64_t width, std::int64_t height);
  /// Checks the position of the region, which must be the corner of the sensor.
  void checkPosition(std::int64_t x, std::int64_t y) {
    require(x == 0 && y == 0, "region that is not at the corner");
  }
  /// Reports the size of the frames: usually the size that was set.
  void reportSize(Device& device, int* width, int* height);
  /// Fills the buffer of a frame, all of its `length` bytes. A frame must fit.
  void deliverFrame(const Device& device, void* buffer, std::int64_t length);

  std::size_t openDevices() const;
  std::size_t runningStreams() const;

 private:
  bool admits(const scripted::Library& library, const char* name);
  std::size_t fillLength(std::size_t size);

  int calls_ = 0;
  std::uintptr_t lastHandle_ = 0x1000;
  Device none_;
};

/// The only instance in the process.
Adversary& adversary();

/// The body of a call that only returns a result, after it has set its outputs to any numbers.
struct FillOutputs {
  void operator()(auto... arguments) const { (fill(arguments), ...); }

 private:
  static void fill(auto /*input*/) {}
  static void fill(auto* output) { adversary().input.fill(*output); }
};

template <const auto& declared, Vendor vendor, void (*check)(std::int64_t, const char*),
          class Result, class Id, class... Rest, class Body>
void Sdk::addCall(const SdkFunction<vendor, check, Result(Id, Rest...)>& /*type*/, Body /*body*/) {
  add(declared, [](Id id, Rest... rest) -> Result {
    Device& device = adversary().used(vendor, keyOf(id), declared.name());
    const auto run = [&] {
      if constexpr (std::is_invocable_v<Body, Rest...>) {
        return Body{}(rest...);
      } else {
        return Body{}(device, rest...);
      }
    };
    if constexpr (std::is_void_v<decltype(run())>) {
      run();
      return static_cast<Result>(adversary().result(vendor));
    } else {
      return static_cast<Result>(run());
    }
  });
}

template <auto effect, Vendor vendor, void (*check)(std::int64_t, const char*), class Result,
          class Id>
void Sdk::addEnd(const SdkFunction<vendor, check, Result(Id)>& declared) {
  add(declared, [](Id id) -> Result {
    (adversary().*effect)(vendor, keyOf(id));
    if constexpr (std::is_unsigned_v<Result>) {
      return adversary().input.word();
    } else if constexpr (!std::is_void_v<Result>) {
      return adversary().input.number();
    }
  });
}

template <const auto& stop, const auto& close>
void Sdk::addEnds() {
  stopFunction = stop.name();
  closeFunction = close.name();
  addEnd<&Adversary::stopped>(stop);
  addEnd<&Adversary::closed>(close);
}

}  // namespace orvane::fuzz
