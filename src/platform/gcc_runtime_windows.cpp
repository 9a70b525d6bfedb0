// GCC's runtime, as it is linked into the library on Windows, and what it keeps beyond an unload.
#include "platform/gcc_runtime_windows.hpp"

#include <array>
#include <cstddef>

namespace {

// The slots that the runtime has taken. It takes one, at its first exception.
std::array<DWORD, 16> slots;
std::size_t slotCount = 0;

// In place of TlsAlloc() for everything that is linked into the library.
DWORD WINAPI takeSlot() {
  // Not kept in a static: initialising one may itself be what the slot is for.
  const auto tlsAlloc = reinterpret_cast<DWORD(WINAPI*)()>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "TlsAlloc")));
  const DWORD slot = tlsAlloc();
  if (slot != TLS_OUT_OF_INDEXES && slotCount < slots.size()) {
    slots[slotCount++] = slot;
  }
  return slot;
}

}  // namespace

extern "C" {

// The runtime calls TlsAlloc() through this pointer, which otherwise comes with the system's import
// library. It keeps the slot's number to itself and has no function that frees it.
extern DWORD(WINAPI* const __imp_TlsAlloc)();
[[gnu::used]] DWORD(WINAPI* const __imp_TlsAlloc)() = takeSlot;

// The library's own entry in the loader's table of thread notifications.
extern const IMAGE_TLS_DIRECTORY _tls_used;

}  // extern "C"

namespace __gnu_cxx {

// Frees what is set aside for exceptions. The standard library has it for memory checkers, in no
// header.
void __freeres();

}  // namespace __gnu_cxx

namespace orvane::platform {

void releaseGccRuntime(HINSTANCE library) noexcept {
  // A thread's data is freed when the thread ends; for the one that unloads, this is the end.
  const auto* notify = reinterpret_cast<const PIMAGE_TLS_CALLBACK*>(_tls_used.AddressOfCallBacks);
  for (; notify != nullptr && *notify != nullptr; ++notify) {
    (*notify)(library, DLL_THREAD_DETACH, nullptr);
  }
  for (std::size_t i = 0; i < slotCount; ++i) {
    TlsFree(slots[i]);
  }
  __gnu_cxx::__freeres();
}

}  // namespace orvane::platform
