#include "raster/Canvas.hpp"

#include <cstring>
#include <utility>

#include "platform/Require.hpp"

namespace plakard {

namespace {

std::size_t byteCount(std::int64_t width, std::int64_t height) {
    require(width >= 1 && height >= 1);
    // Divide first so the product is checked before it can overflow.
    require(width <= INT64_MAX / 4 / height);
    return static_cast<std::size_t>(width * height * 4);
}

}  // namespace

// Transparent black comes zeroed, which for a fresh image-sized block costs
// nothing until its pages are drawn on; any other fill writes every byte.
Canvas::Canvas(std::int64_t width, std::int64_t height, RGBA fill)
    : width(width),
      height(height),
      pixels(fill == RGBA{0, 0, 0, 0} ? PixelBuffer::zeroed(byteCount(width, height))
                                      : PixelBuffer::uninitialised(byteCount(width, height))) {
    if (fill == RGBA{0, 0, 0, 0}) return;
    const std::uint8_t pattern[4] = {fill.r, fill.g, fill.b, fill.a};
    std::uint8_t* out = pixels.data();
    const std::size_t count = pixels.size();
    for (std::size_t i = 0; i < count; i += 4) std::memcpy(out + i, pattern, 4);
}

Canvas::Canvas(std::int64_t width, std::int64_t height, PixelBuffer pixels)
    : width(width), height(height), pixels(std::move(pixels)) {
    require(this->pixels.size() == byteCount(width, height));
}

}  // namespace plakard
