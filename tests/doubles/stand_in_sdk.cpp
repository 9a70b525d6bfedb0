// A test double of ZWO's SDK that depends on a second library and can refuse to load. It reports
// one camera and then fails with a number that only the second library knows.
#include "doubles/sdk_dependency.hpp"

#if defined(_WIN32)
#  include <windows.h>
#endif

extern "C" int ASIGetNumOfConnectedCameras() {
  return 1;
}

extern "C" int ASIGetCameraProperty(void* /*info*/, int /*index*/) {
  return numberOfTheDependency();
}

#if defined(_WIN32)
extern "C" BOOL WINAPI DllMain(HINSTANCE /*module*/, DWORD reason, LPVOID /*reserved*/) {
  const bool refuses = GetEnvironmentVariableW(L"ORVANE_STAND_IN_REFUSES", nullptr, 0) != 0;
  return reason != DLL_PROCESS_ATTACH || !refuses ? TRUE : FALSE;
}
#endif
