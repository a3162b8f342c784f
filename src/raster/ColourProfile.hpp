#pragma once
// Embedded ICC profiles: the decoded pixels are brought into sRGB, the space
// every other part of the program (and the PNGs it writes) assumes.

#include <cstdint>
#include <span>

#include "raster/Canvas.hpp"

namespace plakard {

// Converts the colour of every pixel from `profile` to sRGB, alpha untouched.
// A profile that cannot be read, is not an RGB one or already behaves as sRGB
// leaves the pixels exactly as they are.
void convertToSRGB(Canvas& image, std::span<const std::uint8_t> profile);

}  // namespace plakard
