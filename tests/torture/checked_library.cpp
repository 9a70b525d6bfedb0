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

}  // namespace

std::string CheckedLibrary::remembered() const {
  return std::string("error \"") + oc_.error() + "\", libraries \"" + oc_.libraries() + "\", " +
         std::to_string(oc_.width()) + " x " + std::to_string(oc_.height()) + ", buffer " +
         std::to_string(oc_.buffer_size());
}

std::string CheckedLibrary::toBeRemembered() const {
  return "error \"" + contract_.error() + "\", libraries \"" + contract_.libraries() + "\", " +
         std::to_string(contract_.width()) + " x " + std::to_string(contract_.height()) +
         ", buffer " + std::to_string(contract_.bufferSize());
}

template <class Run, class Demand>
std::optional<CheckedLibrary::Returned> CheckedLibrary::step(const char* function, Run run,
                                                             Demand demand) {
  std::optional<Returned> returned = Returned{};
  if (surroundings_.enter) {
    surroundings_.enter();
  }
  try {
    run(*returned);
  } catch (const std::bad_alloc&) {
    returned.reset();
  }
  const std::optional<std::size_t> failedAfter =
      surroundings_.leave ? surroundings_.leave() : std::nullopt;
  const std::vector<Event> events = surroundings_.takeEvents();

  // The test knows between which events an allocation failed, but not which allocation it was. It
  // tries the places where the contract allows one there; one of them must explain all that
  // followed.
  const Contract before = contract_;
  std::string differences;
  for (int place = 0;; ++place) {
    contract_ = before;
    const auto failure =
        failedAfter ? std::optional(FailedAllocation{*failedAfter, place}) : std::nullopt;
    Transcript did(events, failure);
    std::string difference;
    try {
      std::string demanded;
      std::string found;
      try {
        const auto result = demand(did);
        demanded = shown(result);
        if (returned) {
          using Result = decltype(demand(did));
          if constexpr (std::is_same_v<Result, int>) {
            found = shown(returned->number);
          } else if constexpr (std::is_same_v<Result, double>) {
            found = shown(returned->real);
          } else {
            found = shown(std::string(returned->text));
          }
        } else {
          found = badAllocation;
        }
      } catch (const std::bad_alloc&) {
        demanded = badAllocation;
        found = returned ? "it returns" : badAllocation;
      }
      did.expectEnd();
      if (found != demanded) {
        difference = mismatch("returned", found, demanded);
      } else if (remembered() != toBeRemembered()) {
        difference = mismatch("remembers", remembered(), toBeRemembered());
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
  step(
      "oc_library_dir", [&](Returned&) { oc_.library_dir(directory); },
      [&](Transcript& did) {
        Contract::libraryDir(did);
        return 0;
      });
}

std::optional<int> CheckedLibrary::scan() {
  const auto returned = step(
      "oc_scan", [&](Returned& result) { result.number = oc_.scan(); },
      [&](Transcript& did) { return contract_.scan(did); });
  return returned ? std::optional(returned->number) : std::nullopt;
}

std::optional<std::string> CheckedLibrary::info(int index) {
  const auto returned = step(
      "oc_info", [&](Returned& result) { result.text = oc_.info(index); },
      [&](Transcript& did) { return contract_.info(index, did); });
  return returned ? std::optional<std::string>(returned->text) : std::nullopt;
}

std::optional<int> CheckedLibrary::open(const OpenArguments& arguments) {
  const auto returned = step(
      "oc_open",
      [&](Returned& result) {
        result.number =
            oc_.open(arguments.index, arguments.width, arguments.height, arguments.bin,
                     arguments.format, arguments.exposureUs, arguments.gain, arguments.offset);
      },
      [&](Transcript& did) { return contract_.open(arguments, did); });
  return returned ? std::optional(returned->number) : std::nullopt;
}

std::optional<int> CheckedLibrary::read(std::uint8_t* buffer, int bufferLength, int timeoutMs) {
  const auto returned = step(
      "oc_read",
      [&](Returned& result) { result.number = oc_.read(buffer, bufferLength, timeoutMs); },
      [&](Transcript& did) {
        return contract_.read(buffer != nullptr, bufferLength, timeoutMs, did);
      });
  return returned ? std::optional(returned->number) : std::nullopt;
}

std::optional<int> CheckedLibrary::apply(std::int64_t exposureUs, int gain, int offset) {
  const auto returned = step(
      "oc_apply", [&](Returned& result) { result.number = oc_.apply(exposureUs, gain, offset); },
      [&](Transcript& did) { return contract_.apply(exposureUs, gain, offset, did); });
  return returned ? std::optional(returned->number) : std::nullopt;
}

std::optional<double> CheckedLibrary::temperature() {
  const auto returned = step(
      "oc_temperature", [&](Returned& result) { result.real = oc_.temperature(); },
      [&](Transcript& did) { return contract_.temperature(did); });
  return returned ? std::optional(returned->real) : std::nullopt;
}

void CheckedLibrary::close() {
  step(
      "oc_close", [&](Returned&) { oc_.close(); },
      [&](Transcript& did) {
        contract_.close(did);
        return 0;
      });
}

}  // namespace orvane::testing
