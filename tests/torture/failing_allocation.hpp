// Allocations that fail on request. This program's operator new serves the library's logic, which
// is linked into it, and the tests, but not the SDKs.
#pragma once

namespace orvane::testing {

/// Between these two calls the library runs: allocations are counted and may fail.
void enterLibrary();
void leaveLibrary();

/// Restarts the count of allocations by the library. The `failing`th one (from 1) throws
/// std::bad_alloc; 0 lets all succeed.
void countAllocations(long failing);

/// The number of allocations by the library since then.
long allocationCount();

/// Whether the allocation that was to fail has failed.
bool hasAllocationFailed();

/// Sets a function to call directly before the failing allocation throws.
void whenAllocationFails(void (*hook)());

/// The number of blocks that the library has allocated and not freed.
long libraryBlocks();

}  // namespace orvane::testing
