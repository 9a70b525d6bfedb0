// Memory between two inaccessible pages.
#include "support/guarded_memory.hpp"

#include <new>

#ifdef _WIN32
#  include <windows.h>
#else
#  include <sys/mman.h>
#endif

namespace orvane {

namespace {

constexpr std::size_t pageSize = 4096;

}  // namespace

GuardedMemory::GuardedMemory(std::size_t size) {
  const std::size_t inner = (size + pageSize - 1) / pageSize * pageSize;
  const std::size_t all = inner + 2 * pageSize;
#ifdef _WIN32
  void* const memory = VirtualAlloc(nullptr, all, MEM_RESERVE, PAGE_NOACCESS);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  begin_ = static_cast<std::uint8_t*>(memory) + pageSize;
  if (VirtualAlloc(begin_, inner, MEM_COMMIT, PAGE_READWRITE) == nullptr) {
    throw std::bad_alloc();
  }
#else
  void* const memory = mmap(nullptr, all, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) {
    throw std::bad_alloc();
  }
  begin_ = static_cast<std::uint8_t*>(memory) + pageSize;
  if (mprotect(begin_, inner, PROT_READ | PROT_WRITE) != 0) {
    throw std::bad_alloc();
  }
#endif
  end_ = begin_ + inner;
}

GuardedMemory::~GuardedMemory() {
  std::uint8_t* const memory = begin_ - pageSize;
#ifdef _WIN32
  VirtualFree(memory, 0, MEM_RELEASE);
#else
  munmap(memory, static_cast<std::size_t>(end_ - begin_) + 2 * pageSize);
#endif
}

}  // namespace orvane
