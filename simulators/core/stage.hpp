// Everything that one simulated SDK remembers, and the rules that its maker's file adds to it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <string_view>
#include <vector>

#include "core/call_log.hpp"
#include "core/cooler.hpp"
#include "core/faults.hpp"
#include "core/frame_clock.hpp"
#include "core/recording.hpp"
#include "core/sensor.hpp"
#include "simulator_control.h"

namespace orvane::sim {

enum class Access {
  ByHand,
  ByHandOrAuto,  // there is an automatic mode
  ReadOnly,
};

// A setting of a camera, under the maker's own number for it.
struct Control {
  int id;
  double minimum;
  double maximum;
  double initial;
  Access access = Access::ByHand;
  const char* name = "";  // where the maker's SDK tells it
  const char* description = "";

  double value = 0;
  bool isAuto = false;

  bool hasAuto() const { return access == Access::ByHandOrAuto; }
  bool isWritable() const { return access != Access::ReadOnly; }
};

// What a camera's opening begins and its closing ends.
struct Device {
  bool isOpen = false;
  bool isLost = false;           // unplugged since; plugging the camera in does not bring it back
  bool isInitialised = false;    // by the maker's init function, where there is one
  int streamMode = 0;            // QHYCCD
  std::uint32_t toldLength = 0;  // QHYCCD: the frame memory that was last asked for; 0 never
  std::int32_t bin = 1;
  std::int32_t format = 0;  // in the maker's numbers
  Region region;
  std::vector<Control> controls;
  Cooler cooler;
  FrameStream stream;

  // The control of the maker's number; null when the camera has none such.
  Control* find(int id);

  // The value of a control, or `otherwise` when the camera has none such.
  double value(int id, double otherwise) const;
};

struct Camera {
  std::size_t index = 0;
  SimCamera model{};
  bool isPlugged = true;
  Device device;

  // Whether an open device still answers.
  bool isReachable() const { return isPlugged && !device.isLost; }
};

// How the SDK of one maker differs from the others; each maker's file defines one.
struct Maker {
  const char* sdkName;
  std::span<const SimCamera> cameras;  // shown by an untouched simulator
  QueueRule queue;
  FrameSettings (*frameSettings)(const Camera& camera);  // by the device's present settings
};

extern const Maker maker;

// What the settings of a frame have in common for all makers: the camera's geometry and the present
// bin and region. Layout, mosaic, exposure, gain and pedestal are the maker's to add.
FrameSettings commonSettings(const Camera& camera);

class Stage {
 public:
  Stage() { reset(); }

  // As when the library has just been loaded.
  void reset();

  Clock clock;
  Faults faults;
  CallLog log;

  // The cameras that there are. Setting them forgets open devices and what was enumerated.
  void setCameras(std::span<const SimCamera> models);
  Camera* camera(std::int64_t index);  // null when there is none
  void setPlugged(std::int64_t index, bool plugged);
  void setSeed(std::uint64_t seed) { seed_ = seed; }

  // sim_play_recording(); null for the synthetic scene.
  bool playRecording(const char* path);

  // The cameras that the SDK has told its user of, by position; refreshed when the user asks for
  // their number. One that is unplugged later stays in the list.
  void enumerate();
  std::size_t enumerated() const { return enumerated_.size(); }
  Camera* enumerated(std::int64_t position);      // null when out of range
  Camera* enumeratedById(std::int32_t cameraId);  // null when there is none
  Camera* enumeratedByKey(std::string_view key);  // null when there is none

  // Opens a camera, with these controls at their initial values.
  void open(Camera& camera, std::vector<Control> controls);
  void close(Camera& camera);

  // Devices that the user holds by an opaque handle.
  void* makeHandle(const Camera& camera);
  void endHandle(void* handle);
  Camera* cameraOf(const void* handle);            // null when the handle is not open
  std::size_t numberOf(const void* handle) const;  // 1 for the first opened; 0 when unknown

  // Streams. One of the last two is to be called after each change of a setting.
  void startStream(Camera& camera, bool isSingleFrame);
  void stopStream(Camera& camera);  // counts one that was not running
  void changed(Camera& camera);
  void restartFrame(Camera& camera);  // the change holds at once, and waiting frames are lost

  // Waits until a frame is there, at most so many milliseconds, for ever below 0; returns whether
  // one is there. Without a running stream, or when no frame will come, it does not wait.
  bool waitForFrame(Camera& camera, std::int32_t milliseconds);

  // The settings of the waiting frame; null when none waits.
  const FrameSettings* waitingFrame(Camera& camera);

  // Writes the waiting frame, of which there must be one, and takes it from the queue. A pitch of 0
  // means rows without a gap.
  void takeFrame(Camera& camera, std::uint8_t* buffer, std::int64_t rowPitch = 0);

  // sim_render_frame().
  std::int32_t renderFrame(std::int32_t frame, std::uint8_t* buffer, std::int32_t bufferLength);

  // What must never happen.
  SimInvariants invariants() const;
  void countCallOnClosed() { ++counts_.callsOnClosed; }
  void countShortBuffer() { ++counts_.shortBuffers; }
  void countWritePastBuffer() { ++counts_.writesPastBuffer; }

  // Set by the init of the whole SDK, where there is one.
  bool isSdkInitialised = false;

 private:
  struct Handle {
    std::size_t camera = 0;
    bool isOpen = false;
  };

  void render(const FrameSettings& settings, std::int64_t frameNumber, std::uint8_t* buffer,
              std::int64_t rowPitch);
  Handle* find(const void* handle);
  void forgetDevices();

  std::uint64_t seed_ = 1;
  std::vector<Camera> cameras_;
  std::vector<std::size_t> enumerated_;
  // A handle is the address of its entry. Entries are never reused, so that a handle that has been
  // closed stays recognisable.
  std::deque<Handle> handles_;
  std::size_t forgottenHandles_ = 0;
  Renderer renderer_;
  Recording recording_;  // played where it is open
  SimInvariants counts_{};
};

// The one stage of this library.
Stage& stage();

// sim_command().
bool carryOutCommands(std::string_view commands);

}  // namespace orvane::sim
