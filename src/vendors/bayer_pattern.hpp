// The numbering of Bayer patterns that ZWO and Player One share.
#pragma once

#include <cstddef>
#include <iterator>

#include "catalogue/camera_info.hpp"

namespace orvane {

/// Our code for the pattern 0 RG, 1 BG, 2 GR, 3 GB, named by the first two pixels of the first row.
/// BayerNone for any other number.
constexpr BayerCode bayerOfPattern(int pattern) {
  constexpr BayerCode codes[] = {BayerRggb, BayerBggr, BayerGrbg, BayerGbrg};
  const auto position = static_cast<std::size_t>(pattern);  // a negative number becomes too large
  return position < std::size(codes) ? codes[position] : BayerNone;
}

}  // namespace orvane
