// The state of one simulated SDK, and the rules that its maker's file adds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <utility>
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
  ByHandOrAuto,  // has an automatic mode
  ReadOnly,
};

// A setting of a camera, with the maker's own number for it.
struct Control {
  int id;
  double minimum;
  double maximum;
  double initial;
  Access access = Access::ByHand;
  const char* name = "";  // if the maker's SDK reports names
  const char* description = "";

  bool isThere = true;
  double value = 0;
  bool isAuto = false;

  bool hasAuto() const { return access == Access::ByHandOrAuto; }
  bool isWritable() const { return access != Access::ReadOnly; }
};

// A control that only some cameras have.
inline Control onlyIf(std::int32_t isThere, Control control) {
  control.isThere = isThere != 0;
  return control;
}

// The state of a camera from its opening to its closing.
struct Device {
  bool isOpen = false;
  bool isLost = false;         // was unplugged; stays lost when the camera is plugged in again
  bool isSilent = false;       // the same, but its calls succeed, and no frame arrives
  bool isInitialised = false;  // by the maker's init function, if the SDK has one
  int streamMode = 0;          // QHYCCD
  bool isSizeSet = false;      // QHYCCD: SetQHYCCDResolution was called after SetQHYCCDBinMode
  std::uint32_t reportedLength = 0;  // QHYCCD: the last result of GetQHYCCDMemLength; 0 if none
  std::int32_t bin = 1;
  std::int32_t format = 0;  // the maker's number
  Region region;
  std::vector<Control> controls;
  Cooler cooler;
  FrameStream stream;

  // A control by the maker's number: null, or 0 as the value, if the camera has no such control.
  Control* find(int id);
  double value(int id) const;
};

struct Camera {
  std::size_t index = 0;
  SimCamera model{};
  bool isPlugged = true;
  Device device{};

  // Whether an open device still answers.
  bool isReachable() const { return device.isSilent || (isPlugged && !device.isLost); }
};

// The results of a maker's functions for calls that a camera cannot answer.
struct Failures {
  std::int64_t noCamera;   // no camera has this id, or the handle is null
  std::int64_t closed;     // the camera, or the handle, is not open
  std::int64_t unplugged;  // the camera was unplugged after it was opened
  std::int64_t refused;    // not initialised, or opened by another program
};

// The outputs of a function that can be forced, separated by blanks. "result" is what it returns.
struct FunctionOutputs {
  std::string_view function;
  std::string_view outputs;
};

// The maker's code for a word of simulators/cameras.csv.
struct CodeOf {
  std::string_view word;
  std::int32_t code;
};

// What differs between the makers' SDKs. Each maker's file defines one.
struct Maker {
  const char* sdkName;
  std::span<const char* const> defaultModels;  // the names of the default cameras
  std::span<const CodeOf> formatCodes = {};    // if the SDK lists formats
  std::span<const CodeOf> patternCodes;        // of Bayer patterns, and of "mono"
  bool lacksDepthAt8Bits = false;              // models of 8 bits have no option for the depth
  bool keepsSettings = false;  // from one opening to the next, and for other programs
  QueueRule queue;
  std::int32_t widthStep = 1;  // the whole sensor's region is rounded down to multiples of these
  std::int32_t heightStep = 1;
  void (*setUp)(Camera& camera);  // sets the controls and the format of an opened camera
  FrameSettings (*frameSettings)(const Camera& camera);  // from the device's present settings
  Failures failures;
  std::span<const FunctionOutputs> outputs;  // a function without a row has "result" only
};

extern const Maker maker;

// The maker's numbers of the controls that change the picture.
struct PictureControls {
  int exposure;  // microseconds
  int gain;      // steps of 0.1 dB
  int offset;    // counts of 12 bits
};

// The frame settings that the makers have in common: the camera's geometry, the Bayer pattern of a
// colour camera, the present bin and region, and the controls' values. The maker's file adds the
// layout, and what its SDK counts in other units.
FrameSettings commonSettings(const Camera& camera, BayerPattern ofColorCamera,
                             const PictureControls& controls);

class Sdk {
 public:
  Sdk() { reset(); }

  void reset();  // sim_reset()

  Clock clock;
  Faults faults;
  CallLog log;
  std::uint64_t seed = 1;  // of the scene and the noise
  bool isDark = false;     // the cameras see nothing
  bool isTimingReal = false;
  SimInvariants counts{};  // of the caller's errors

