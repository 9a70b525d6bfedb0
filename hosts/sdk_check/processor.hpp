// The processors that libraries are made for.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "sdk_check/library_file.hpp"

namespace orvane::host {

/// A processor, and its number in a format of libraries.
struct Processor {
  const char* name;
  std::uint16_t machine;
  int bits;
};

/// The processor that this program is made for.
#if defined(__aarch64__) || defined(_M_ARM64)
inline constexpr const char* thisProcessor = "ARM64";
#else
inline constexpr const char* thisProcessor = "x64";
#endif

/// Fills in for which processor a file is. One that is not known has `otherBits` bits.
inline void describeProcessor(std::span<const Processor> known, std::uint16_t machine,
                              int otherBits, LibraryFile& file) {
  file.processor = "processor " + std::to_string(machine);
  file.bits = otherBits;
  for (const Processor& processor : known) {
    if (processor.machine == machine) {
      file.processor = processor.name;
      file.bits = processor.bits;
    }
  }
  file.isForThisMachine = file.processor == thisProcessor;
}

}  // namespace orvane::host
