// The hard edges of the layout: a line that reaches the legibility floor
// exactly is set, one a rounding error short of it is refused; a headline that
// leaves a device drawn whole exactly half the page's height is set, one a
// hair taller is refused.
#include <gtest/gtest.h>

#include <cmath>
#include <span>
#include <string>
#include <utility>

#include "compose/DevicePlacement.hpp"
#include "compose/PageLayout.hpp"
#include "platform/PlakardError.hpp"

namespace plakard {
namespace {

TEST(Layout, TheLegibilityFloorIsSetAndAHairBelowItIsRefused) {
    const PageMetrics metrics = pageMetrics(1000, 2000);  // a measure of 700, a floor of 45
    EXPECT_EQ(fittedLineSize(metrics, "ABC", 1, 700, 45), 45);
    try {
        fittedLineSize(metrics, "ABC", 1, std::nextafter(700.0, 800.0), 45);
        ADD_FAILURE() << "a line below the floor was set";
    } catch (const PlakardError& error) {
        EXPECT_TRUE(error.description.ends_with("shorten it to about 3 characters or fewer")) << error.description;
    }
}

TEST(Layout, AHeadlineLeavesADeviceDrawnWholeHalfThePage) {
    const PageMetrics metrics = devicePageMetrics(2000, 1000);  // 75 above the headline, 45 below: 880 - T left
    const InkExtent half[] = {{-190, 0}, {-172, 0}};            // 190 + 18 + 172 = 380
    EXPECT_NO_THROW(placeWholeDevice(metrics, Device::none, 4, 3, Layout::hero, 380, half));
    const InkExtent more[] = {{-190, 0}, {-172.000001, 0}};
    // The page's own lines, or the taller block of its --match set.
    const std::pair<double, std::span<const InkExtent>> tooTall[] = {{headlineBlockHeight(metrics, more), more},
                                                                     {380.000001, half}};
    const std::string refusals[] = {
        "headline of 2 lines leaves the device less than half the page's height; keep it to 1 line or fewer at "
        "2000x1000",
        "the --match set's headline block leaves the device less than half the page's height at 2000x1000;"
        " shorten its tallest headline"};
    for (std::size_t i = 0; i < 2; ++i) {
        try {
            placeWholeDevice(metrics, Device::none, 4, 3, Layout::hero, tooTall[i].first, tooTall[i].second);
            ADD_FAILURE() << "a headline leaving less than half the page was set";
        } catch (const PlakardError& error) {
            EXPECT_EQ(error.description, refusals[i]);
        }
    }
}

}  // namespace
}  // namespace plakard
