#pragma once
// The drawing primitives every composed page is painted with. Drawing changes
// the canvas in place; the blur returns a new canvas. Geometry is in pixels,
// origin top-left, y down; pixel (px, py) is sampled at its centre.

#include <cstdint>

#include "raster/Blend.hpp"
#include "raster/Canvas.hpp"
#include "raster/RGBA.hpp"

namespace plakard {

// Coverage of pixel (px, py) by the rounded rectangle (x, y, w, h, radius):
// 0.5 minus the signed distance of its centre, clamped to 0...1.
double roundedRectCoverage(std::int64_t px, std::int64_t py, double x, double y, double w, double h,
                           double radius);

void fillRoundedRect(Canvas& canvas, RGBA colour, double x, double y, double w, double h, double radius);

// Resamples `image` (sRGB-correct) to the rectangle's rounded size and draws it
// clipped to the rounded rectangle.
void drawImageRounded(Canvas& canvas, const Canvas& image, double x, double y, double w, double h,
                      double radius);

// Blends every pixel of `image` with alpha above 0 at full coverage, image
// pixel (i, j) onto canvas pixel (x + i, y + j).
void compositeOver(Canvas& canvas, const Canvas& image, std::int64_t x, std::int64_t y);

// Three horizontal + vertical box passes of half-width max(1, round(1.2 x
// amount)), edges clamped; an amount below 0.5 gives an unchanged copy.
Canvas boxBlurred(const Canvas& canvas, double amount);

}  // namespace plakard
