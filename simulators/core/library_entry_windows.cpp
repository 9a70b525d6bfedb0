// The entry point of a simulated SDK on Windows.
#include <windows.h>

#include "core/sdk.hpp"

// An SDK whose commands are wrong is not loaded. Other systems cannot refuse to load a library:
// there it shows no cameras.
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
  return reason == DLL_PROCESS_ATTACH && orvane::sim::sdk().isMisconfigured ? FALSE : TRUE;
}
