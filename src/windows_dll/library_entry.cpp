// The library's entry point on Windows.
#include <windows.h>

#ifdef ORVANE_HAS_GCC_RUNTIME
#  include "windows_dll/gcc_runtime.hpp"
#endif

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason,
                               [[maybe_unused]] LPVOID processEnds) {
  if (reason == DLL_PROCESS_ATTACH) {
    // The library needs no notifications of threads. The call succeeds because the library has no
    // TLS directory (see gcc_runtime.cpp).
    DisableThreadLibraryCalls(module);
#ifdef ORVANE_HAS_GCC_RUNTIME
    orvane::prepareGccRuntime();
#endif
  }
#ifdef ORVANE_HAS_GCC_RUNTIME
  // When the process ends, the system frees everything.
  if (reason == DLL_PROCESS_DETACH && processEnds == nullptr) {
    orvane::releaseGccRuntime();
  }
#endif
  return TRUE;
}
