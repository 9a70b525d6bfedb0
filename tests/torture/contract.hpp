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

#include "torture/contract_family.hpp"

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
  /// `isInitialised`: the SDK that is initialised once in a process has been.
  explicit Contract(World world, bool isInitialised = false)
      : world_(std::move(world)), isInitialised_(isInitialised) {}

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
  void openOrThrow(const OpenArguments& arguments, Transcript& did);
  int readOrThrow(bool hasBuffer, int bufferLength, int timeoutMs, Transcript& did) const;
  void applyOrThrow(std::int64_t exposureUs, int gain, int offset, Transcript& did) const;

  World world_;
  std::array<bool, sdkCount> isLoaded_{};
  bool isInitialised_;
  std::string error_;
  std::string libraries_;
  std::vector<ContractCamera> catalogue_;
  ContractActive active_;
};

}  // namespace orvane::testing
