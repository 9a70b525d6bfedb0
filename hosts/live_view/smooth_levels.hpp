// Hides the steps of samples with few bits in a picture that is brightened.
#pragma once

#include "imaging/image.hpp"

namespace orvane::host {

/// The distance of two neighbouring values of 8 bits in an Image.
constexpr int byteStep = 257;

/// Fills in the levels between the steps of samples of 8 bits: each sample is moved towards the
/// mean of the samples around it that differ from it by a step or less, but by no more than half a
/// step. So an even slope has no bands, and whatever is larger than a step stays as it is.
void smoothLevels(Image& image);

}  // namespace orvane::host
