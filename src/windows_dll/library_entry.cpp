// The library's entry point on Windows.
#include <windows.h>

#ifdef ORVANE_HAS_GCC_RUNTIME
#  include "windows_dll/gcc_runtime.hpp"
#endif

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason,
                               [[maybe_unused]] LPVOID processEnds) {
  if (reason == DLL_PROCESS_ATTACH) {
    // Thread notifications are of no use here: the library's own code keeps nothing per thread.
    DisableThreadLibraryCalls(module);
#ifdef ORVANE_HAS_GCC_RUNTIME
    orvane::prepareGccRuntime();
#endif
  }
#ifdef ORVANE_HAS_GCC_RUNTIME
  // Where the process ends, everything goes with it.
  if (reason == DLL_PROCESS_DETACH && processEnds == nullptr) {
    orvane::releaseGccRuntime();
  }
#endif
  return TRUE;
}
