// The legibility floor is a hard edge: a line that reaches it exactly is set,
// one a rounding error short of it is refused.
#include <gtest/gtest.h>

#include <cmath>

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

}  // namespace
}  // namespace plakard
