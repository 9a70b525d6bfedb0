// GCC's runtime, as it is linked into the library on Windows, and what it keeps beyond an unload.
#pragma once

#include <windows.h>

namespace orvane::platform {

/// Gives back what the runtime would keep for the rest of the process although the library is
/// unloaded: the memory that it sets aside for exceptions and, once one has been thrown, the
/// calling thread's data with its handles and a slot of thread-local storage, of which a process
/// has 1088. Call it at the end of an unload only: no exception may be thrown afterwards.
void releaseGccRuntime(HINSTANCE library) noexcept;

}  // namespace orvane::platform
