// Reading and writing descriptors of the C runtime, whose functions have other names on Windows.
#pragma once

#include <cstddef>

namespace orvane::host {

/// Waits for bytes. Returns how many were read; 0 at the end or after a failure.
std::size_t readDescriptor(int descriptor, char* bytes, std::size_t size);

/// Returns how many bytes were written, 1 or more; 0 after a failure.
std::size_t writeDescriptor(int descriptor, const char* bytes, std::size_t size);

void closeDescriptor(int descriptor);

}  // namespace orvane::host
