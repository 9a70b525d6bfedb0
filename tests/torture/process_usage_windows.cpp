// What this process uses, on Windows.
#include "torture/process_usage.hpp"

#include <windows.h>

#include <psapi.h>

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
  DWORD count = 0;
  GetProcessHandleCount(GetCurrentProcess(), &count);
  return count;
}

}  // namespace orvane::testing
