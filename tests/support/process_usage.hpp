// Memory and handles of this process.
#pragma once

#include <cstddef>

namespace orvane::testing {

/// Resident memory of the process in bytes.
std::size_t residentBytes();

/// Bytes that are allocated on the heap. On Windows every library has a heap of its own, so there
/// it is the committed memory of the process.
std::size_t heapBytes();

/// Number of open file descriptors or handles.
std::size_t openHandles();

}  // namespace orvane::testing
