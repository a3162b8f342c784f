#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "e2e/Harness.hpp"

namespace plakard::test {
namespace {

class ComposeTest : public EndToEnd {
protected:
    void SetUp() override { provide("e2e/capture-40x60.png", "raw/01.png"); }

    // Every option valid; tests replace or drop one at a time.
    static std::vector<std::string> complete(std::vector<std::string> extra = {}) {
        std::vector<std::string> arguments{"compose",      "--size", "300x500",   "--headline",   "Track|every sub",
                                           "--out",        "final/01.png", "--bg", "#1F1F23", "--screenshot",
                                           "raw/01.png"};
        arguments.insert(arguments.end(), extra.begin(), extra.end());
        return arguments;
    }
};

TEST_F(ComposeTest, ReportsTheFirstMissingOptionInOrder) {
    expectFailure({"compose"}, "missing --size");
    expectFailure({"compose", "--size", "10x10"}, "missing --headline");
    expectFailure({"compose", "--size", "10x10", "--headline", "A"}, "missing --out");
    expectFailure({"compose", "--size", "10x10", "--headline", "A", "--out", "o.png"}, "missing --bg");
    expectFailure({"compose", "--size", "10x10", "--headline", "A", "--out", "o.png", "--bg", "#000000"},
                  "missing --screenshot");
    // Later options present change nothing about the first one missing.
    expectFailure({"compose", "--headline", "A", "--out", "o.png", "--bg", "#000000", "--screenshot", "raw/01.png"},
                  "missing --size");
    expectFailure({"compose", "--out", "--size", "10x10"}, "missing --size");
    EXPECT_FALSE(std::filesystem::exists(folder() / "o.png"));
}

TEST_F(ComposeTest, ValidatesInOrderSizeHeadlineColoursCaptureLayoutFont) {
    expectFailure({"compose", "--size", "12", "--headline", "|"},
                  "--size must be WxH in pixels up to 20000 a side, for example 1284x2778 (got '12')");
    expectFailure({"compose", "--size", "10x10", "--headline", " | "}, "--headline is empty; pass lines separated by '|'");
    // A bad background before a missing capture; a bad foreground likewise.
    expectFailure({"compose", "--size", "10x10", "--headline", "A", "--out", "o.png", "--bg", "red"},
                  "'red' is not a #RRGGBB colour");
    expectFailure({"compose", "--size", "10x10", "--headline", "A", "--out", "o.png", "--bg", "#000000", "--fg",
                   "#FFF"},
                  "'#FFF' is not a #RRGGBB colour");
    // A missing capture before a bad layout; a bad layout before any font problem.
    expectFailure({"compose", "--size", "10x10", "--headline", "A", "--out", "o.png", "--bg", "#000000",
                   "--screenshot", "missing.png", "--layout", "Hero"},
                  "cannot read " + (folder() / "missing.png").string() + ": No such file or directory");
    expectFailure(complete({"--layout", "Hero", "--font", "missing.ttf"}), "--layout must be one of hero, device-top");
    expectFailure(complete({"--font", "missing.ttf"}), "font not found: missing.ttf");
    EXPECT_FALSE(std::filesystem::exists(folder() / "final"));
}

TEST_F(ComposeTest, WritesTheExactSizeAndPrintsTheAbsolutePath) {
    for (const std::string layout : {"hero", "device-top"}) {
        const std::vector<std::string> arguments = complete({"--layout", layout, "--out", "final/" + layout + ".png"});
        const std::filesystem::path output = folder() / "final" / (layout + ".png");
        expectRun(arguments, run(arguments), 0, output.string() + "\n", "");
        const std::optional<PNGHeader> header = pngHeader(output);
        ASSERT_TRUE(header.has_value()) << output;
        EXPECT_EQ(header->width, 300u);
        EXPECT_EQ(header->height, 500u);
        EXPECT_EQ(header->colourType, 2) << "not RGB without alpha";
    }
}

TEST_F(ComposeTest, DefaultsAreWhiteAndHero) {
    const std::vector<std::string> implicit = complete({"--out", "implicit.png"});
    const std::vector<std::string> explicitly =
        complete({"--out", "explicit.png", "--fg", "#FFFFFF", "--layout", "hero"});
    ASSERT_EQ(run(implicit).status, 0);
    ASSERT_EQ(run(explicitly).status, 0);
    EXPECT_EQ(readBytes(folder() / "implicit.png"), readBytes(folder() / "explicit.png"));
}

TEST_F(ComposeTest, TheHeadlineIsUpperCasedBeforeDrawing) {
    // Full case mapping may lengthen a line: "ß" becomes "SS".
    ASSERT_EQ(run(complete({"--headline", " straße | every sub ", "--out", "lower.png"})).status, 0);
    ASSERT_EQ(run(complete({"--headline", "STRASSE||EVERY SUB|", "--out", "upper.png"})).status, 0);
    EXPECT_EQ(readBytes(folder() / "lower.png"), readBytes(folder() / "upper.png"));
}

TEST_F(ComposeTest, AFailedRunLeavesAnExistingOutputAsItWas) {
    provide("e2e/grey-7x5.png", "final/01.png");
    const std::string before = readBytes(folder() / "final/01.png");
    expectFailure(complete({"--layout", "sideways"}), "--layout must be one of hero, device-top");
    EXPECT_EQ(readBytes(folder() / "final/01.png"), before);
}

TEST_F(ComposeTest, PrintsTheStandardizedOutputPathWithoutResolvingLinks) {
    std::filesystem::create_directory(folder() / "real");
    std::filesystem::create_directory_symlink(folder() / "real", folder() / "link");
    const std::vector<std::pair<std::string, std::filesystem::path>> outputs = {
        {"./final/../final/./a.png", folder() / "final/a.png"},
        {(folder() / "b.png").string(), folder() / "b.png"},
        {"link/c.png", folder() / "link/c.png"},
    };
    for (const auto& [out, printed] : outputs) {
        const std::vector<std::string> arguments = complete({"--out", out});
        expectRun(arguments, run(arguments), 0, printed.string() + "\n", "");
        EXPECT_TRUE(std::filesystem::exists(printed)) << printed;
    }
    EXPECT_TRUE(std::filesystem::exists(folder() / "real/c.png"));
}

TEST_F(ComposeTest, ALineTooLongToReadSuggestsALengthAndLeavesTheOutputAlone) {
    // Inter Black has 2816 units per em; É advances 1752 units and is not kerned
    // against itself. A line of c of them is set at size = 0.7W / (1752c) × 2816,
    // so N = round(c × size / (0.045W)) = round(0.7 × 2816 / (0.045 × 1752))
    // = round(25.0025) = 25 for any c and W. 25 letters land at 0.045005W, just
    // above the floor of 0.045W; 26 at 0.0433W, below it.
    std::string fits;
    for (int i = 0; i < 25; ++i) fits += "é";
    const std::vector<std::string> accepted = complete({"--headline", "short|" + fits, "--out", "fits.png"});
    expectRun(accepted, run(accepted), 0, (folder() / "fits.png").string() + "\n", "");

    provide("e2e/grey-7x5.png", "final/01.png");
    const std::string before = readBytes(folder() / "final/01.png");
    std::string line;
    for (int i = 0; i < 26; ++i) line += "É";
    expectFailure(complete({"--headline", "short|" + fits + "é|" + fits + "éé"}),
                  "headline line '" + line +
                      "' is too long to set inside the centre 70% and stay legible at thumbnail size; shorten it to "
                      "about 25 characters or fewer");
    EXPECT_EQ(readBytes(folder() / "final/01.png"), before);
}

TEST_F(ComposeTest, TheFirstCharacterTheFaceLacksIsNamed) {
    expectFailure(complete({"--headline", "smile \xF0\x9F\x98\x80|\xE2\x98\x83"}),
                  "Inter-Black.ttf has no glyph for '\xF0\x9F\x98\x80' (U+1F600); pass --font with a face that "
                  "covers this headline");
    EXPECT_FALSE(std::filesystem::exists(folder() / "final"));
}

}  // namespace
}  // namespace plakard::test
