#include <gtest/gtest.h>

#include <cmath>
#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "raster/Canvas.hpp"
#include "support/TestSupport.hpp"

namespace plakard {
namespace {

// The flattening rule written out plainly: f = a / 255 first, then f * c.
std::uint8_t flattenedReference(std::uint8_t colour, std::uint8_t alpha) {
    const double f = alpha / 255.0;
    return static_cast<std::uint8_t>(std::round(f * colour));
}

// A small canvas with every kind of alpha, including colour hidden under 0.
Canvas translucentCanvas() {
    Canvas canvas(5, 3, RGBA{0, 0, 0, 0});
    for (std::int64_t y = 0; y < 3; ++y)
        for (std::int64_t x = 0; x < 5; ++x) {
            std::uint8_t* p = canvas.pixel(x, y);
            p[0] = static_cast<std::uint8_t>(x * 60);
            p[1] = static_cast<std::uint8_t>(y * 120);
            p[2] = static_cast<std::uint8_t>(200 - x * 10);
            p[3] = static_cast<std::uint8_t>((x + 5 * y) * 18);
        }
    return canvas;
}

TEST(FlattenedRGB, MatchesThePlainRuleForEveryColourAndAlpha) {
    // Pixel (c, a) carries colour byte c in red and its mirror in green and blue.
    Canvas canvas(256, 256, RGBA{0, 0, 0, 0});
    for (int a = 0; a < 256; ++a)
        for (int c = 0; c < 256; ++c) {
            std::uint8_t* p = canvas.pixel(c, a);
            p[0] = static_cast<std::uint8_t>(c);
            p[1] = static_cast<std::uint8_t>(255 - c);
            p[2] = static_cast<std::uint8_t>(c ^ 0x5A);
            p[3] = static_cast<std::uint8_t>(a);
        }
    const std::vector<std::uint8_t> rgb = canvas.flattenedRGB();
    ASSERT_EQ(rgb.size(), std::size_t{256 * 256 * 3});
    for (int a = 0; a < 256; ++a)
        for (int c = 0; c < 256; ++c) {
            const std::uint8_t* p = canvas.pixel(c, a);
            const std::uint8_t* out = rgb.data() + (a * 256 + c) * 3;
            const auto alpha = static_cast<std::uint8_t>(a);
            ASSERT_EQ(out[0], flattenedReference(p[0], alpha)) << "c=" << c << " a=" << a;
            ASSERT_EQ(out[1], flattenedReference(p[1], alpha)) << "c=" << c << " a=" << a;
            ASSERT_EQ(out[2], flattenedReference(p[2], alpha)) << "c=" << c << " a=" << a;
        }
}

TEST(FlattenedRGB, ComposesOverBlack) {
    const struct {
        RGBA pixel;
        std::uint8_t r, g, b;
    } cases[] = {
        {{200, 100, 50, 0}, 0, 0, 0},         {{200, 100, 50, 255}, 200, 100, 50},
        {{255, 255, 255, 128}, 128, 128, 128}, {{200, 100, 50, 128}, 100, 50, 25},
        {{1, 3, 255, 1}, 0, 0, 1},             {{255, 127, 1, 127}, 127, 63, 0},
    };
    for (const auto& c : cases) {
        const std::vector<std::uint8_t> rgb = Canvas(1, 1, c.pixel).flattenedRGB();
        EXPECT_EQ(rgb, (std::vector<std::uint8_t>{c.r, c.g, c.b}))
            << int(c.pixel.r) << "," << int(c.pixel.g) << "," << int(c.pixel.b) << "," << int(c.pixel.a);
    }
}

TEST(WritePNG, RoundTripsWithAlphaOrFlattenedOverBlackAsRGB) {
    test::TempDir dir;
    const Canvas canvas = translucentCanvas();
    for (const bool opaque : {false, true}) {
        writePNG(canvas, dir / "out.png", opaque);
        const std::string bytes = test::readBytes(dir / "out.png");
        ASSERT_EQ(bytes.substr(0, 8), "\x89PNG\r\n\x1a\n");
        EXPECT_EQ(int(bytes[24]), 8);                       // bit depth
        EXPECT_EQ(int(bytes[25]), opaque ? 2 : 6);          // RGB or RGBA
        const Canvas decoded(dir / "out.png");
        Canvas expected = canvas;
        if (opaque) {
            const std::vector<std::uint8_t> rgb = canvas.flattenedRGB();
            for (std::size_t i = 0; i < rgb.size() / 3; ++i)
                std::copy_n(rgb.begin() + 3 * i, 3, expected.pixels.begin() + 4 * i), expected.pixels[4 * i + 3] = 255;
        }
        EXPECT_EQ(decoded, expected) << opaque;
    }
}

TEST(WritePNG, WritesExactlyThePNGDataOfTheCanvas) {
    // The write flattens inside the canvas it was handed; pngData flattens
    // into a buffer of its own. Random pixels cover every alpha.
    test::TempDir dir;
    std::mt19937 random(7);
    Canvas canvas(61, 37, RGBA{0, 0, 0, 0});
    for (std::uint8_t& byte : canvas.pixels) byte = static_cast<std::uint8_t>(random());
    for (const bool opaque : {true, false}) {
        writePNG(canvas, dir / "out.png", opaque);
        const std::string bytes = test::readBytes(dir / "out.png");
        EXPECT_EQ(std::vector<std::uint8_t>(bytes.begin(), bytes.end()), canvas.pngData(opaque)) << opaque;
    }
}

}  // namespace
}  // namespace plakard