  // Whether a command in the environment variable is wrong. The SDK then shows no cameras.
  bool isMisconfigured = false;

  // Set by the function that initialises the whole SDK, if the SDK has one.
  bool isSdkInitialised = false;

  // Sets the cameras. Forgets open devices and the enumeration.
  void setCameras(std::span<const SimCamera> models);
  // Adds a camera with an id and a key of its own. The first one replaces the default cameras.
  void addCamera(SimCamera model);
  Camera* camera(std::int64_t index);  // null if there is none
  void setPlugged(std::int64_t index, Plug plug);

  // The settings that an SDK keeps of a model, by the numbers of the controls.
  std::map<int, double>& keptSettings(const SimCamera& model);

  // Passes the time that a call takes with a real camera, if the timing is real.
  void spend(std::int64_t microseconds);

  // Shows a recording, or the synthetic scene if the path is null. Returns "", or the reason why
  // the file cannot be played; nothing then changes.
  std::string playRecording(const char* path);

  // Refreshes the list of cameras that the user knows, and returns their number. A camera that is
  // unplugged later stays in the list.
  std::size_t enumerate();
  Camera* enumerated(std::int64_t position);      // null if out of range
  Camera* enumeratedByKey(std::string_view key);  // null if there is none

  // Cameras by the id that the user passes. These functions return the maker's result codes.
  Camera* find(std::int32_t id);  // null if no enumerated camera has this id
  bool isKnown(std::int32_t id) { return find(id) != nullptr; }
  int openById(std::int32_t id);
  int closeById(std::int32_t id);

  // Cameras by an opaque handle that the user got when opening.
  Camera* find(const void* handle);  // null if the handle is not open
  static bool isKnown(const void* handle) { return handle != nullptr; }
  std::size_t numberOf(const void* handle) const;  // 1 for the first handle; 0 if unknown
  void* openHandle(Camera& camera);
  bool closeHandle(const void* handle);  // false if it is not open

  // Sets the region to the whole sensor.
  static void showWholeSensor(Camera& camera, std::int32_t bin);

  // Streams. Call changed() or restartFrame() after each change of a setting.
  void startStream(Camera& camera, bool isSingleFrame);
  void stopStream(Camera& camera);  // counts the stop if no stream was running
  void changed(Camera& camera);
  void restartFrame(Camera& camera);  // applies the change at once and drops waiting frames

  // Waits for a frame, at most this time, or without limit if it is negative. Returns whether a
  // frame is waiting. Does not wait if no stream is running or no frame will come.
  bool waitForFrame(Camera& camera, std::int32_t milliseconds);

  const FrameSettings* waitingFrame(Camera& camera);  // its settings; null if there is none

  // Writes the waiting frame and removes it from the queue. There must be one. A pitch of 0 means
  // rows without a gap.
  void takeFrame(Camera& camera, std::uint8_t* buffer, std::int64_t rowPitch = 0);

  void dropFrame(Camera& camera);  // removes it without writing it

  // sim_render_frame().
  std::int32_t renderFrame(std::int32_t frame, std::uint8_t* buffer, std::int32_t bufferLength);

  // sim_invariants().
  SimInvariants invariants() const;

 private:
  void render(const FrameSettings& settings, std::int64_t frameNumber, std::uint8_t* buffer,
              std::int64_t rowPitch);
  template <class IsWanted>
  Camera* firstEnumerated(const IsWanted& isWanted);
  void open(Camera& camera);
  void close(Camera& camera);

  std::deque<Camera> cameras_;  // a camera that is added leaves the others in their places
  bool hasDefaultCameras_ = false;
  std::vector<Camera*> enumerated_;
  std::map<std::string, std::map<int, double>> kept_;  // by the model's name
  // A handle is the address of its entry, which is null after closing. Entries are never reused, so
  // that a closed handle is recognised.
  std::deque<Camera*> handles_;
  std::size_t forgottenHandles_ = 0;
  Renderer renderer_;
  Recording recording_;  // played if it is open
};

// The one that this library simulates. The first call runs the commands in the environment
// variable.
Sdk& sdk();

// Both tell a wrong command and its reason on the standard error output, and return false. They do
// not run the commands after it.
bool runCommands(std::string_view commands);  // sim_command()
bool runEnvironment();                        // those in ORVANE_SIMULATOR

}  // namespace orvane::sim
