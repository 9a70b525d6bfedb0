// Memory and handles of this process, on Windows.
#include "support/process_usage.hpp"

#include <windows.h>

#include <psapi.h>

#include <cstdint>

namespace orvane::testing {

namespace {

PROCESS_MEMORY_COUNTERS memory() {
  PROCESS_MEMORY_COUNTERS counters{};
  counters.cb = sizeof counters;
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
  return counters;
}

}  // namespace

std::size_t residentBytes() {
  return memory().WorkingSetSize;
}

std::size_t heapBytes() {
  return memory().PagefileUsage;
}

std::size_t openHandles() {
  // Tests each value, because Wine's GetProcessHandleCount() always returns 0. Handles are
  // multiples of 4, and closed ones are reused.
  constexpr std::uintptr_t beyond = 0x10000;
  std::size_t count = 0;
  for (std::uintptr_t value = 4; value < beyond; value += 4) {
    DWORD flags = 0;
    count += GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) != 0 ? 1 : 0;
  }
  return count;
}

}  // namespace orvane::testing
