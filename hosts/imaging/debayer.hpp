// Colour images from colour mosaics.
#pragma once

#include "imaging/frame_layout.hpp"
#include "imaging/image.hpp"

namespace orvane::host {

/// The colour image of a one-channel image that was taken through a mosaic (not "none"). Bilinear:
/// of the two colours that a pixel lacks, each is the mean of its nearest neighbours that have it.
/// At the border the image is continued as in a mirror.
Image debayer(const Image& mosaicImage, Mosaic mosaic);

}  // namespace orvane::host
