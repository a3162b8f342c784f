#include <stb_image_resize2.h>

#include <algorithm>
#include <cstring>
#include <new>

#include "platform/Require.hpp"
#include "raster/Canvas.hpp"

namespace plakard {

Canvas Canvas::resized(std::int64_t targetWidth, std::int64_t targetHeight) const {
    require(targetWidth >= 1 && targetHeight >= 1);
    if (targetWidth == width && targetHeight == height) return *this;
    // The resizer counts in ints; check that before allocating anything.
    const int outputWidth = toInt32(targetWidth);
    const int outputHeight = toInt32(targetHeight);
    const int outputStride = toInt32(targetWidth * 4);
    Canvas output(targetWidth, targetHeight, RGBA{0, 0, 0, 0});
    const unsigned char* result =
        stbir_resize_uint8_srgb(pixels.data(), toInt32(width), toInt32(height), toInt32(width * 4),
                                output.pixels.data(), outputWidth, outputHeight, outputStride, STBIR_RGBA);
    // With every size checked above, the resizer fails only when it cannot
    // allocate its working memory.
    if (!result) throw std::bad_alloc();
    return output;
}

Canvas Canvas::cropped(std::int64_t x, std::int64_t y, std::int64_t cropWidth, std::int64_t cropHeight) const {
    const std::int64_t left = std::max<std::int64_t>(std::min(x, width - 1), 0);
    const std::int64_t top = std::max<std::int64_t>(std::min(y, height - 1), 0);
    const std::int64_t w = std::max<std::int64_t>(std::min(cropWidth, width - left), 1);
    const std::int64_t h = std::max<std::int64_t>(std::min(cropHeight, height - top), 1);
    const std::size_t rowBytes = static_cast<std::size_t>(w) * 4;
    // Reserved, not sized: every byte is written once by the row copies.
    std::vector<std::uint8_t> out;
    out.reserve(rowBytes * static_cast<std::size_t>(h));
    for (std::int64_t row = 0; row < h; ++row) {
        const std::uint8_t* source = pixel(left, top + row);
        out.insert(out.end(), source, source + rowBytes);
    }
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
    Canvas cut = cropped(x, 0, roundToInt64(cw), roundToInt64(ch));
    // A cut that already has the size is the result; resized would copy it.
    if (cut.width == targetWidth && cut.height == targetHeight) return cut;
    return cut.resized(targetWidth, targetHeight);
}

}  // namespace plakard
