// Memory with a forbidden page on each side: one byte too far ends the process.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orvane {

/// Whole pages of memory between two that may not be touched.
class GuardedMemory {
 public:
  /// `size` is rounded up to whole pages. Throws std::bad_alloc.
  explicit GuardedMemory(std::size_t size);
  ~GuardedMemory();
  GuardedMemory(const GuardedMemory&) = delete;
  GuardedMemory& operator=(const GuardedMemory&) = delete;

  /// The first byte; the one before it is forbidden.
  std::uint8_t* begin() const { return begin_; }
  /// Behind the last byte; it is forbidden.
  std::uint8_t* end() const { return end_; }

 private:
  std::uint8_t* begin_;
  std::uint8_t* end_;
};

}  // namespace orvane
