#pragma once
// Small canvases for the compose tests: random ones for comparing a kernel
// with its plain reference, and byte-level views for readable failures.

#include <cstdint>
#include <random>
#include <string>

#include "compose/Primitives.hpp"
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

// A made-up app screen: a vertical gradient, a white bar along the top, and
// cards with round badges, in proportion to the width.
inline Canvas sampleCapture(std::int64_t width, std::int64_t height) {
    Canvas capture(width, height, RGBA{0, 0, 0, 255});
    for (std::int64_t y = 0; y < height; ++y)
        for (std::int64_t x = 0; x < width; ++x) {
            std::uint8_t* p = capture.pixel(x, y);
            p[0] = static_cast<std::uint8_t>(40 + 180 * y / height);
            p[1] = static_cast<std::uint8_t>(90 + 100 * x / width);
            p[2] = 200;
        }
    const double unit = static_cast<double>(width) / 100;
    fillRoundedRect(capture, RGBA{255, 255, 255, 255}, 0, 0, 100 * unit, 11 * unit, 0);
    for (int card = 0; card * 30 + 17 < 100 * height / width; ++card) {
        const double top = (17 + card * 30) * unit;
        fillRoundedRect(capture, RGBA{255, 255, 255, 230}, 5 * unit, top, 90 * unit, 25 * unit, 3 * unit);
        fillRoundedRect(capture, RGBA{255, 120, 60, 255}, 8 * unit, top + 3 * unit, 19 * unit, 19 * unit, 99);
    }
    return capture;
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
