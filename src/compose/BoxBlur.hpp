#pragma once

#include "raster/Canvas.hpp"

namespace plakard {

// boxBlurred's work done on the canvas itself, for a caller that has no more
// use for the sharp image (the shadow's scratch sheet): it saves a page-sized
// copy.
void blurInPlace(Canvas& canvas, double amount);

}  // namespace plakard
