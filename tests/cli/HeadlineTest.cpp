#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/Headline.hpp"
#include "platform/PlakardError.hpp"

namespace plakard {
namespace {

TEST(HeadlineLines, SplitsTrimsAndUpperCases) {
    const std::pair<const char*, std::vector<std::string>> cases[] = {
        {"Track | every subscription", {"TRACK", "EVERY SUBSCRIPTION"}},
        {"A||B", {"A", "B"}},
        {"|A|", {"A"}},
        {"A| |B", {"A", "B"}},
        {"one", {"ONE"}},
        {"\tTabbed\t|  two  words  ", {"TABBED", "TWO  WORDS"}},
        // No-break space and ideographic space are blanks (Zs) too.
        {"\xC2\xA0wide\xE3\x80\x80|x", {"WIDE", "X"}},
        // Line breaks are not blanks.
        {"\nA\n", {"\nA\n"}},
        // Full case mapping may lengthen a line.
        {"stra\xC3\x9F" "e", {"STRASSE"}},
        {"\xC3\xA9t\xC3\xA9", {"\xC3\x89T\xC3\x89"}},
    };
    for (const auto& [headline, lines] : cases) EXPECT_EQ(headlineLines(headline), lines) << headline;
}

TEST(HeadlineLines, RefusesAHeadlineWithNothingToSet) {
    for (const char* headline : {"", "|", "   ", " | ", "||", "\t|\xC2\xA0"}) {
        try {
            headlineLines(headline);
            ADD_FAILURE() << "accepted '" << headline << "'";
        } catch (const PlakardError& error) {
            EXPECT_EQ(error.description, "--headline is empty; pass lines separated by '|'") << headline;
        }
    }
}

}  // namespace
}  // namespace plakard
