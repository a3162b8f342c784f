#pragma once
// An in-memory raster: width x height pixels, row-major from the top-left,
// 4 bytes per pixel (R, G, B, A, straight alpha), no row padding. This is the
// layout the stb decoder, encoder and resizer use, so canvases pass to and
// from them without conversion.

#include <cstdint>
#include <filesystem>
#include <vector>

#include "raster/Fit.hpp"
#include "raster/PixelBuffer.hpp"
#include "raster/RGBA.hpp"

namespace plakard {

struct Canvas {
    std::int64_t width = 0;
    std::int64_t height = 0;
    PixelBuffer pixels;

    // A canvas whose every pixel is `fill`. A size below 1 or a byte count
    // beyond 64 bits is a broken precondition.
    Canvas(std::int64_t width, std::int64_t height, RGBA fill);

    // Adopts pixels that already hold width x height x 4 bytes.
    Canvas(std::int64_t width, std::int64_t height, PixelBuffer pixels);

    // Reads and decodes a PNG or JPEG file. Throws "cannot read <full path>: ..."
    // or "cannot decode <file name>: <reason> (PNG and JPEG only)".
    explicit Canvas(const std::filesystem::path& contentsOf);

    std::uint8_t* pixel(std::int64_t x, std::int64_t y) { return pixels.data() + (y * width + x) * 4; }
    const std::uint8_t* pixel(std::int64_t x, std::int64_t y) const { return pixels.data() + (y * width + x) * 4; }
    RGBA colour(std::int64_t x, std::int64_t y) const {
        const std::uint8_t* p = pixel(x, y);
        return {p[0], p[1], p[2], p[3]};
    }

    // The image as a PNG file: 3-channel RGB flattened over black when
    // `opaque`, else 4-channel RGBA. Throws "PNG encoding failed for a WxH image".
    std::vector<std::uint8_t> pngData(bool opaque) const;

    // R, G, B per pixel, each channel scaled by alpha / 255 (over black).
    std::vector<std::uint8_t> flattenedRGB() const;

    // sRGB-correct resample to exactly width x height; the same size comes
    // back unchanged.
    Canvas resized(std::int64_t width, std::int64_t height) const;

    // The rectangle pulled inside the image, never smaller than 1 x 1.
    Canvas cropped(std::int64_t x, std::int64_t y, std::int64_t width, std::int64_t height) const;

    // Exactly width x height by the given fit.
    Canvas fitted(std::int64_t width, std::int64_t height, Fit fit) const;

    friend bool operator==(const Canvas&, const Canvas&) = default;
};

// Encodes and writes atomically, creating missing parent folders. Encoding
// happens first, so a failed encoding touches nothing on disk. Throws the
// encoding error or "cannot write <full path>: <system's description>".
// Handed over with std::move, the canvas's own memory holds the flattened
// pixels, which saves a copy of the image at the write's peak.
void writePNG(Canvas canvas, const std::filesystem::path& destination, bool opaque);

}  // namespace plakard
