#include <stb_image_resize2.h>

#include <algorithm>
#include <cstring>
#include <new>

#include "platform/Require.hpp"
#include "raster/Canvas.hpp"

namespace plakard {

namespace {

struct Rect {
    std::int64_t left, top, width, height;
};

// The rectangle a crop at (x, y) of the given size cuts: its corner moved
// inside the image, its sides cut at the image's edges, at least a pixel each.
Rect clampedRect(const Canvas& image, std::int64_t x, std::int64_t y, std::int64_t width, std::int64_t height) {
    const std::int64_t left = std::max<std::int64_t>(std::min(x, image.width - 1), 0);
    const std::int64_t top = std::max<std::int64_t>(std::min(y, image.height - 1), 0);
    return {left, top, std::max<std::int64_t>(std::min(width, image.width - left), 1),
            std::max<std::int64_t>(std::min(height, image.height - top), 1)};
}

// The rectangle, which lies inside `source`, as a canvas of its own.
Canvas copiedRect(const Canvas& source, Rect rect) {
    const std::size_t rowBytes = static_cast<std::size_t>(rect.width) * 4;
    // Uninitialised: every byte is written once by the row copies.
    PixelBuffer out = PixelBuffer::uninitialised(rowBytes * static_cast<std::size_t>(rect.height));
    for (std::int64_t row = 0; row < rect.height; ++row)
        std::memcpy(out.data() + static_cast<std::size_t>(row) * rowBytes, source.pixel(rect.left, rect.top + row),
                    rowBytes);
    return Canvas(rect.width, rect.height, std::move(out));
}

// The rectangle, which lies inside `source`, resampled to exactly width x
// height. The resizer reads it in place through the source's row stride, so
// no cropped copy is made, and writes every output byte, so the output is
// never cleared first.
Canvas resampledRect(const Canvas& source, Rect rect, std::int64_t width, std::int64_t height) {
    require(width >= 1 && height >= 1 && width <= INT64_MAX / 4 / height);
    // The resizer counts in ints; check that before allocating anything.
    const int outputWidth = toInt32(width);
    const int outputHeight = toInt32(height);
    const int outputStride = toInt32(width * 4);
    Canvas output(width, height, PixelBuffer::uninitialised(static_cast<std::size_t>(width * height * 4)));
    const unsigned char* result = stbir_resize_uint8_srgb(
        source.pixel(rect.left, rect.top), toInt32(rect.width), toInt32(rect.height), toInt32(source.width * 4),
        output.pixels.data(), outputWidth, outputHeight, outputStride, STBIR_RGBA);
    // With every size checked above, the resizer fails only when it cannot
    // allocate its working memory.
    if (!result) throw std::bad_alloc();
    return output;
}

}  // namespace

Canvas Canvas::resized(std::int64_t targetWidth, std::int64_t targetHeight) const {
    require(targetWidth >= 1 && targetHeight >= 1);
    if (targetWidth == width && targetHeight == height) return *this;
    return resampledRect(*this, {0, 0, width, height}, targetWidth, targetHeight);
}

Canvas Canvas::cropped(std::int64_t x, std::int64_t y, std::int64_t cropWidth, std::int64_t cropHeight) const {
    return copiedRect(*this, clampedRect(*this, x, y, cropWidth, cropHeight));
}

Canvas Canvas::fitted(std::int64_t targetWidth, std::int64_t targetHeight, Fit fit) const {
    require(targetWidth >= 1 && targetHeight >= 1);
    if (fit == Fit::stretch) return resized(targetWidth, targetHeight);

    // Cut the largest span with the target's shape: centred across, kept
    // from the top down, so a tall capture loses rows at the bottom only.
    const double W = static_cast<double>(width);
    const double H = static_cast<double>(height);
    const double w = static_cast<double>(targetWidth);
    const double h = static_cast<double>(targetHeight);
    const double cw = std::min((H * w) / h, W);
    const double ch = std::min((W * h) / w, H);
    const Rect cut = clampedRect(*this, roundToInt64((W - cw) * 0.5), 0, roundToInt64(cw), roundToInt64(ch));
    // Read in place, unless the cut already is the result.
    if (cut.width == targetWidth && cut.height == targetHeight) return copiedRect(*this, cut);
    return resampledRect(*this, cut, targetWidth, targetHeight);
}

}  // namespace plakard
