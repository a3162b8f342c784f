// What a page given --device promises, read off the pixels of real upload
// sizes with a plain white capture: the whole screen on the page, in the
// capture's shape and at least a fifth of the page, nothing over it but its
// rounded corners (and the phone's island), the device and its shadow clear of the page's edges,
// and no dark frame around a bare screen.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "compose/PageComposer.hpp"
#include "support/Support.hpp"
#include "type/Font.hpp"

namespace plakard::test {
namespace {

struct Case {
    Device device;
    std::int64_t width, height, captureWidth, captureHeight;
    Layout layout;
};

TEST(Devices, ShowTheWholeScreenUncoveredAndTheirShadowOnThePage) {
    const RGBA white{255, 255, 255, 255}, background{0xE8, 0xE4, 0xDA, 255};
    const auto font = Font::load("/usr/share/fonts/opentype/inter/Inter-Black.otf");
    const Case cases[] = {
        {Device::tablet, 2064, 2752, 2064, 2752, Layout::hero},
        {Device::tablet, 2752, 2064, 2752, 2064, Layout::deviceTop},
        {Device::phone, 2796, 1290, 2796, 1290, Layout::hero},
        {Device::homeButton, 1242, 2208, 1242, 2208, Layout::hero},
        {Device::none, 1290, 2796, 1179, 2556, Layout::deviceTop},
    };
    for (const Case& c : cases) {
        const std::string name(deviceText(c.device));
        const Canvas page = composePage(ComposeRequest{c.width, c.height, background, RGBA{200, 0, 0, 255},
                                                       {"TRACK", "EVERY SUBSCRIPTION"},
                                                       Canvas(c.captureWidth, c.captureHeight, white), c.layout,
                                                       font, "", {}, c.device});
        // The screen is where the white is.
        std::int64_t left = c.width, top = c.height, right = -1, bottom = -1;
        for (std::int64_t y = 0; y < c.height; ++y)
            for (std::int64_t x = 0; x < c.width; ++x)
                if (page.colour(x, y) == white)
                    left = std::min(left, x), right = std::max(right, x), top = std::min(top, y),
                    bottom = std::max(bottom, y);
        const auto across = static_cast<double>(right - left + 1), down = static_cast<double>(bottom - top + 1);
        EXPECT_NEAR(across / down, static_cast<double>(c.captureWidth) / static_cast<double>(c.captureHeight),
                    0.02 * static_cast<double>(c.captureWidth) / static_cast<double>(c.captureHeight))
            << name;
        EXPECT_GE(across * down, 0.2 * static_cast<double>(c.width * c.height)) << name;
        // Only the rounded corners may be other than the capture, but for
        // the phone's island.
        const double corner = 0.12 * std::min(across, down);
        for (std::int64_t y = top; y <= bottom; ++y)
            for (std::int64_t x = left; x <= right; ++x) {
                const bool inCorner = std::min(x - left, right - x) < corner && std::min(y - top, bottom - y) < corner;
                if (c.device != Device::phone && !inCorner && page.colour(x, y) != white) {
                    ADD_FAILURE() << name << ": something over the screen at " << x << "," << y;
                    y = bottom, x = right;
                }
            }
        for (std::int64_t x = 0; x < c.width; ++x)
            EXPECT_TRUE(page.colour(x, 0) == background && page.colour(x, c.height - 1) == background) << name;
        for (std::int64_t y = 0; y < c.height; ++y)
            EXPECT_TRUE(page.colour(0, y) == background && page.colour(c.width - 1, y) == background) << name;
        if (c.device != Device::none) continue;
        const RGBA beside[] = {page.colour(left - 2, (top + bottom) / 2), page.colour(right + 2, (top + bottom) / 2),
                               page.colour((left + right) / 2, top - 2), page.colour((left + right) / 2, bottom + 2)};
        for (const RGBA& colour : beside) EXPECT_GT(colour.r + colour.g + colour.b, 3 * 128) << name;
    }
}

}  // namespace
}  // namespace plakard::test
