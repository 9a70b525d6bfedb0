// Memory that runs out on demand. This program's operator new serves the library's logic, which is
// linked into it, and the tests, but none of the SDKs.
#pragma once

#include <cstddef>
#include <optional>

namespace orvane::testing {

/// The library is at work from here to the scope's end: allocations are counted and may fail.
void enterLibrary();
void leaveLibrary();

/// Begins to count the library's allocations anew. The `failing`th of them (1 is the first) throws
/// std::bad_alloc; 0 lets all succeed.
void countAllocations(long failing);

/// The library's allocations since then.
long allocationCount();

/// Whether the failing allocation has been reached.
bool hasAllocationFailed();

/// What is done right before the failing allocation throws.
void whenAllocationFails(void (*hook)());

/// Blocks of memory that the library has taken and nobody has given back.
long libraryBlocks();

}  // namespace orvane::testing
