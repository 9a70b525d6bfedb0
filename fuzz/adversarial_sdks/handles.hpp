// Device handles of the SDKs that give one: never the same twice, so that a stale one is noticed.
#pragma once

#include <cstdint>

#include "adversarial_sdks/adversary.hpp"

namespace orvane::fuzz {

/// Null now and then; else a new handle of a device that is now open.
inline void* openHandle(Vendor vendor) {
  static std::uintptr_t last = 0x1000;
  if (!adversary().isSound()) {
    return nullptr;
  }
  last += 16;
  adversary().opened(vendor, last);
  return reinterpret_cast<void*>(last);  // NOLINT(performance-no-int-to-ptr): never followed
}

inline std::uintptr_t keyOf(const void* handle) {
  return reinterpret_cast<std::uintptr_t>(handle);
}

}  // namespace orvane::fuzz
