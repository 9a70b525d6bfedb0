// What the library does for GCC's runtime, which is linked into it on Windows, so that nothing of
// it is left when the library is unloaded.
#pragma once

namespace orvane::platform {

/// Call it when the library has been loaded.
void prepareGccRuntime() noexcept;

/// Gives back all memory that the runtime still holds. Call it at the end of an unload: no
/// exception may be thrown afterwards.
void releaseGccRuntime() noexcept;

}  // namespace orvane::platform
