// What the library does for GCC's runtime, which is linked into it on Windows, so that nothing of
// it is left when the library is unloaded.
#pragma once

namespace orvane {

/// Takes the slot in which the runtime's state of each thread is kept. Call it when the library has
/// been loaded. Without a slot, all threads share one state.
void prepareGccRuntime() noexcept;

/// Gives back all memory that the runtime still holds. Call it at the end of an unload: no
/// exception may be thrown afterwards.
void releaseGccRuntime() noexcept;

}  // namespace orvane
