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

Canvas::Canvas(std::int64_t width, std::int64_t height, RGBA fill)
    : width(width), height(height), pixels(byteCount(width, height)) {
    if (fill == RGBA{0, 0, 0, 0}) return;  // the zeroed storage already holds it
    const std::uint8_t pattern[4] = {fill.r, fill.g, fill.b, fill.a};
    std::uint8_t* out = pixels.data();
    const std::size_t count = pixels.size();
    for (std::size_t i = 0; i < count; i += 4) std::memcpy(out + i, pattern, 4);
}

Canvas::Canvas(std::int64_t width, std::int64_t height, std::vector<std::uint8_t> pixels)
    : width(width), height(height), pixels(std::move(pixels)) {
    require(this->pixels.size() == byteCount(width, height));
}

}  // namespace plakard
