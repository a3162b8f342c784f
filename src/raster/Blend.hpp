#pragma once
// Straight-alpha source-over blending of one colour into one pixel: the one
// formula behind every drawn pixel (text, shapes, images, composites).

#include <cstdint>

#include "raster/Canvas.hpp"
#include "raster/RGBA.hpp"

namespace plakard {

// Blends `colour` at `coverage` (above 1 counts as 1; 0 or below draws
// nothing) over the pixel at (x, y); pixels outside the canvas are skipped.
void blendPixel(Canvas& canvas, std::int64_t x, std::int64_t y, RGBA colour, double coverage);

// The same blend on a pixel known to be inside the canvas.
void blendInto(std::uint8_t* pixel, RGBA colour, double coverage);

}  // namespace plakard
