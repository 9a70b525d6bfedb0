// What the library does for GCC's runtime, which is linked into it on Windows, so that nothing of
// it is left when the library is unloaded. Left to itself, the runtime keeps 75 KB from every load,
// and once an exception has been thrown also four handles and one of the process's 1088 slots of
// thread-local storage: the 1085th time would end the host.
#include "windows_dll/gcc_runtime.hpp"

#include <windows.h>

#include <cxxabi.h>

namespace __cxxabiv1 {

// The exceptions that a thread has under way, laid out as the Itanium C++ ABI has it.
struct __cxa_eh_globals {
  void* caughtExceptions;
  unsigned int uncaughtExceptions;
};

}  // namespace __cxxabiv1

namespace {

using ExceptionState = __cxxabiv1::__cxa_eh_globals;

// Fiber-local, because then the system itself frees each thread's state: at the thread's end, or
// when the slot is given back.
DWORD slot = FLS_OUT_OF_INDEXES;

// For all threads, where the system has no slot or no memory left. The library has one caller at a
// time, and between two calls no exception is under way.
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

// These two stand in for the runtime's own: they are all that needs its thread-local storage.
extern "C" __cxa_eh_globals* __cxa_get_globals() noexcept {
  return stateOfThread();
}

extern "C" __cxa_eh_globals* __cxa_get_globals_fast() noexcept {
  return stateOfThread();
}

}  // namespace __cxxabiv1

namespace __gnu_cxx {

// Frees the memory that is set aside for exceptions. Made for memory checkers; no header has it.
void __freeres();

}  // namespace __gnu_cxx

// The C runtime calls this at its start, where it is not null. Its own definition would also bring
// a table of thread-local storage into the library, which nothing here uses, and
// DisableThreadLibraryCalls() fails for a library that has one.
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
