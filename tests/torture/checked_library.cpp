// Calls the library and compares the outcome with the contract.
#include "torture/checked_library.hpp"

#include <algorithm>
#include <cstring>
#include <new>
#include <type_traits>

namespace orvane::testing {

namespace {

// Results as text, so that NaN compares equal to itself.
std::string shown(int number) {
  return std::to_string(number);
}
std::string shown(double number) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &number, sizeof bits);
  return std::to_string(number) + " (bits " + std::to_string(bits) + ")";
}
std::string shown(const std::string& text) {
  return text;
}

std::string mismatch(const char* verb, const std::string& found, const std::string& demanded) {
  return std::string(verb) + " " + found + ", demanded " + demanded;
}

constexpr const char* badAllocation = "std::bad_alloc leaves";

// What the library, or the contract, remembers.
template <class Side>
std::string remembered(const Side& side, int bufferSize) {
  return "error \"" + std::string(side.error()) + "\", libraries \"" + side.libraries() + "\", " +
         std::to_string(side.width()) + " x " + std::to_string(side.height()) + ", buffer " +
         std::to_string(bufferSize);
}

// What the body returns; 0 if it returns nothing.
template <class Body>
auto resultOf(Body body) {
  if constexpr (std::is_void_v<decltype(body())>) {
    body();
    return 0;
  } else {
    return body();
  }
}

}  // namespace

template <class Run, class Rule, class... Arguments>
auto CheckedLibrary::step(const char* function, Run run, Rule rule, const Arguments&... arguments) {
  const auto call = [&] { return run(arguments...); };
  const auto demand = [&](Transcript& did) {
    return resultOf([&] { return std::invoke(rule, contract_, arguments..., did); });
  };
  if (surroundings_.enter) {
    surroundings_.enter();
  }
  std::optional<decltype(resultOf(call))> raw;
  try {
    raw = resultOf(call);
  } catch (const std::bad_alloc&) {  // NOLINT(bugprone-empty-catch): `raw` stays empty
  }
  const std::optional<std::size_t> failedAfter =
      surroundings_.leave ? surroundings_.leave() : std::nullopt;
  // Text is copied only here, because inside the library the allocation would be counted.
  std::optional<std::invoke_result_t<decltype(demand), Transcript&>> returned = raw;
  const std::string found = returned ? shown(*returned) : badAllocation;
  const std::string foundState = remembered(oc_, oc_.buffer_size());
  const std::vector<SdkCall> events = surroundings_.takeEvents();

  // The test knows between which events an allocation failed, but not which allocation it was. It
  // tries the places where the contract allows one there; one of them must explain all that
  // followed.
  const Contract before = contract_;
  std::string differences;
  for (int place = 0;; ++place) {
    contract_ = before;
    Transcript did(
        events, failedAfter ? std::optional(FailedAllocation{*failedAfter, place}) : std::nullopt);
    std::string difference;
    try {
      std::string demanded = badAllocation;
      try {
        demanded = shown(demand(did));
      } catch (const std::bad_alloc&) {  // NOLINT(bugprone-empty-catch): `demanded` stays
      }
      did.expectEnd();
      const std::string demandedState = remembered(contract_, contract_.bufferSize());
      if (found != demanded) {
        difference = mismatch("returned", found, demanded);
      } else if (foundState != demandedState) {
        difference = mismatch("remembers", foundState, demandedState);
      }
    } catch (const Violation& violation) {
      difference = violation.text;
    }
    const bool isUnexplained = failedAfter && !did.hasFailed();
    if (difference.empty() && !isUnexplained) {
      return returned;
    }
    differences += "\n  ";
    differences += difference.empty() ? "an allocation where none belongs" : difference;
    if (!did.hasFailed()) {
      throw Violation{std::string(function) + ":" + differences};
    }
  }
}

void CheckedLibrary::libraryDir(const char* directory) {
  const auto rule = [](const Contract&, const char*, Transcript& did) { did.allocate(); };
  step("oc_library_dir", oc_.library_dir, rule, directory);
}

std::optional<int> CheckedLibrary::scan() {
  return step("oc_scan", oc_.scan, &Contract::scan);
}

std::optional<std::string> CheckedLibrary::info(int index) {
  return step("oc_info", oc_.info, &Contract::info, index);
}

std::optional<int> CheckedLibrary::open(const OpenArguments& arguments) {
  const auto run = [this](const OpenArguments& a) {
    return oc_.open(a.index, a.width, a.height, a.bin, a.format, a.exposureUs, a.gain, a.offset);
  };
  return step("oc_open", run, &Contract::open, arguments);
}

std::optional<int> CheckedLibrary::read(int bufferLength, int timeoutMs, bool hasBuffer) {
  constexpr std::uint8_t untouched = 0xA5;
  const auto length = static_cast<std::size_t>(std::max(bufferLength, 0));
  buffer_.assign(std::max(length, static_cast<std::size_t>(contract_.bufferSize())) + 64,
                 untouched);
  std::uint8_t* const buffer = hasBuffer ? buffer_.data() : nullptr;
  const auto bytes = step("oc_read", oc_.read, &Contract::read, buffer, bufferLength, timeoutMs);
  if (std::any_of(buffer_.begin() + static_cast<std::ptrdiff_t>(length), buffer_.end(),
                  [](std::uint8_t byte) { return byte != untouched; })) {
    throw Violation{"oc_read: written past the buffer"};
  }
  return bytes;
}

std::optional<int> CheckedLibrary::apply(std::int64_t exposureUs, int gain, int offset) {
  return step("oc_apply", oc_.apply, &Contract::apply, exposureUs, gain, offset);
}

std::optional<double> CheckedLibrary::temperature() {
  return step("oc_temperature", oc_.temperature, &Contract::temperature);
}

void CheckedLibrary::close() {
  step("oc_close", oc_.close, &Contract::close);
}

}  // namespace orvane::testing
