// Exceptions that a simulated SDK throws on request, as the maker's SDK for this system would. On
// Windows they are those of Microsoft's compiler, whichever compiler built the simulator.
#pragma once

#include <cstdint>

namespace orvane::sim {

// Throws what sim_throw() describes. A standard exception's what() returns `text` unchanged, even
// if it is null or not readable.
[[noreturn]] void throwSdkException(std::int32_t kind, const char* text);

// The number of thrown objects that have not been destroyed. Negative if one was destroyed twice or
// at an address other than its own.
std::int32_t exceptionsAlive();

}  // namespace orvane::sim
