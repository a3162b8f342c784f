#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "compose/Golden.hpp"
#include "compose/PageComposer.hpp"
#include "compose/PageLayout.hpp"
#include "compose/Pixels.hpp"
#include "platform/PlakardError.hpp"

namespace plakard {
namespace {

// fonts-inter, which scripts/install-deps.sh installs.
const std::shared_ptr<const Font>& inter() {
    static const std::shared_ptr<const Font> font = Font::load("/usr/share/fonts/opentype/inter/Inter-Black.otf");
    return font;
}

const RGBA blue{0x1E, 0x90, 0xFF, 255};
const RGBA white{255, 255, 255, 255};

// A 260 x 560 page: P = 208, b = 4, so a 200-wide capture fills the screen
// without resampling.
ComposeRequest smallRequest(std::vector<std::string> lines, Layout layout) {
    return ComposeRequest{260, 560, blue, white, std::move(lines), test::sampleCapture(200, 420), layout, inter()};
}

std::string thrownBy(const ComposeRequest& request) {
    try {
        composePage(request);
    } catch (const PlakardError& error) {
        return error.description;
    }
    return "nothing thrown";
}

std::string missingGlyphMessage(const std::string& line) {
    try {
        inter()->advanceUnits(line);
    } catch (const PlakardError& error) {
        return error.description;
    }
    return "the face covers " + line;
}

TEST(ComposePage, ReportsTheFirstFailingLineInHeadlineOrder) {
    const std::string tooLong = "A HEADLINE FAR TOO LONG FOR ONE LINE OF A PHONE SCREENSHOT";
    const std::string noGlyph = "\xF0\x9F\x98\x80";
    EXPECT_EQ(thrownBy(smallRequest({noGlyph, tooLong}, Layout::hero)), missingGlyphMessage(noGlyph));
    EXPECT_EQ(thrownBy(smallRequest({tooLong, noGlyph}, Layout::hero)).rfind("headline line '" + tooLong, 0), 0u);
}

// The first row, from the top, holding a pixel of the headline's white.
std::int64_t firstWhiteRow(const Canvas& page, std::int64_t from, std::int64_t to) {
    for (std::int64_t y = from; y < to; ++y)
        for (std::int64_t x = 0; x < page.width; ++x)
            if (page.colour(x, y) == white) return y;
    return -1;
}

TEST(ComposePage, EmptyLineReservesTheFacesFullHeight) {
    // device-top sets the block upwards from the bottom margin, so an empty
    // last line lifts the first by one line gap and the face's line box at
    // the other-line cap.
    const Canvas one = composePage(smallRequest({"GO"}, Layout::deviceTop));
    const Canvas two = composePage(smallRequest({"GO", ""}, Layout::deviceTop));
    const double scale = 0.095 * 260 / inter()->unitsPerEm;
    const double lift = 0.018 * 260 + (inter()->ascentUnits - inter()->descentUnits) * scale;
    // Below the phone, which ends above row 430 in both.
    const std::int64_t rowOne = firstWhiteRow(one, 430, 560);
    const std::int64_t rowTwo = firstWhiteRow(two, 430, 560);
    ASSERT_GT(rowOne, 0);
    ASSERT_GT(rowTwo, 0);
    EXPECT_NEAR(static_cast<double>(rowOne - rowTwo), lift, 1.0);
}

TEST(ComposePage, GoldenHero) {
    EXPECT_TRUE(test::matchesGolden(composePage(smallRequest({"PLAN YOUR DAY", "IN SECONDS"}, Layout::hero)),
                                    "page-hero"));
}

TEST(ComposePage, GoldenDeviceTop) {
    // Four lines push the phone's top above the page.
    EXPECT_TRUE(test::matchesGolden(
        composePage(smallRequest({"TRACK IT ALL", "EVERY HABIT", "EVERY DAY", "FOR FREE"}, Layout::deviceTop)),
        "page-device-top"));
}

}  // namespace
}  // namespace plakard
