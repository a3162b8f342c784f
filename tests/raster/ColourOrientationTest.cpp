// Embedded colour profiles and EXIF orientation, on the small files that
// tests/data/images/make-colour-images.sh makes: eight flat 8x8 colour blocks.

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <string>
#include <utility>

#include "raster/Canvas.hpp"
#include "support/Support.hpp"

namespace plakard {
namespace {

using test::dataPath;

Canvas image(const std::string& name) { return Canvas(dataPath("images/" + name)); }

// Each file must decode to exactly the pixels of its reference: metadata that
// is sRGB, unusable or damaged changes nothing, and every orientation shows
// the upright blocks.
TEST(ColourOrientationTest, DecodesToTheReferencePixels) {
    const struct {
        const char* file;
        const char* reference;
    } cases[] = {
        {"srgb-profile.png", "blocks.png"},     {"grey-profile.png", "blocks.png"},
        {"damaged-profile.png", "blocks.png"},  {"huge-profile.png", "blocks.png"},
        {"damaged-exif.jpg", "blocks.jpg"},     {"orientation-1.jpg", "blocks.jpg"},
        {"orientation-2.jpg", "blocks.jpg"},    {"orientation-3.jpg", "blocks.jpg"},
        {"orientation-4.jpg", "blocks.jpg"},    {"orientation-5.jpg", "blocks.jpg"},
        {"orientation-6.jpg", "blocks.jpg"},    {"orientation-7.jpg", "blocks.jpg"},
        {"orientation-8.jpg", "blocks.jpg"},    {"repeated-segment.jpg", "blocks.jpg"},
        {"grey-rgb-profile.jpg", "grey-blocks.jpg"}, {"orientation-6.png", "blocks.png"},
    };
    for (const auto& c : cases) {
        const Canvas got = image(c.file);
        const Canvas want = image(c.reference);
        EXPECT_EQ(got.width, want.width) << c.file;
        EXPECT_EQ(got.height, want.height) << c.file;
        EXPECT_TRUE(got.pixels == want.pixels) << c.file;
    }
}

// Display P3 blocks come out as an independent colour-managed conversion of
// the same numbers says (colour-expected.txt, one block a line): within a
// level from the PNG; from the JPEG, whose blocks decode a level or so off
// before the conversion widens it, within 4, still far from the unconverted
// numbers. The JPEG carries its profile in two segments, the second one first.
TEST(ColourOrientationTest, ConvertsDisplayP3ToSRGB) {
    for (const auto& [file, tolerance] : {std::pair{"p3.png", 1.0}, std::pair{"p3.jpg", 4.0}}) {
        const Canvas got = image(file);
        std::ifstream expected(dataPath("images/colour-expected.txt"));
        for (int block = 0; block < 8; ++block) {
            const std::uint8_t* pixel = got.pixel(block % 4 * 8 + 4, block / 4 * 8 + 4);
            for (int channel = 0; channel < 3; ++channel) {
                double want = -1;
                expected >> want;
                EXPECT_LE(std::abs(pixel[channel] - want), tolerance) << file << " block " << block << " channel " << channel;
            }
            EXPECT_EQ(pixel[3], 255) << file;
        }
    }
}

}  // namespace
}  // namespace plakard
