#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

#include "raster/Canvas.hpp"

namespace plakard {
namespace {

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
