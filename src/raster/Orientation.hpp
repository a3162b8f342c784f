#pragma once
// EXIF orientation: how the stored pixels must be turned or mirrored to show
// the image as the camera's user saw it.

#include <cstdint>
#include <span>

#include "raster/Canvas.hpp"

namespace plakard {

// The Orientation tag (1..8) of an EXIF block (a TIFF header and its first
// directory), or 1 when it is missing, damaged or out of range.
int exifOrientation(std::span<const std::uint8_t> tiff);

// The image as shown under `orientation`: 1 is upright, 2..8 mirror and turn
// (5..8 swap width and height). Any other value leaves the image as it is.
Canvas oriented(Canvas image, int orientation);

}  // namespace plakard
