// Exceptions that a simulated SDK throws on request, as the maker's SDK for this system would: on
// Windows as Microsoft's compiler throws them, whichever compiler built the simulator.
#pragma once

#include <cstdint>

namespace orvane::sim {

enum class ThrownKind {
  Standard,  // an object that derives from std::runtime_error
  Number,    // the int 7
  Object,    // an object of a class of its own
};

// Throws. `text` is what a standard exception's what() returns, as it is: also null, or a text
// that cannot be read.
[[noreturn]] void throwSdkException(ThrownKind kind, const char* text);

// Objects that have been thrown and not been destroyed. Negative after one was destroyed twice, or
// at another place than where it was thrown.
std::int32_t exceptionsAlive();

}  // namespace orvane::sim
