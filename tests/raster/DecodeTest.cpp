#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "platform/PlakardError.hpp"
#include "raster/Canvas.hpp"
#include "support/TestSupport.hpp"

namespace plakard {
namespace {

std::filesystem::path image(const std::string& name) { return test::dataPath("images/" + name); }

std::string decodeFailure(const std::filesystem::path& path) {
    try {
        Canvas canvas{path};
        return "decoded " + std::to_string(canvas.width) + "x" + std::to_string(canvas.height);
    } catch (const PlakardError& error) {
        return error.description;
    }
}

// The same six pixels, stored as palette, 16-bit RGBA and so on.
const std::vector<RGBA> sixPixels = {{255, 0, 0, 255},     {0, 255, 0, 255}, {0, 0, 255, 255},
                                     {255, 255, 255, 128}, {0, 0, 0, 0},     {10, 20, 30, 255}};

std::vector<RGBA> colours(const Canvas& canvas) {
    std::vector<RGBA> all;
    for (std::int64_t y = 0; y < canvas.height; ++y)
        for (std::int64_t x = 0; x < canvas.width; ++x) all.push_back(canvas.colour(x, y));
    return all;
}

TEST(Decode, ConvertsEveryPNGKindToStraightRGBA) {
    const struct {
        const char* file;
        std::int64_t width, height;
        std::vector<RGBA> pixels;
    } cases[] = {
        {"grey.png", 4, 2,
         {{0, 0, 0, 255}, {64, 64, 64, 255}, {128, 128, 128, 255}, {255, 255, 255, 255},
          {10, 10, 10, 255}, {20, 20, 20, 255}, {30, 30, 30, 255}, {40, 40, 40, 255}}},
        {"grey-alpha.png", 2, 2, {{0, 0, 0, 255}, {100, 100, 100, 128}, {200, 200, 200, 0}, {255, 255, 255, 64}}},
        {"palette.png", 3, 2, sixPixels},
        {"sixteen-bit.png", 3, 2, sixPixels},
    };
    for (const auto& c : cases) {
        Canvas canvas{image(c.file)};
        EXPECT_EQ(canvas.width, c.width) << c.file;
        EXPECT_EQ(canvas.height, c.height) << c.file;
        EXPECT_EQ(canvas.pixels.size(), static_cast<std::size_t>(c.width * c.height * 4)) << c.file;
        EXPECT_EQ(colours(canvas), c.pixels) << c.file;
    }
}

TEST(Decode, InterlacedPNGGivesTheSamePixelsAsPlain) {
    Canvas plain{image("plain.png")};
    Canvas interlaced{image("interlaced.png")};
    EXPECT_EQ(plain.width, 13);
    EXPECT_EQ(plain.height, 11);
    EXPECT_EQ(interlaced, plain);
}

TEST(Decode, JPEGIsOpaqueWithItsColours) {
    const struct {
        const char* file;
        RGBA colour;
    } cases[] = {{"rgb.jpg", {200, 100, 50, 255}}, {"progressive.jpg", {20, 140, 220, 255}}};
    for (const auto& c : cases) {
        Canvas canvas{image(c.file)};
        EXPECT_EQ(canvas.width, 32) << c.file;
        EXPECT_EQ(canvas.height, 16) << c.file;
        for (RGBA pixel : colours(canvas)) {
            // JPEG is lossy: a flat block comes back within a step or two.
            ASSERT_LE(std::abs(pixel.r - c.colour.r), 2) << c.file;
            ASSERT_LE(std::abs(pixel.g - c.colour.g), 2) << c.file;
            ASSERT_LE(std::abs(pixel.b - c.colour.b), 2) << c.file;
            ASSERT_EQ(pixel.a, 255) << c.file;
        }
    }
}

TEST(Decode, NamesOnlyTheFileWhenItCannotDecode) {
    const struct {
        const char* file;
        const char* message;
    } cases[] = {
        {"empty.png", "cannot decode empty.png: unknown image type (PNG and JPEG only)"},
        {"text.png", "cannot decode text.png: unknown image type (PNG and JPEG only)"},
        // A broken deflate stream fails without any reason from stb; straight
        // after another failure, that one's reason must not be repeated.
        {"bad-deflate.png", "cannot decode bad-deflate.png: unsupported image (PNG and JPEG only)"},
        {"not-an-image.gif", "cannot decode not-an-image.gif: unknown image type (PNG and JPEG only)"},
        {"truncated.png", "cannot decode truncated.png: outofdata (PNG and JPEG only)"},
        {"cut.jpg", "cannot decode cut.jpg: no SOF (PNG and JPEG only)"},
        // stb names the unknown chunk after the header by its type, which is empty here.
        {"header-only.png", "cannot decode header-only.png: unsupported image (PNG and JPEG only)"},
    };
    for (const auto& c : cases) EXPECT_EQ(decodeFailure(image(c.file)), c.message);
    // Read failures name the full path (the e2e suite checks the missing-file case).
    EXPECT_EQ(decodeFailure(test::dataPath("images")), "cannot read " + test::dataPath("images").string() + ": Is a directory");
}

}  // namespace
}  // namespace plakard
