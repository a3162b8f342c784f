#include "raster/Blend.hpp"

#include <algorithm>
#include <cmath>

namespace plakard {

namespace {

std::uint8_t roundedByte(double value) {
    double rounded = std::round(value);
    return static_cast<std::uint8_t>(std::clamp(rounded, 0.0, 255.0));
}

}  // namespace

void blendInto(std::uint8_t* pixel, RGBA colour, double coverage) {
    if (!(coverage > 0)) return;
    double a = colour.a / 255.0;
    if (coverage <= 1) a *= coverage;
    if (!(a > 0)) return;
    const double da = pixel[3] / 255.0;
    const double k = 1 - a;
    const double outAlpha = a + k * da;
    if (!(outAlpha > 0)) return;
    const double red = (a * colour.r + k * (da * pixel[0])) / outAlpha;
    const double green = (a * colour.g + k * (da * pixel[1])) / outAlpha;
    const double blue = (a * colour.b + k * (da * pixel[2])) / outAlpha;
    pixel[0] = roundedByte(red);
    pixel[1] = roundedByte(green);
    pixel[2] = roundedByte(blue);
    pixel[3] = static_cast<std::uint8_t>(std::min(std::round(outAlpha * 255), 255.0));
}

void blendPixel(Canvas& canvas, std::int64_t x, std::int64_t y, RGBA colour, double coverage) {
    if (x < 0 || y < 0 || x >= canvas.width || y >= canvas.height) return;
    blendInto(canvas.pixel(x, y), colour, coverage);
}

}  // namespace plakard
