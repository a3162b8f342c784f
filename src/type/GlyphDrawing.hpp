#pragma once
// One glyph rasterised by stb_truetype and blended into a canvas, for the line
// layouts of type/ alone.

#include <cstdint>

#include <stb_truetype.h>

#include "raster/Canvas.hpp"
#include "raster/RGBA.hpp"

namespace plakard {

// The glyph with its pen at `pen` and its baseline on row `baselineRow`, at
// `scale` pixels per font unit, clipped at every edge of the canvas. It is
// rasterised, blended and freed before the next: no cache outlives its glyph.
void drawGlyph(const stbtt_fontinfo& info, int glyph, Canvas& canvas, RGBA colour, double pen,
               std::int64_t baselineRow, float scale);

}  // namespace plakard
