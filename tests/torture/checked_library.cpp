// Calls the library and compares the outcome with the contract.
#include "torture/checked_library.hpp"

#include <cstring>
#include <new>

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
std::string remembered(const std::string& error, const std::string& libraries, int width,
                       int height, int bufferSize) {
  return "error \"" + error + "\", libraries \"" + libraries + "\", " + std::to_string(width) +
         " x " + std::to_string(height) + ", buffer " + std::to_string(bufferSize);
}

}  // namespace

template <class Run, class Demand>
auto CheckedLibrary::step(const char* function, Run run, Demand demand)
    -> std::optional<std::invoke_result_t<Demand, Transcript&>> {
  if (surroundings_.enter) {
    surroundings_.enter();
  }
  std::optional<std::invoke_result_t<Run>> raw;
  try {
    raw = run();
  } catch (const std::bad_alloc&) {  // NOLINT(bugprone-empty-catch): `raw` stays empty
  }
  const std::optional<std::size_t> failedAfter =
      surroundings_.leave ? surroundings_.leave() : std::nullopt;
  // Text is copied only here, because inside the library the allocation would be counted.
  std::optional<std::invoke_result_t<Demand, Transcript&>> returned = raw;
  const std::string found = returned ? shown(*returned) : badAllocation;
  const std::string foundState =
      remembered(oc_.error(), oc_.libraries(), oc_.width(), oc_.height(), oc_.buffer_size());
  const std::vector<Event> events = surroundings_.takeEvents();

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
      const std::string demandedState =
          remembered(contract_.error(), contract_.libraries(), contract_.width(),
                     contract_.height(), contract_.bufferSize());
      if (found != demanded) {
        difference = mismatch("returned", found, demanded);
      } else if (foundState != demandedState) {
        difference = mismatch("remembers", foundState, demandedState);
      }
    } catch (const Violation& violation) {
      difference = violation.text;
    }
    const bool isExplained = !failedAfter || did.hasFailed();
    if (difference.empty() && isExplained) {
      return returned;
    }
    differences += "\n  ";
    differences += difference.empty() ? "an allocation where none belongs" : difference;
    if (!failedAfter || !did.hasFailed()) {
      throw Violation{std::string(function) + ":" + differences};
    }
  }
}

void CheckedLibrary::libraryDir(const char* directory) {
  const auto run = [&] {
    oc_.library_dir(directory);
    return 0;
  };
  step("oc_library_dir", run, [&](Transcript& did) {
    Contract::libraryDir(did);
    return 0;
  });
}

std::optional<int> CheckedLibrary::scan() {
  return step("oc_scan", oc_.scan, [&](Transcript& did) { return contract_.scan(did); });
}

std::optional<std::string> CheckedLibrary::info(int index) {
  return step(
      "oc_info", [&] { return oc_.info(index); },
      [&](Transcript& did) { return contract_.info(index, did); });
}

std::optional<int> CheckedLibrary::open(const OpenArguments& arguments) {
  const auto run = [&] {
    return oc_.open(arguments.index, arguments.width, arguments.height, arguments.bin,
                    arguments.format, arguments.exposureUs, arguments.gain, arguments.offset);
  };
  return step("oc_open", run, [&](Transcript& did) { return contract_.open(arguments, did); });
}

std::optional<int> CheckedLibrary::read(std::uint8_t* buffer, int bufferLength, int timeoutMs) {
  return step(
      "oc_read", [&] { return oc_.read(buffer, bufferLength, timeoutMs); },
      [&](Transcript& did) {
        return contract_.read(buffer != nullptr, bufferLength, timeoutMs, did);
      });
}

std::optional<int> CheckedLibrary::apply(std::int64_t exposureUs, int gain, int offset) {
  return step(
      "oc_apply", [&] { return oc_.apply(exposureUs, gain, offset); },
      [&](Transcript& did) { return contract_.apply(exposureUs, gain, offset, did); });
}

std::optional<double> CheckedLibrary::temperature() {
  return step("oc_temperature", oc_.temperature,
              [&](Transcript& did) { return contract_.temperature(did); });
}

void CheckedLibrary::close() {
  const auto run = [&] {
    oc_.close();
    return 0;
  };
  step("oc_close", run, [&](Transcript& did) {
    contract_.close(did);
    return 0;
  });
}

}  // namespace orvane::testing
