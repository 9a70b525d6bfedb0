// The library's entry point on Windows.
#include <windows.h>

// Thread notifications are of no use here: the library keeps nothing per thread.
extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID /*reserved*/) {
  if (reason == DLL_PROCESS_ATTACH) {
    DisableThreadLibraryCalls(module);
  }
  return TRUE;
}
