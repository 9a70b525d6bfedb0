// Frees what the statically linked GCC runtime would leak on every load and unload.
#pragma once

namespace orvane {

/// Allocates the slot for the runtime's state of each thread. Call it when the library has been
/// loaded. Without a slot, all threads share one state.
void prepareGccRuntime() noexcept;

/// Frees all memory that the runtime still holds. Call it at the end of an unload: no exception may
/// be thrown afterwards.
void releaseGccRuntime() noexcept;

}  // namespace orvane
