#include <gtest/gtest.h>

#include <cstdint>

#include "compose/DeviceFrame.hpp"
#include "compose/Golden.hpp"
#include "compose/Pixels.hpp"

namespace plakard {
namespace {

TEST(DeviceGeometry, PhoneOfTheStorePage) {
    // A 1290-wide page gives the phone w = 1032 and b = 19.
    const DeviceGeometry d = deviceGeometry(129, 600, 1032, 2192, 19);
    EXPECT_DOUBLE_EQ(d.body.radius, 134.16);
    EXPECT_EQ(d.body.x, 129);
    EXPECT_EQ(d.body.width, 1032);
    EXPECT_DOUBLE_EQ(d.blurAmount, 36.12);  // half-width 43, span 87
    EXPECT_EQ(d.shadow.y, 638);
    EXPECT_DOUBLE_EQ(d.shadow.radius, 134.16);
    EXPECT_EQ(d.screen.x, 148);
    EXPECT_EQ(d.screen.y, 619);
    EXPECT_EQ(d.screen.width, 994);
    EXPECT_EQ(d.screen.height, 2154);
    EXPECT_DOUBLE_EQ(d.screen.radius, 115.16);
    EXPECT_DOUBLE_EQ(d.pill.width, 309.6);
    EXPECT_DOUBLE_EQ(d.pill.height, 87.72);
    EXPECT_DOUBLE_EQ(d.pill.y, 600 + 19 + 28.896);
    EXPECT_DOUBLE_EQ(d.pill.x, 129 + (1032 - 309.6) / 2);
    EXPECT_DOUBLE_EQ(d.pill.radius, 43.86);
}

const RGBA page{200, 220, 240, 255};
const RGBA body{16, 16, 18, 255};
const RGBA red{255, 0, 0, 255};

// A 200 x 400 page with the phone at (20, 30), 160 x 300, bezel 6: radius
// 20.8, screen (26, 36) 148 x 288, pill 48 x 13.6 at (76, 40.48); shadow blur
// 5.6 (half-width 7, so it spreads 21 pixels) below the body dropped by 12.
Canvas drawnPhone(const Canvas& capture) {
    Canvas canvas(200, 400, page);
    drawDevice(canvas, capture, 20, 30, 160, 300, 6);
    return canvas;
}

TEST(DrawDevice, TransparentCapturePixelsShowTheBody) {
    Canvas capture(148, 288, red);
    for (std::int64_t y = 100; y < 110; ++y)
        for (std::int64_t x = 50; x < 60; ++x) capture.pixel(x, y)[3] = 0;
    const Canvas canvas = drawnPhone(capture);
    EXPECT_EQ(canvas.colour(26 + 55, 36 + 105), body);
}

TEST(DrawDevice, BezelAsWideAsTheRadiusGivesSquareScreenCorners) {
    // w = 100: R = 13; b = 14 leaves the screen radius at -1, used as 0.
    Canvas canvas(140, 200, page);
    drawDevice(canvas, Canvas(72, 122, red), 20, 20, 100, 150, 14);
    EXPECT_EQ(canvas.colour(34, 34), red);
    EXPECT_EQ(canvas.colour(105, 155), red);
}

TEST(DrawDevice, PhoneBeyondThePageEdgesIsClipped) {
    // The phone spans rows -150 to 150, its screen rows -144 to 144.
    Canvas canvas(200, 200, page);
    drawDevice(canvas, Canvas(148, 288, red), 20, -150, 160, 300, 6);
    EXPECT_EQ(canvas.colour(100, 0), red);
    EXPECT_EQ(canvas.colour(100, 147), body);
    EXPECT_EQ(canvas.colour(100, 195), page);
}

TEST(DrawDevice, Golden) {
    EXPECT_TRUE(test::matchesGolden(drawnPhone(test::sampleCapture(148, 288)), "device-frame"));
}

TEST(DrawDevice, GoldenWithResampledCapture) {
    Canvas canvas(120, 200, page);
    drawDevice(canvas, test::sampleCapture(59, 128), 12, 40, 96, 210, 4);
    EXPECT_TRUE(test::matchesGolden(canvas, "device-frame-resampled"));
}

}  // namespace
}  // namespace plakard
