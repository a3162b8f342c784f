#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "raster/Canvas.hpp"

namespace plakard {
namespace {

// Every pixel says where it came from: column in R (low byte) and B (high
// nibble), row in G (low byte) and B (low nibble), so a test can tell exactly
// which pixels a crop kept.
RGBA code(std::int64_t x, std::int64_t y) {
    return {static_cast<std::uint8_t>(x & 255), static_cast<std::uint8_t>(y & 255),
            static_cast<std::uint8_t>((x >> 8) << 4 | (y >> 8)), 255};
}

Canvas coded(std::int64_t width, std::int64_t height) {
    Canvas canvas(width, height, RGBA{0, 0, 0, 0});
    for (std::int64_t y = 0; y < height; ++y)
        for (std::int64_t x = 0; x < width; ++x) {
            const RGBA c = code(x, y);
            std::uint8_t* p = canvas.pixel(x, y);
            p[0] = c.r, p[1] = c.g, p[2] = c.b, p[3] = c.a;
        }
    return canvas;
}

// True when `part` is exactly the block of coded(...) at (left, top).
::testing::AssertionResult isBlockOfCoded(const Canvas& part, std::int64_t left, std::int64_t top,
                                          std::int64_t width, std::int64_t height) {
    if (part.width != width || part.height != height)
        return ::testing::AssertionFailure() << "size " << part.width << "x" << part.height;
    for (std::int64_t y = 0; y < height; ++y)
        for (std::int64_t x = 0; x < width; ++x)
            if (!(part.colour(x, y) == code(left + x, top + y)))
                return ::testing::AssertionFailure() << "pixel " << x << "," << y << " is not source pixel "
                                                     << left + x << "," << top + y;
    return ::testing::AssertionSuccess();
}

constexpr std::int64_t int64Min = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t int64Max = std::numeric_limits<std::int64_t>::max();

TEST(Cropped, PullsTheRectangleInsideTheImage) {
    const Canvas source = coded(10, 10);
    const struct {
        std::int64_t x, y, width, height;
        std::int64_t left, top, keptWidth, keptHeight;
    } cases[] = {
        {2, 3, 4, 5, 2, 3, 4, 5},
        {0, 0, 10, 10, 0, 0, 10, 10},
        {-5, -5, 3, 3, 0, 0, 3, 3},
        {-5, -5, 0, 3, 0, 0, 1, 3},
        {50, -5, 3, 3, 9, 0, 1, 3},
        {8, 8, 5, 5, 8, 8, 2, 2},
        {2, 3, -4, -4, 2, 3, 1, 1},
        {9, 9, 1, 1, 9, 9, 1, 1},
        {int64Min, int64Max, int64Max, int64Min, 0, 9, 10, 1},
    };
    for (const auto& c : cases)
        EXPECT_TRUE(isBlockOfCoded(source.cropped(c.x, c.y, c.width, c.height), c.left, c.top, c.keptWidth,
                                   c.keptHeight))
            << "crop " << c.x << "," << c.y << " " << c.width << "x" << c.height;
}

TEST(FittedCover, KeepsTheTopAndTheHorizontalMiddle) {
    const struct {
        std::int64_t sourceWidth, sourceHeight, width, height;
        std::int64_t left, top;
    } cases[] = {
        {100, 300, 100, 100, 0, 0},    // tall: rows 0-99, not the middle third
        {300, 100, 100, 100, 100, 0},  // wide: columns 100-199
        {101, 100, 100, 100, 1, 0},    // x = round(0.5): column 0 goes, not column 100
        {103, 100, 100, 100, 2, 0},    // x = round(1.5) = 2
        {40, 30, 40, 30, 0, 0},        // already the size: the whole image
        {500, 301, 500, 300, 0, 0},    // ch = 300: only the bottom row goes
    };
    for (const auto& c : cases) {
        const Canvas source = coded(c.sourceWidth, c.sourceHeight);
        EXPECT_TRUE(
            isBlockOfCoded(source.fitted(c.width, c.height, Fit::cover), c.left, c.top, c.width, c.height))
            << c.sourceWidth << "x" << c.sourceHeight << " -> " << c.width << "x" << c.height;
    }
}

TEST(FittedCover, CropsBeforeResamplingAsWorkedOut) {
    // Unrounded cw and ch decide the rectangle: 1920x1080 -> 1242x2688 has
    // cw = 499.01..., x = round(710.49...) = 710 (711 if cw were rounded first).
    const struct {
        std::int64_t sourceWidth, sourceHeight, width, height;
        std::int64_t x, y, cropWidth, cropHeight;
    } cases[] = {
        {1179, 2556, 1290, 2796, 0, 0, 1179, 2555},
        {1920, 1080, 1242, 2688, 710, 0, 499, 1080},
    };
    for (const auto& c : cases) {
        const Canvas source = coded(c.sourceWidth, c.sourceHeight);
        const Canvas fitted = source.fitted(c.width, c.height, Fit::cover);
        ASSERT_EQ(fitted.width, c.width);
        ASSERT_EQ(fitted.height, c.height);
        EXPECT_TRUE(fitted == source.cropped(c.x, c.y, c.cropWidth, c.cropHeight).resized(c.width, c.height))
            << c.sourceWidth << "x" << c.sourceHeight;
    }
}

TEST(Fitted, OwnSizeComesBackUnchanged) {
    const Canvas source = coded(37, 23);
    EXPECT_EQ(source.resized(37, 23), source);
    EXPECT_EQ(source.fitted(37, 23, Fit::stretch), source);
    EXPECT_EQ(source.fitted(37, 23, Fit::cover), source);
}

TEST(Fitted, OnePixelGoesToAnySize) {
    const RGBA colour{200, 30, 90, 255};
    const Canvas dot(1, 1, colour);
    const std::int64_t sizes[][2] = {{1, 1}, {1, 7}, {9, 1}, {5, 3}, {300, 200}};
    for (Fit fit : {Fit::cover, Fit::stretch})
        for (const auto& size : sizes) {
            const Canvas result = dot.fitted(size[0], size[1], fit);
            EXPECT_EQ(result, Canvas(size[0], size[1], colour)) << size[0] << "x" << size[1];
        }
}

TEST(Resized, KeepsFlatColourAndHiddenColourOut) {
    // Left half opaque red, right half transparent green: weighted by alpha,
    // the green never shows, in either direction of scaling.
    Canvas source(20, 10, RGBA{0, 255, 0, 0});
    for (std::int64_t y = 0; y < 10; ++y)
        for (std::int64_t x = 0; x < 10; ++x) {
            std::uint8_t* p = source.pixel(x, y);
            p[0] = 255, p[1] = 0, p[2] = 0, p[3] = 255;
        }
    for (const auto& size : {std::pair{7, 3}, std::pair{53, 31}}) {
        const Canvas result = source.resized(size.first, size.second);
        for (std::int64_t y = 0; y < result.height; ++y)
            for (std::int64_t x = 0; x < result.width; ++x) {
                const RGBA pixel = result.colour(x, y);
                if (pixel.a == 0) continue;
                EXPECT_EQ(pixel.g, 0) << x << "," << y;
                EXPECT_EQ(pixel.r, 255) << x << "," << y;
            }
        EXPECT_EQ(result.colour(0, 0), (RGBA{255, 0, 0, 255}));
        EXPECT_EQ(result.colour(result.width - 1, 0).a, 0);
    }
}

}  // namespace
}  // namespace plakard
