// A model of the thirteen functions. Given the answers of the SDKs, it says which calls the library
// must make, what each function must return, and what state the library then has. It shares no code
// with the library, so a mistake there is not repeated here.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "torture/contract_family.hpp"

namespace orvane::testing {

/// The cameras that each simulated SDK can show, by the SDK's place in the scan. Within an SDK the
/// names are unique, and so are the ids or keys.
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
  /// `isInitialised`: QHYCCD's SDK was already initialised in this process.
  explicit Contract(World world, bool isInitialised = false)
      : world_(std::move(world)), isInitialised_(isInitialised) {}

  // The result that each function must return. If one of these throws std::bad_alloc, the function
  // must have thrown it, too.
  int scan(Transcript& did);
  std::string info(int index, Transcript& did) const;
  int open(const OpenArguments& arguments, Transcript& did);
  int read(const std::uint8_t* buffer, int bufferLength, int timeoutMs, Transcript& did);
  int apply(std::int64_t exposureUs, int gain, int offset, Transcript& did);
  double temperature(Transcript& did) const;
  void close(Transcript& did);

  // The results of the other functions.
  const std::string& error() const { return error_; }
  const std::string& libraries() const { return libraries_; }
  int width() const { return active_.width; }
  int height() const { return active_.height; }
  int bufferSize() const { return active_.bufferSize; }

  // The model's state, from which a test chooses its next step.
  bool isOpen() const { return active_.openIndex >= 0; }
  std::size_t family() const { return active_.camera.family; }  ///< family of the open camera
  bool isLoaded(std::size_t family) const { return isLoaded_[family]; }
  const std::vector<ContractCamera>& catalogue() const { return catalogue_; }

 private:
  /// The body's result, or `failed` and the failure's message as the error.
  template <class Body>
  int remembering(int failed, Body body);
  void openOrThrow(const OpenArguments& arguments, Transcript& did);
  void applyOrThrow(SdkCalls& calls, std::int64_t exposureUs, int gain, int offset) const;
  const FamilyContract& rules() const;  ///< of the open camera's family
  /// The calls of the open device.
  SdkCalls device(Transcript& did) const { return {rules(), did, active_.device}; }

  World world_;
  std::array<bool, sdkCount> isLoaded_{};
  bool isInitialised_;
  std::string error_;
  std::string libraries_;
  std::vector<ContractCamera> catalogue_;
  ContractActive active_;
};

}  // namespace orvane::testing
