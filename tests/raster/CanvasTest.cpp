#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

#include "raster/Canvas.hpp"

namespace plakard {
namespace {

TEST(Canvas, FillWritesTheColourIntoEveryPixel) {
    EXPECT_EQ(Canvas(1, 1, RGBA{10, 20, 30, 40}).pixels, (std::vector<std::uint8_t>{10, 20, 30, 40}));
    const Canvas filled(3, 2, RGBA{1, 2, 3, 4});
    ASSERT_EQ(filled.pixels.size(), 24u);
    for (std::size_t i = 0; i < filled.pixels.size(); ++i) EXPECT_EQ(filled.pixels[i], i % 4 + 1) << i;
    const Canvas clear(5, 7, RGBA{0, 0, 0, 0});
    EXPECT_EQ(clear.pixels, std::vector<std::uint8_t>(5 * 7 * 4, 0));
}

TEST(Canvas, PixelAddressesAreRowMajor) {
    Canvas canvas(4, 3, RGBA{0, 0, 0, 0});
    canvas.pixel(3, 1)[2] = 99;
    EXPECT_EQ(canvas.pixels[(1 * 4 + 3) * 4 + 2], 99);
    EXPECT_EQ(canvas.colour(3, 1), (RGBA{0, 0, 99, 0}));
}

TEST(CanvasDeathTest, BrokenSizesStopTheProgram) {
    constexpr std::int64_t big = std::numeric_limits<std::int64_t>::max() / 2;
    EXPECT_DEATH(Canvas(0, 1, RGBA{}), "");
    EXPECT_DEATH(Canvas(1, -1, RGBA{}), "");
    EXPECT_DEATH(Canvas(big, 3, RGBA{}), "");
    EXPECT_DEATH(Canvas(2, 2, std::vector<std::uint8_t>(15)), "");
    const Canvas canvas(2, 2, RGBA{});
    EXPECT_DEATH(canvas.resized(0, 1), "");
    EXPECT_DEATH(canvas.fitted(1, 0, Fit::cover), "");
    EXPECT_DEATH(canvas.fitted(-1, 1, Fit::stretch), "");
    // Beyond the resizer's ints: stopped before the output is allocated.
    EXPECT_DEATH(canvas.resized(std::int64_t{1} << 31, 1), "");
}

}  // namespace
}  // namespace plakard
