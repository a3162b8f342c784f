#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "cli/PlakardCLI.hpp"

namespace plakard {
namespace {

// The shape of the text; the e2e suite compares every byte with a stored copy.
TEST(UsageText, HasTwentySevenLinesAndNoTrailingNewline) {
    EXPECT_EQ(std::count(usageText.begin(), usageText.end(), '\n'), 26);
    EXPECT_NE(usageText.back(), '\n');
    EXPECT_EQ(usageText.size(), 1206u);
    EXPECT_TRUE(usageText.starts_with("plakard \xE2\x80\x94 compose and size App Store screenshots.\n\nUSAGE\n"));
    EXPECT_TRUE(usageText.ends_with("\nPLAKARD_FONT overrides it."));
    EXPECT_EQ(usageText.find('\t'), std::string_view::npos);
    EXPECT_EQ(usageText.find(" \n"), std::string_view::npos);
    EXPECT_EQ(std::count(usageText.begin(), usageText.end(), '\\'), 3);
}

}  // namespace
}  // namespace plakard
