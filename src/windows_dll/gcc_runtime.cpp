// Frees what the statically linked GCC runtime would leak on every load and unload: 75 KB and, once
// an exception has been thrown, four handles and one of the process's 1088 slots of thread-local
// storage. Without this, the 1085th such load would end the host.
#include "windows_dll/gcc_runtime.hpp"

#include <windows.h>

#include <cxxabi.h>

namespace __cxxabiv1 {

// A thread's exceptions in flight, in the layout of the Itanium C++ ABI.
struct __cxa_eh_globals {
  void* caughtExceptions;
  unsigned int uncaughtExceptions;
};

}  // namespace __cxxabiv1

namespace {

using ExceptionState = __cxxabiv1::__cxa_eh_globals;

// Fiber-local storage, because the system then frees each thread's state itself: when the thread
// ends or when the slot is freed.
DWORD slot = FLS_OUT_OF_INDEXES;

// Shared by all threads if the system has no slot or no memory left. This works because the library
// has one caller at a time, and no exception is in flight between two calls.
ExceptionState sharedState{};

void WINAPI freeState(void* state) {
  HeapFree(GetProcessHeap(), 0, state);
}

ExceptionState* stateOfThread() noexcept {
  if (slot == FLS_OUT_OF_INDEXES) {
    return &sharedState;
  }
  void* state = FlsGetValue(slot);
  if (state == nullptr) {
    state = HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, sizeof(ExceptionState));
    if (state == nullptr || FlsSetValue(slot, state) == 0) {
      freeState(state);
      return &sharedState;
    }
  }
  return static_cast<ExceptionState*>(state);
}

}  // namespace

namespace __cxxabiv1 {

// These two replace the runtime's functions, the only ones that need its thread-local storage.
extern "C" __cxa_eh_globals* __cxa_get_globals() noexcept {
  return stateOfThread();
}

extern "C" __cxa_eh_globals* __cxa_get_globals_fast() noexcept {
  return stateOfThread();
}

}  // namespace __cxxabiv1

namespace __gnu_cxx {

// Frees the runtime's reserve memory for exceptions. It exists for memory checkers, and no header
// declares it.
void __freeres();

}  // namespace __gnu_cxx

// The C runtime calls this at its start unless it is null. The runtime's own definition would add a
// TLS directory to the library, which nothing here uses, and DisableThreadLibraryCalls() fails for
// a library that has one.
extern "C" const PIMAGE_TLS_CALLBACK __dyn_tls_init_callback = nullptr;

namespace orvane {

void prepareGccRuntime() noexcept {
  slot = FlsAlloc(freeState);
}

void releaseGccRuntime() noexcept {
  if (slot != FLS_OUT_OF_INDEXES) {
    FlsFree(slot);
    slot = FLS_OUT_OF_INDEXES;
  }
  __gnu_cxx::__freeres();
}

}  // namespace orvane
