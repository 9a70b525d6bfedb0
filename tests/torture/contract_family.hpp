// What the contract knows about a camera family: one row each, at the end of contract_<family>.cpp.
// Nothing here comes from the library.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "doubles/sdk_families.hpp"
#include "torture/transcript.hpp"

namespace orvane::testing {

/// The formats in the numbering of the library.
enum HostFormat : int { hostRaw8 = 0, hostRaw16 = 1, hostRgb24 = 2 };

/// The Bayer patterns in the numbering of the library.
enum HostBayer : int {
  hostNoBayer = 0,
  hostRggb = 8,
  hostGrbg = 9,
  hostGbrg = 10,
  hostBggr = 11,
};

/// A camera of the catalogue.
struct ContractCamera {
  std::size_t family = 0;
  /// Names the camera in calls: a number or quoted text, as the log writes it.
  std::string id;
  std::string name;
  int maxWidth = 0;
  int maxHeight = 0;
  int bitDepth = 8;
  double pixelSizeUm = 0;
  bool isColor = false;
  bool isCooled = false;
  bool isUsb3Camera = false;
  bool isUsb3Host = false;
  std::vector<int> bins{1};
  std::vector<int> formats{hostRaw8};
  std::int64_t maxExposureUs = 0;
  int minGain = 0;
  int maxGain = 0;
  int bayer = hostNoBayer;
};

/// The open camera, or the last one that was open.
struct ContractActive {
  int openIndex = -1;
  bool isStreaming = false;
  ContractCamera camera;
  int width = 0;
  int height = 0;
  int format = hostRaw8;
  int bufferSize = 0;
  std::string device;  ///< the id or the handle, as the log writes it

  int bits() const { return format == hostRaw16 ? 16 : 8; }
  std::int64_t frameBytes() const {
    const int bytesPerPixel = format == hostRaw16 ? 2 : format == hostRgb24 ? 3 : 1;
    return std::int64_t{height} * width * bytesPerPixel;
  }
  /// Stores the size that a call has reported.
  void takeSizeFrom(const SdkCall& size) {
    width = static_cast<int>(size.number(0, width));
    height = static_cast<int>(size.number(1, height));
  }
};

struct FamilyContract;

/// The calls that the contract requires, in order: into an SDK, or of one of its open devices. The
/// first input of a device's calls is its id or handle, and need not be stated.
class SdkCalls {
 public:
  SdkCalls(const FamilyContract& family, Transcript& did, std::string device = {})
      : family_(family), did_(did), device_(std::move(device)) {}

  /// Requires a call of this function with these inputs; accepts any result.
  template <class... Inputs>
  const SdkCall& ask(const std::string& function, const Inputs&... inputs) {
    return require(function, device_.empty() ? joined(inputs...) : joined(device_, inputs...));
  }
  /// The same, but the library may allocate before the call.
  template <class... Inputs>
  const SdkCall& askFreely(const std::string& function, const Inputs&... inputs) {
    did_.allocate();
    return ask(function, inputs...);
  }
  /// The same as ask(), but throws if the call failed. The message begins with the function's name
  /// or the label.
  template <class... Inputs>
  const SdkCall& demand(const std::string& function, const Inputs&... inputs) {
    return demandAs(function, function, inputs...);
  }
  template <class... Inputs>
  const SdkCall& demandAs(const std::string& label, const std::string& function,
                          const Inputs&... inputs) {
    return checked(ask(function, inputs...), label);
  }

  bool hasFailed(const SdkCall& call) const;
  /// Throws if the call has failed.
  const SdkCall& checked(const SdkCall& call, const std::string& label) const;
  /// Whether a call has delivered a frame: it returns `noFrame` if there is none. Throws if it has
  /// failed.
  bool hasFrame(const SdkCall& call, std::int64_t noFrame, const std::string& label) const;

  /// Stores the range that a call has reported, unless it has failed: the first two numbers, or
  /// those from `position` on.
  void takeGain(const SdkCall& range, ContractCamera& camera, std::size_t position = 0) const;
  void takeMaxExposure(const SdkCall& range, ContractCamera& camera,
                       std::size_t position = 0) const;

  [[noreturn]] void refuse(const char* message) { did_.refuse(message); }
  void allocate() { did_.allocate(); }

  /// Requires the call that opens a camera. The library may allocate before it.
  const SdkCall& open(const std::string& cameraId);
  /// The device of a camera that this call has opened.
  std::string deviceOf(const SdkCall& opening) const;
  /// Opens the camera, runs the body with the calls of the device, and closes it, even if the body
  /// throws. Does nothing if the SDK does not open the camera.
  void whileOpen(const std::string& cameraId, const std::function<void(SdkCalls& device)>& body);
  void close();

 private:
  const SdkCall& require(const std::string& function, const std::string& inputs);

  const FamilyContract& family_;
  Transcript& did_;
  std::string device_;
};

/// The discovery of an SDK's cameras.
struct Discovery {
  const std::vector<SimCamera>& models;  ///< the cameras that the simulated SDK can show
  bool& isInitialised;                   ///< for an SDK that is initialised once per process
  std::vector<ContractCamera>& catalogue;
  std::size_t family;

  /// Discovers the cameras of an SDK that names them by id. `complete` sets what differs from the
  /// values that were given to the simulator. `examine` calls the open device; the contract ignores
  /// its failures.
  void discoverById(SdkCalls& sdk, const char* countCall, const char* propertyCall,
                    const std::function<void(const SimCamera&, ContractCamera&)>& complete,
                    const std::function<void(SdkCalls& device, ContractCamera&)>& examine) const;
  /// The camera of this name, with the values that were given to the simulator.
  ContractCamera cameraNamed(const std::string& name) const;
  const SimCamera& modelNamed(const std::string& name) const;
  /// Adds a camera to the catalogue.
  void add(SdkCalls& calls, const ContractCamera& camera) const;
};

/// One family. Every function throws if the library must report a failure.
struct FamilyContract {
  const SdkFamily& sdk;
  const char* stopCall;
  bool (*isFailure)(std::int64_t code) = [](std::int64_t code) { return code != 0; };
  int widthStep = 1;
  int heightStep = 1;

  void (*discover)(SdkCalls& sdk, const Discovery& discovery);
  /// Returns the frame memory that the SDK reports; 0 if it reports none.
  std::int64_t (*configure)(SdkCalls& device, ContractActive& active, int bin);
  void (*start)(SdkCalls& device);
  /// Returns whether there was a frame.
  bool (*read)(SdkCalls& device, const ContractActive& active, int bufferLength, int timeoutMs);
  void (*apply)(SdkCalls& device, std::int64_t exposureUs, int gain, int offset);
  double (*temperature)(SdkCalls& device);
};

/// Runs the body until a failure, which it ignores.
template <class Body>
void swallowing(Body body) {
  try {
    body();
  } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): that is the purpose
  }
}

/// The text of a simulated camera's field.
std::string textOf(const char (&field)[256]);

/// The numbers before `end`, at most `most` of them.
template <std::size_t size>
std::vector<int> listOf(const std::int32_t (&numbers)[size], int end, std::size_t most = size) {
  std::vector<int> list;
  for (std::size_t i = 0; i < most && numbers[i] != end; ++i) {
    list.push_back(numbers[i]);
  }
  return list;
}

}  // namespace orvane::testing
