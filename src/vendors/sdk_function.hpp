// A maker's SDK function as a typed constant that can be called.
//
//     SDK_FUNCTION(Family, OpenCamera, int(int cameraId));   declares it, once
//     OpenCamera(id)                                         calls it: the raw result
//     InitCamera.check(id)                                   calls it and throws
//                                                            "InitCamera: <code>" on failure
//     SetControl.checkAs("gain", id, ...)                    the same under another label
//
// Every call looks up the name in the maker's library again and caches nothing. If the library
// lacks the function, the call throws "<library>: missing <function>".
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "api/state.hpp"
#include "vendors/sdk_call.hpp"

namespace orvane {

template <Vendor vendor, void (*checkResult)(std::int64_t code, const char* label), class Signature>
class SdkFunction;

template <Vendor vendor, void (*checkResult)(std::int64_t code, const char* label), class Result,
          class... Arguments>
class SdkFunction<vendor, checkResult, Result(Arguments...)> {
 public:
  /// Stores the name, of at most 63 characters.
  template <std::size_t size>
  explicit constexpr SdkFunction(const char (&name)[size]) {
    static_assert(size <= sizeof name_, "the name is too long");
    std::copy_n(name, size, name_);
  }

  constexpr const char* name() const { return name_; }

  /// Calls the function and returns its result.
  Result operator()(Arguments... arguments) const {
    const auto function =
        reinterpret_cast<Result (*)(Arguments...)>(resolveSymbol(libraryOf(vendor), name_));
    return callSdk(function, arguments...);
  }

  /// Checks a result of an earlier call under the function's own name.
  void checkResultOf(std::int64_t result) const { checkResult(result, name_); }

  /// Calls the function and checks its result under its own name.
  void check(Arguments... arguments) const { checkAs(name_, arguments...); }

  /// Calls the function and checks its result under the given label. The result's declared type
  /// decides how it is widened: signed with its sign, unsigned without.
  void checkAs(const char* label, Arguments... arguments) const {
    checkResult((*this)(arguments...), label);
  }

 private:
  // Aligned to a cache line: the system compares the name at every call, and a look-up takes up to
  // a tenth longer if the name crosses two lines.
  alignas(64) char name_[64] = {};
};

}  // namespace orvane

/// Declares a function whose result is 0 for success.
#define SDK_FUNCTION(vendor, name, ...) \
  inline constexpr SdkFunction<Vendor::vendor, checkVendorResult, __VA_ARGS__> name(#name)

/// Declares a function whose result is an HRESULT.
#define SDK_HRESULT_FUNCTION(vendor, name, ...) \
  inline constexpr SdkFunction<Vendor::vendor, checkToupResult, __VA_ARGS__> name(#name)
