// The front door: usage requests, exit statuses, the unknown command, and the
// one form every failure takes on standard error.

#include <string>
#include <vector>

#include "e2e/Harness.hpp"

namespace plakard::test {
namespace {

using DispatchTest = EndToEnd;

std::string usage() { return readBytes(dataPath("e2e/usage.txt")); }

TEST_F(DispatchTest, TheUsageTextIsPrintedByteForByteWithOneNewline) {
    // The stored copy is the text users see; check its own shape too.
    const std::string text = usage();
    ASSERT_EQ(text.size(), 1207u);
    ASSERT_TRUE(text.ends_with("PLAKARD_FONT overrides it.\n"));

    const std::vector<std::vector<std::string>> askingForHelp = {
        {"help"},
        {"--help"},
        {"-h"},
        {"compose", "--help"},
        {"probe", "missing.png", "-h"},  // asked for help, it never reads the file
        {"compose", "--headline", "-h"},
        {"frobnicate", "--help"},
        // Asking for help comes before parsing: this would otherwise lack a value.
        {"resize", "--size", "-h", "--out"},
        {"compose", "--size=0x0", "--headline", "--help"},
    };
    for (const auto& arguments : askingForHelp) expectRun(arguments, run(arguments), 0, text, "");

    const std::vector<std::vector<std::string>> withoutACommand = {{}, {""}, {"", "compose"}, {"", "--help"}};
    for (const auto& arguments : withoutACommand) expectRun(arguments, run(arguments), 2, text, "");
}

TEST_F(DispatchTest, CommandWordsAreExactAndCaseSensitive) {
    for (const std::string word : {"Help", "HELP", "--HELP", "-H", "compose ", "Compose", "frobnicate", "-",
                                   "--size=1x1"}) {
        expectFailure({word}, "unknown command '" + word + "'; try `plakard help`");
    }
    expectFailure({"Probe", "a.png"}, "unknown command 'Probe'; try `plakard help`");
}

TEST_F(DispatchTest, ParsingComesBeforeDispatch) {
    expectFailure({"frobnicate", "--size"}, "--size needs a value");
    expectFailure({"compose", "--size", "10x10", "--font"}, "--font needs a value");
    expectFailure({"probe", "a.png", "--"}, "-- needs a value");
}

}  // namespace
}  // namespace plakard::test
