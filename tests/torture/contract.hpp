// The contract of the thirteen functions, as a small program of its own: given what the SDKs
// answered, it says which calls had to be made, what each function had to return, and what the
// library remembers afterwards. It shares no code with the library, so that a mistake there is not
// repeated here.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "doubles/sdk_families.hpp"
#include "torture/transcript.hpp"

namespace orvane::testing {

/// The cameras that each simulated SDK can show, by the SDK's place in the scan. Names, and ids or
/// keys, differ within an SDK.
using World = std::array<std::vector<SimCamera>, sdkCount>;

/// The arguments of oc_open().
struct OpenArguments {
  int index = 0;
  int width = 0;
  int height = 0;
  int bin = 1;
  int format = 0;
  std::int64_t exposureUs = 1;
  int gain = 0;
  int offset = 0;
};

class Contract {
 public:
  /// `isQhyReady`: this process has initialised QHYCCD's SDK already, which is done once only.
  explicit Contract(World world, bool isQhyReady = false)
      : world_(std::move(world)), isQhyReady_(isQhyReady) {}

  // What the functions must return. Where std::bad_alloc leaves one of these, it must have left the
  // function, too.
  static void libraryDir(Transcript& did) { did.allocate(); }
  int scan(Transcript& did);
  std::string info(int index, Transcript& did) const;
  int open(const OpenArguments& arguments, Transcript& did);
  int read(bool hasBuffer, int bufferLength, int timeoutMs, Transcript& did);
  int apply(std::int64_t exposureUs, int gain, int offset, Transcript& did);
  double temperature(Transcript& did) const;
  void close(Transcript& did);

  // What the others must return.
  const std::string& error() const { return error_; }
  const std::string& libraries() const { return libraries_; }
  int width() const { return active_.width; }
  int height() const { return active_.height; }
  int bufferSize() const { return active_.bufferSize; }

  // For the choice of what to do next.
  bool isOpen() const { return active_.openIndex >= 0; }
  std::size_t family() const { return active_.camera.family; }  ///< of the open camera
  bool isLoaded(std::size_t family) const { return isLoaded_[family]; }
  std::size_t cameraCount() const { return catalogue_.size(); }
  /// Size, bins and formats of a camera of the catalogue.
  int maxWidth(std::size_t index) const { return catalogue_[index].maxWidth; }
  int maxHeight(std::size_t index) const { return catalogue_[index].maxHeight; }
  const std::vector<int>& bins(std::size_t index) const { return catalogue_[index].bins; }
  const std::vector<int>& formats(std::size_t index) const { return catalogue_[index].formats; }

 private:
  struct Camera {
    std::size_t family = 0;
    std::string id;  // as the log writes what names the camera in calls: a number or quoted text
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
    std::vector<int> formats{0};
    std::int64_t maxExposureUs = 0;
    int minGain = 0;
    int maxGain = 0;
    int bayer = 0;
  };

  struct Active {
    int openIndex = -1;
    bool isStreaming = false;
    Camera camera;
    int width = 0;
    int height = 0;
    int format = 0;
    int bufferSize = 0;
    std::string device;  // as the log writes it: the id, or the handle
  };

  // The four discoveries.
  void discoverAsi(Transcript& did);
  void discoverPlayerOne(Transcript& did);
  void discoverQhy(Transcript& did);
  void examineQhy(const std::string& handle, Camera& camera, Transcript& did);
  void discoverToupTek(Transcript& did);
  static void examineToupTek(const std::string& handle, Camera& camera, Transcript& did);
  const SimCamera& shown(std::size_t family, const std::string& name) const;

  void openOrThrow(const OpenArguments& arguments, Transcript& did);
  std::int64_t configure(int bin, Transcript& did);
  void start(Transcript& did) const;
  int readOrThrow(bool hasBuffer, int bufferLength, int timeoutMs, Transcript& did) const;
  void applyOrThrow(std::int64_t exposureUs, int gain, int offset, Transcript& did) const;
  double temperatureOrThrow(Transcript& did) const;

  World world_;
  std::array<bool, sdkCount> isLoaded_{};
  bool isQhyReady_;
  std::string error_;
  std::string libraries_;
  std::vector<Camera> catalogue_;
  Active active_;
};

}  // namespace orvane::testing
