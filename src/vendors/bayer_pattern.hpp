// The numbering of colour mosaics in which two of the makers agree.
#pragma once

#include <cstddef>
#include <iterator>

#include "catalogue/camera_info.hpp"

namespace orvane {

/// Our code for the pattern 0 RG, 1 BG, 2 GR, 3 GB, named by the first two pixels of the first row;
/// none for any other number.
constexpr BayerCode bayerOfPattern(int pattern) {
  constexpr BayerCode codes[] = {BayerRggb, BayerBggr, BayerGrbg, BayerGbrg};
  const auto position = static_cast<std::size_t>(pattern);  // a negative one lies beyond the end
  return position < std::size(codes) ? codes[position] : BayerNone;
}

}  // namespace orvane
