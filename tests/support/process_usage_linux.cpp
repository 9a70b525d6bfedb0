// Memory and handles of this process, on Linux.
#include "support/process_usage.hpp"

#include <malloc.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace orvane::testing {

std::size_t residentBytes() {
  std::ifstream usage("/proc/self/statm");
  std::size_t all = 0;
  std::size_t resident = 0;
  usage >> all >> resident;
  return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

std::size_t heapBytes() {
  const struct mallinfo2 heap = mallinfo2();
  return heap.uordblks + heap.hblkhd;
}

std::size_t openHandles() {
  const auto files = std::filesystem::directory_iterator("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

}  // namespace orvane::testing
