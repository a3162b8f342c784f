// The hard edges of the layout: a line that reaches the legibility floor
// exactly is set, one a rounding error short of it is refused; a headline that
// leaves a device drawn whole exactly half the page's height is set, one a
// hair taller is refused.
#include <gtest/gtest.h>

#include <cmath>

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
    EXPECT_NO_THROW(placeWholeDevice(metrics, Device::none, 4, 3, Layout::hero, half));
    const InkExtent more[] = {{-190, 0}, {-172.000001, 0}};
    try {
        placeWholeDevice(metrics, Device::none, 4, 3, Layout::hero, more);
        ADD_FAILURE() << "a headline leaving less than half the page was set";
    } catch (const PlakardError& error) {
        EXPECT_EQ(error.description,
                  "headline of 2 lines leaves the device less than half the page's height;"
                  " keep it to 1 line or fewer at 2000x1000");
    }
}

}  // namespace
}  // namespace plakard
