#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "compose/PageLayout.hpp"
#include "platform/PlakardError.hpp"

namespace plakard {
namespace {

TEST(PageMetrics, StorePageOf1290x2796) {
    const PageMetrics m = pageMetrics(1290, 2796);
    EXPECT_DOUBLE_EQ(m.textMeasure, 903);
    EXPECT_DOUBLE_EQ(m.firstLineCap, 245.1);
    EXPECT_DOUBLE_EQ(m.otherLineCap, 122.55);
    EXPECT_DOUBLE_EQ(m.legibilityFloor, 58.05);
    EXPECT_DOUBLE_EQ(m.lineGap, 23.22);
    EXPECT_DOUBLE_EQ(m.margin, 209.7);
    EXPECT_DOUBLE_EQ(m.phoneGap, 125.82);
    EXPECT_EQ(m.phoneWidth, 1032);
    EXPECT_EQ(m.bezel, 19);  // 18.576 rounded
}

TEST(PageMetrics, BezelIsRoundedToWholePixels) {
    // 0.018 x 0.8 x W: W = 625 gives exactly 9; 59 gives 0.8496 -> 1; 34 gives 0.4896 -> 0.
    EXPECT_EQ(pageMetrics(625, 100).bezel, 9);
    EXPECT_EQ(pageMetrics(59, 100).bezel, 1);
    EXPECT_EQ(pageMetrics(34, 100).bezel, 0);
}

std::string legibilityMessage(const std::string& line, long suggestion) {
    return "headline line '" + line +
           "' is too long to set inside the centre 70% and stay legible at thumbnail size; shorten it to about " +
           std::to_string(suggestion) + " characters or fewer";
}

TEST(FittedLineSize, FitsTheMeasureUpToTheCaps) {
    const PageMetrics m = pageMetrics(1290, 2796);
    // 903 / 4515 x 1000 = 200 pixels: 70% wide, below the first-line cap.
    EXPECT_DOUBLE_EQ(fittedLineSize(m, "LONGER", 0, 4515, 1000), 200);
    // The same line as line 2 is held at the other-line cap.
    EXPECT_DOUBLE_EQ(fittedLineSize(m, "LONGER", 1, 4515, 1000), 122.55);
    // A two-character line would be 451.5 pixels: capped at 0.19 W.
    EXPECT_DOUBLE_EQ(fittedLineSize(m, "GO", 0, 2000, 1000), 245.1);
    // Nothing to measure: the cap.
    EXPECT_DOUBLE_EQ(fittedLineSize(m, "", 0, 0, 1000), 245.1);
    EXPECT_DOUBLE_EQ(fittedLineSize(m, "", 3, 0, 1000), 122.55);
    EXPECT_DOUBLE_EQ(fittedLineSize(m, "", 1, -5, 1000), 122.55);
}

TEST(FittedLineSize, BelowTheFloorSuggestsALength) {
    // W = 1000: measure 700 and floor 45 exactly, so size = 700 / advance x units per em.
    const PageMetrics m = pageMetrics(1000, 2000);
    ASSERT_EQ(m.legibilityFloor, 45);
    EXPECT_EQ(fittedLineSize(m, "ABC", 1, 700, 45), 45);  // exactly the floor is accepted
    const struct {
        std::string line;
        double advance;
        double unitsPerEm;
        long suggestion;
    } cases[] = {
        // A hair below the floor: 3 x 44.99999... / 45 rounds to 3.
        {"ABC", std::nextafter(700.0, 800.0), 45, 3},
        // size 35: 20 x 35 / 45 = 15.56.
        {"TWENTY CHARACTERS!!!", 20000, 1000, 16},
        // User-perceived characters: E with a combining accent is one, so two
        // in all (three code points, four bytes): 2 x 40 / 45 = 1.78.
        {"E\xCC\x81T", 17500, 1000, 2},
        // size 0.7: 1 x 0.7 / 45 = 0.016 rounds to 0 and is printed as such.
        {"W", 1000000, 1000, 0},
        // size 22.5: 1 x 22.5 / 45 is exactly half, rounded away from zero.
        {"M", 700, 22.5, 1},
    };
    for (const auto& c : cases) {
        try {
            fittedLineSize(m, c.line, 0, c.advance, c.unitsPerEm);
            ADD_FAILURE() << c.line << " was accepted";
        } catch (const PlakardError& error) {
            EXPECT_EQ(error.description, legibilityMessage(c.line, c.suggestion));
        }
    }
}

TEST(FittedLineSize, LongFirstLineCanEndUpSmallerThanAShortSecondLine) {
    // A first line may end up smaller than a short second line: only its cap is higher.
    const PageMetrics m = pageMetrics(1000, 2000);
    EXPECT_DOUBLE_EQ(fittedLineSize(m, "A LONG FIRST LINE", 0, 10000, 1000), 70);
    EXPECT_DOUBLE_EQ(fittedLineSize(m, "HI", 1, 1000, 1000), 95);
}

InkExtent extentOfHeight(double height) { return InkExtent{-height * 0.75, height * 0.25}; }

TEST(PlacePage, HeroOnTheStorePage) {
    const PageMetrics m = pageMetrics(1290, 2796);
    const std::vector<InkExtent> inks = {{-180, 20}, {-90, 10}};
    const PagePlacement p = placePage(m, 1290, 2796, Layout::hero, inks);
    EXPECT_DOUBLE_EQ(p.blockHeight, 200 + 100 + 23.22);
    EXPECT_DOUBLE_EQ(p.headlineTop, 209.7);
    EXPECT_DOUBLE_EQ(p.phoneLeft, 129);
    EXPECT_EQ(p.screenHeight, 2154);  // 994 x 2796 / 1290 = 2154.45
    EXPECT_EQ(p.phoneHeight, 2192);
    EXPECT_DOUBLE_EQ(p.phoneTop, 209.7 + 323.22 + 125.82);
}

TEST(PlacePage, DeviceTopOnTheStorePage) {
    const PageMetrics m = pageMetrics(1290, 2796);
    const std::vector<InkExtent> inks = {{-180, 20}};
    const PagePlacement p = placePage(m, 1290, 2796, Layout::deviceTop, inks);
    EXPECT_DOUBLE_EQ(p.blockHeight, 200);  // one line: no gap
    EXPECT_DOUBLE_EQ(p.headlineTop, 2796 - 209.7 - 200);
    EXPECT_DOUBLE_EQ(p.phoneTop, 2796 - 209.7 - 200 - 125.82 - 2192);
}

TEST(PlacePage, PhoneLeavesThePageExactlyWhenTheBlockPassesTheSpare) {
    // 2796 - 209.7 - 125.82 - 2192 = 268.48 pixels are left for the headline.
    const PageMetrics m = pageMetrics(1290, 2796);
    for (double block : {100.0, 268.0, 268.47, 268.49, 269.0, 400.0}) {
        const std::vector<InkExtent> inks = {extentOfHeight(block)};
        const bool overflows = block > 268.48;
        const PagePlacement top = placePage(m, 1290, 2796, Layout::deviceTop, inks);
        EXPECT_EQ(top.phoneTop < 0, overflows) << block;
        const PagePlacement hero = placePage(m, 1290, 2796, Layout::hero, inks);
        EXPECT_EQ(hero.phoneTop + hero.phoneHeight > 2796, overflows) << block;
    }
}

TEST(PlacePage, LinesAndGapsAddUp) {
    const PageMetrics m = pageMetrics(1000, 2000);  // gap 18
    const std::vector<InkExtent> three = {{-100, 0}, {-50, 10}, {-40.5, 0}};
    EXPECT_DOUBLE_EQ(placePage(m, 10, 10, Layout::hero, three).blockHeight, 100 + 60 + 40.5 + 2 * 18);
    EXPECT_DOUBLE_EQ(placePage(m, 10, 10, Layout::hero, {}).blockHeight, 0);
}

TEST(PlacePage, ScreenTakesTheCaptureShape) {
    // W = 1000: P = 800, b = round(14.4) = 14, screen 772 wide.
    const PageMetrics m = pageMetrics(1000, 2000);
    EXPECT_EQ(placePage(m, 772, 1000, Layout::hero, {}).screenHeight, 1000);
    EXPECT_EQ(placePage(m, 1000, 1000, Layout::hero, {}).screenHeight, 772);
    EXPECT_EQ(placePage(m, 2000, 1000, Layout::hero, {}).screenHeight, 386);
    EXPECT_EQ(placePage(m, 8, 1, Layout::hero, {}).screenHeight, 97);  // 96.5 rounds up
    EXPECT_EQ(placePage(m, 8, 1, Layout::hero, {}).phoneHeight, 97 + 28);
}

TEST(PlacePage, RefusesAScreenTallerThanTheResamplerCanMake) {
    // Screen 772 wide on this page: a capture of 772 x n needs exactly n rows.
    const PageMetrics m = pageMetrics(1000, 2000);
    EXPECT_EQ(placePage(m, 772, 2147483647, Layout::hero, {}).screenHeight, 2147483647);
    try {
        placePage(m, 772, 2147483648, Layout::deviceTop, {});
        FAIL() << "no error";
    } catch (const PlakardError& error) {
        EXPECT_EQ(error.description,
                  "screenshot of 772x2147483648 pixels is too tall for its width to draw in the phone");
    }
}

}  // namespace
}  // namespace plakard
