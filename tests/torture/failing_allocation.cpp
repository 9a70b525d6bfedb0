// The program's operator new: it counts, and fails on request.
#include "torture/failing_allocation.hpp"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

bool isInLibrary = false;
long counted = 0;
long failingOne = 0;
void (*failureHook)() = nullptr;
long blocks = 0;

// A header before every block. It says who allocated the block.
struct alignas(alignof(std::max_align_t)) Owner {
  bool isLibrary;
};

void* allocated(std::size_t size) {
  if (isInLibrary && ++counted == failingOne) {
    if (failureHook != nullptr) {
      failureHook();
    }
    throw std::bad_alloc();
  }
  void* const memory = std::malloc(sizeof(Owner) + size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  blocks += isInLibrary ? 1 : 0;
  return new (memory) Owner{isInLibrary} + 1;
}

void freed(void* memory) noexcept {
  if (memory != nullptr) {
    Owner* const owner = static_cast<Owner*>(memory) - 1;
    blocks -= owner->isLibrary ? 1 : 0;
    std::free(owner);
  }
}

}  // namespace

void* operator new(std::size_t size) {
  return allocated(size);
}
void* operator new[](std::size_t size) {
  return allocated(size);
}
void operator delete(void* memory) noexcept {
  freed(memory);
}
void operator delete[](void* memory) noexcept {
  freed(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  freed(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  freed(memory);
}

namespace orvane::testing {

void enterLibrary() {
  isInLibrary = true;
}

void leaveLibrary() {
  isInLibrary = false;
}

void countAllocations(long failing) {
  counted = 0;
  failingOne = failing;
}

long allocationCount() {
  return counted;
}

bool hasAllocationFailed() {
  return failingOne > 0 && counted >= failingOne;
}

void whenAllocationFails(void (*hook)()) {
  failureHook = hook;
}

long libraryBlocks() {
  return blocks;
}

}  // namespace orvane::testing
