// What this process uses of the machine.
#pragma once

#include <cstddef>

namespace orvane::testing {

/// Bytes of memory that the process occupies.
std::size_t residentBytes();

/// Bytes that are allocated on the heap; on Windows, where every library has a heap of its own, the
/// memory that the process has committed.
std::size_t heapBytes();

/// Open files and the like.
std::size_t openHandles();

}  // namespace orvane::testing
