// Memory between two inaccessible pages: an access one byte out of bounds ends the process.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orvane {

/// Whole pages of memory between two inaccessible ones.
class GuardedMemory {
 public:
  /// `size` is rounded up to whole pages. Throws std::bad_alloc.
  explicit GuardedMemory(std::size_t size);
  ~GuardedMemory();
  GuardedMemory(const GuardedMemory&) = delete;
  GuardedMemory& operator=(const GuardedMemory&) = delete;

  /// The first byte. The byte before it is inaccessible.
  std::uint8_t* begin() const { return begin_; }
  /// One past the last byte. The byte there is inaccessible.
  std::uint8_t* end() const { return end_; }

 private:
  std::uint8_t* begin_;
  std::uint8_t* end_;
};

}  // namespace orvane
