#pragma once
// Small canvases for the compose tests: random ones for comparing a kernel
// with its plain reference, and byte-level views for readable failures.

#include <cstdint>
#include <random>
#include <string>

#include "raster/Canvas.hpp"
#include "raster/RGBA.hpp"

namespace plakard::test {

inline Canvas randomCanvas(std::int64_t width, std::int64_t height, std::mt19937& random) {
    Canvas canvas(width, height, RGBA{0, 0, 0, 0});
    for (std::uint8_t& byte : canvas.pixels) byte = static_cast<std::uint8_t>(random());
    return canvas;
}

inline std::string describe(RGBA colour) {
    std::string text = "(";
    for (int channel : {colour.r, colour.g, colour.b, colour.a}) {
        if (text.size() > 1) text += ", ";
        text += std::to_string(channel);
    }
    return text + ")";
}

// The first pixel where two canvases of one size differ, for a failure message.
inline std::string firstDifference(const Canvas& expected, const Canvas& actual) {
    if (expected.width != actual.width || expected.height != actual.height) return "sizes differ";
    for (std::int64_t y = 0; y < expected.height; ++y)
        for (std::int64_t x = 0; x < expected.width; ++x)
            if (!(expected.colour(x, y) == actual.colour(x, y)))
                return "pixel (" + std::to_string(x) + ", " + std::to_string(y) + "): expected " +
                       describe(expected.colour(x, y)) + ", got " + describe(actual.colour(x, y));
    return "none";
}

}  // namespace plakard::test
