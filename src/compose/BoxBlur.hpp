#pragma once

#include <cstdint>

#include "raster/Canvas.hpp"

namespace plakard {

// boxBlurred's work done on the canvas itself, for a caller that has no more
// use for the sharp image (the shadow's scratch sheet): it saves a page-sized
// copy.
void blurInPlace(Canvas& canvas, double amount);

// The half-width k of each of the blur's box passes: max(1, round(1.2 x
// amount)), or 0 for an amount below 0.5, which leaves the image as it is.
// Three passes spread a shape by 3k pixels at most.
std::int64_t blurHalfWidth(double amount);

}  // namespace plakard
