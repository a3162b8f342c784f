// The page compose writes, read back with the program's own decoder: the
// background at the corners and each part of the phone in its own colour, in
// both layouts.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "compose/Pixels.hpp"
#include "e2e/Harness.hpp"
#include "raster/Canvas.hpp"
#include "raster/RGBA.hpp"

namespace plakard::test {
namespace {

const RGBA background{200, 60, 60, 255};  // --bg #C83C3C
const RGBA screen{40, 160, 220, 255};     // the capture's one colour
const RGBA body{16, 16, 18, 255};
const RGBA pill{0, 0, 0, 255};

// The highest row whose pixel in `column` has exactly `colour`.
std::optional<std::int64_t> firstRowOf(const Canvas& page, std::int64_t column, RGBA colour) {
    for (std::int64_t y = 0; y < page.height; ++y) {
        if (page.colour(column, y) == colour) return y;
    }
    return std::nullopt;
}

using PageTest = EndToEnd;

TEST_F(PageTest, TheCornersAreBackgroundAndThePhoneShowsBodyPillAndCapture) {
    writePNG(Canvas(60, 40, screen), folder() / "flat.png", true);
    // On a 400-wide page the phone is 320 wide from x = 40 with a bezel of
    // round(0.018 x 320) = 6. Its screen, 308 wide, shows the 3:2 capture 205
    // high, so the phone is 217 high and lies wholly on a 900-high page.
    constexpr std::int64_t width = 400;
    constexpr std::int64_t height = 900;
    constexpr std::int64_t phoneHeight = 217;
    for (const std::string layout : {"hero", "device-top"}) {
        SCOPED_TRACE(layout);
        const std::vector<std::string> arguments{"compose", "--size",       "400x900",  "--headline", "Flat|colours",
                                                 "--bg",    "#C83C3C",      "--layout", layout,       "--screenshot",
                                                 "flat.png", "--out",       layout + ".png"};
        ASSERT_EQ(run(arguments).status, 0) << commandLine(arguments);
        const Canvas page(folder() / (layout + ".png"));
        ASSERT_EQ(page.width, width);
        ASSERT_EQ(page.height, height);

        for (const auto& [x, y] : std::vector<std::pair<std::int64_t, std::int64_t>>{
                 {0, 0}, {width - 1, 0}, {0, height - 1}, {width - 1, height - 1}}) {
            EXPECT_EQ(describe(page.colour(x, y)), describe(background)) << "corner " << x << "," << y;
        }

        // Nothing but the phone's body has its colour exactly (the headline and
        // the shadow only mix with the red), so the first such pixel down the
        // middle is the phone's top edge.
        const std::optional<std::int64_t> found = firstRowOf(page, width / 2, body);
        ASSERT_TRUE(found.has_value()) << "no phone body down the middle";
        const std::int64_t top = *found;
        if (layout == "hero") {
            EXPECT_GT(top, 0.12 * height) << "the phone starts below the margin and the headline";
        } else {
            EXPECT_LT(top + phoneHeight, 0.88 * height) << "the phone ends above the headline and the margin";
        }

        const std::int64_t middle = top + phoneHeight / 2;
        EXPECT_EQ(describe(page.colour(43, middle)), describe(body)) << "left bezel";
        EXPECT_EQ(describe(page.colour(width - 43, middle)), describe(body)) << "right bezel";
        // The pill starts 6 + 0.028 x 320 = 14.96 below the phone's top and is
        // 0.085 x 320 = 27.2 high; the screen's centre is 6 + 102.5 below it.
        EXPECT_EQ(describe(page.colour(width / 2, top + 28)), describe(pill)) << "pill";
        EXPECT_EQ(describe(page.colour(width / 2, top + 108)), describe(screen)) << "screen centre";
        EXPECT_EQ(describe(page.colour(width / 4, top + 108)), describe(screen)) << "screen beside the centre";
    }
}

}  // namespace
}  // namespace plakard::test
