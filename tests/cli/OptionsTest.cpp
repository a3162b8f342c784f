#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/Options.hpp"
#include "platform/PlakardError.hpp"

namespace plakard {
namespace {

// The message a failing call throws, or "" when it does not throw.
template <typename Call>
std::string failureOf(Call call) {
    try {
        call();
    } catch (const PlakardError& error) {
        return error.description;
    }
    return "";
}

struct ParseCase {
    std::vector<std::string> words;
    OptionTable options;
    std::vector<std::string> positionals;
};

TEST(ParseOptions, BuildsTheTableAndThePositionals) {
    const ParseCase cases[] = {
        {{}, {}, {}},
        {{"--size", "10x10"}, {{"--size", "10x10"}}, {}},
        {{"--size=10x10"}, {{"--size", "10x10"}}, {}},
        {{"--bg=#1F1F23"}, {{"--bg", "#1F1F23"}}, {}},
        // Only the first '=' splits; the rest belongs to the value.
        {{"--headline=A=B=C"}, {{"--headline", "A=B=C"}}, {}},
        {{"--size="}, {{"--size", ""}}, {}},
        {{"--=x"}, {{"--", "x"}}, {}},
        {{"--", "x"}, {{"--", "x"}}, {}},
        // The next word is the value even when it looks like an option.
        {{"--out", "--size", "10x10"}, {{"--out", "--size"}}, {"10x10"}},
        // The last occurrence wins, in either form.
        {{"--size", "100x100", "--size=200x200"}, {{"--size", "200x200"}}, {}},
        {{"--size=200x200", "--size", "100x100"}, {{"--size", "100x100"}}, {}},
        // Single dashes and empty words are positional; keys are case-sensitive.
        {{"-x", "", "a.png", "--Size", "1x1", "b.png"}, {{"--Size", "1x1"}}, {"-x", "", "a.png", "b.png"}},
        {{"--verbose", "a.png"}, {{"--verbose", "a.png"}}, {}},
        {{"--verbose=1", "a.png"}, {{"--verbose", "1"}}, {"a.png"}},
    };
    for (const ParseCase& c : cases) {
        const ParsedOptions parsed = parseOptions(c.words);
        std::string words;
        for (const std::string& word : c.words) words += "[" + word + "]";
        EXPECT_EQ(parsed.options, c.options) << words;
        EXPECT_EQ(parsed.positionals, c.positionals) << words;
    }
}

TEST(ParseOptions, AnOptionWordInLastPlaceNeedsAValue) {
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"--size"}, "--size needs a value"},
        {{"--bg", "#000000", "--font"}, "--font needs a value"},
        {{"a.png", "--"}, "-- needs a value"},
        {{"--out", "--size", "--Size"}, "--Size needs a value"},
    };
    for (const auto& [words, message] : cases) {
        EXPECT_EQ(failureOf([&] { parseOptions(words); }), message) << words.back();
    }
}

TEST(RequiredOption, ReturnsThePresentValueEvenWhenEmpty) {
    const OptionTable options{{"--out", ""}, {"--in", "a.png"}};
    EXPECT_EQ(required(options, "--out"), "");
    EXPECT_EQ(required(options, "--in"), "a.png");
    EXPECT_EQ(failureOf([&] { required(options, "--bg"); }), "missing --bg");
    EXPECT_EQ(optionalValue(options, "--out"), std::optional<std::string>(""));
    EXPECT_EQ(optionalValue(options, "--fg"), std::nullopt);
}

TEST(ParseSize, AcceptsWidthByHeightWithinTwentyThousand) {
    struct Case {
        const char* value;
        std::int64_t width;
        std::int64_t height;
    };
    const Case cases[] = {
        {"1284x2778", 1284, 2778},
        {"1284X2778", 1284, 2778},
        {"20000x20000", 20000, 20000},
        {"1x1", 1, 1},
        {"1284xx2778", 1284, 2778},
        {"x1284x2778x", 1284, 2778},
        {"+1284x2778", 1284, 2778},
        {"1284x+2778", 1284, 2778},
        {"0001284x02778", 1284, 2778},
    };
    for (const Case& c : cases) {
        const OutputSize size = parseSize({{"--size", c.value}});
        EXPECT_EQ(size.width, c.width) << c.value;
        EXPECT_EQ(size.height, c.height) << c.value;
    }
}

TEST(ParseSize, RefusesAnythingElseQuotingTheValueAsTyped) {
    const char* cases[] = {
        "20001x10", "10x20001", "0x10", "-5x10", "12 x 10", "12", "1x2x3", "", "x", "xx", "12x",
        "99999999999999999999x1", "9223372036854775808x1", "-9223372036854775809x1",
        "-9223372036854775808x1", "1284x2778.0", "1284,2778", "++12x10", "+-12x10", "+x10", "-x10",
        "12x10 ", " 12x10", "1e3x10", "0x12x10", "１２x10", "12\xC3\x97" "10", "12*10",
    };
    for (const char* value : cases) {
        EXPECT_EQ(failureOf([&] { parseSize({{"--size", value}}); }),
                  "--size must be WxH in pixels up to 20000 a side, for example 1284x2778 (got '" +
                      std::string(value) + "')")
            << value;
    }
    // The value is quoted as typed, before lower-casing.
    EXPECT_EQ(failureOf([] { parseSize({{"--size", "0X10"}}); }),
              "--size must be WxH in pixels up to 20000 a side, for example 1284x2778 (got '0X10')");
    EXPECT_EQ(failureOf([] { parseSize({}); }), "missing --size");
}

TEST(ParseLayout, KnowsExactlyTheTwoLayouts) {
    EXPECT_EQ(parseLayout({}), Layout::hero);
    EXPECT_EQ(parseLayout({{"--layout", "hero"}}), Layout::hero);
    EXPECT_EQ(parseLayout({{"--layout", "device-top"}}), Layout::deviceTop);
    for (const char* value : {"Hero", "HERO", "", "device_top", "deviceTop", " hero", "hero "}) {
        EXPECT_EQ(failureOf([&] { parseLayout({{"--layout", value}}); }),
                  "--layout must be one of hero, device-top")
            << value;
    }
}

TEST(ParseFit, KnowsExactlyTheTwoFits) {
    EXPECT_EQ(parseFit({}), Fit::cover);
    EXPECT_EQ(parseFit({{"--fit", "cover"}}), Fit::cover);
    EXPECT_EQ(parseFit({{"--fit", "stretch"}}), Fit::stretch);
    for (const char* value : {"Cover", "STRETCH", "", "contain", "cover "}) {
        EXPECT_EQ(failureOf([&] { parseFit({{"--fit", value}}); }), "--fit must be one of cover, stretch")
            << value;
    }
}

}  // namespace
}  // namespace plakard
