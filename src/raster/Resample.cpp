#include <stb_image_resize2.h>

#include <algorithm>
#include <cstring>
#include <new>

#include "platform/Require.hpp"
#include "raster/Canvas.hpp"

namespace plakard {

namespace {

// The w x h rectangle of `source` at (left, top), which lies inside it,
// resampled to exactly width x height. The resizer reads the rectangle in
// place through the source's row stride, so no cropped copy is made, and
// writes every output byte, so the output is never cleared first.
Canvas resampledRect(const Canvas& source, std::int64_t left, std::int64_t top, std::int64_t w, std::int64_t h,
                     std::int64_t width, std::int64_t height) {
    // The resizer counts in ints; check that before allocating anything.
    const int outputWidth = toInt32(width);
    const int outputHeight = toInt32(height);
    const int outputStride = toInt32(width * 4);
    Canvas output(width, height, PixelBuffer::uninitialised(static_cast<std::size_t>(width * height * 4)));
    const unsigned char* result =
        stbir_resize_uint8_srgb(source.pixel(left, top), toInt32(w), toInt32(h), toInt32(source.width * 4),
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
    require(targetWidth <= INT64_MAX / 4 / targetHeight);
    return resampledRect(*this, 0, 0, width, height, targetWidth, targetHeight);
}

Canvas Canvas::cropped(std::int64_t x, std::int64_t y, std::int64_t cropWidth, std::int64_t cropHeight) const {
    const std::int64_t left = std::max<std::int64_t>(std::min(x, width - 1), 0);
    const std::int64_t top = std::max<std::int64_t>(std::min(y, height - 1), 0);
    const std::int64_t w = std::max<std::int64_t>(std::min(cropWidth, width - left), 1);
    const std::int64_t h = std::max<std::int64_t>(std::min(cropHeight, height - top), 1);
    const std::size_t rowBytes = static_cast<std::size_t>(w) * 4;
    // Uninitialised: every byte is written once by the row copies.
    PixelBuffer out = PixelBuffer::uninitialised(rowBytes * static_cast<std::size_t>(h));
    for (std::int64_t row = 0; row < h; ++row)
        std::memcpy(out.data() + static_cast<std::size_t>(row) * rowBytes, pixel(left, top + row), rowBytes);
    return Canvas(w, h, std::move(out));
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
    const std::int64_t x = roundToInt64((W - cw) * 0.5);
    // The same rectangle cropped() would cut, read in place unless it is
    // already the result.
    const std::int64_t left = std::max<std::int64_t>(std::min(x, width - 1), 0);
    const std::int64_t cutWidth = std::max<std::int64_t>(std::min(roundToInt64(cw), width - left), 1);
    const std::int64_t cutHeight = std::max<std::int64_t>(std::min(roundToInt64(ch), height), 1);
    if (cutWidth == targetWidth && cutHeight == targetHeight) return cropped(left, 0, cutWidth, cutHeight);
    require(targetWidth <= INT64_MAX / 4 / targetHeight);
    return resampledRect(*this, left, 0, cutWidth, cutHeight, targetWidth, targetHeight);
}

}  // namespace plakard
