#include <string>
#include <vector>

#include "e2e/Harness.hpp"

namespace plakard::test {
namespace {

class ProbeTest : public EndToEnd {
protected:
    void SetUp() override {
        provide("e2e/capture-40x60.png", "a.png");
        provide("e2e/grey-7x5.png", "b.png");
    }
};

TEST_F(ProbeTest, NeedsAtLeastOnePath) {
    expectFailure({"probe"}, "probe needs at least one image path");
    // The unknown option takes a.png as its value, so no path is left.
    expectFailure({"probe", "--verbose", "a.png"}, "probe needs at least one image path");
}

TEST_F(ProbeTest, PrintsOneLinePerImageInTheOrderGiven) {
    expectRun({"probe", "a.png", "b.png", "a.png"}, run({"probe", "a.png", "b.png", "a.png"}), 0,
              "40x60\n7x5\n40x60\n", "");
    // Options are ignored, in either form.
    expectRun({"probe", "--size", "10x10", "b.png"}, run({"probe", "--size", "10x10", "b.png"}), 0, "7x5\n", "");
    expectRun({"probe", "--verbose=1", "a.png"}, run({"probe", "--verbose=1", "a.png"}), 0, "40x60\n", "");
    // Single-dash words are paths too.
    provide("e2e/grey-7x5.png", "-x");
    expectRun({"probe", "-x"}, run({"probe", "-x"}), 0, "7x5\n", "");
}

TEST_F(ProbeTest, TheFirstFailureStopsTheRunAfterTheLinesBeforeIt) {
    const std::vector<std::string> arguments{"probe", "a.png", "missing.png", "b.png"};
    expectRun(arguments, run(arguments), 1, "40x60\n",
              "plakard: cannot read " + (folder() / "missing.png").string() + ": No such file or directory\n");
}

TEST_F(ProbeTest, UndecodableFilesNameOnlyTheFile) {
    provide("e2e/not-an-image.png", "raw/text.png");
    const RunResult text = run({"probe", "raw/text.png"});
    EXPECT_EQ(text.status, 1);
    EXPECT_EQ(text.out, "");
    EXPECT_TRUE(text.err.starts_with("plakard: cannot decode text.png: ")) << text.err;
    EXPECT_TRUE(text.err.ends_with(" (PNG and JPEG only)\n")) << text.err;

    // The whole image is decoded, not only its header.
    provide("e2e/damaged-body.png", "damaged.png");
    const RunResult damaged = run({"probe", "b.png", "damaged.png"});
    EXPECT_EQ(damaged.status, 1);
    EXPECT_EQ(damaged.out, "7x5\n");
    EXPECT_TRUE(damaged.err.starts_with("plakard: cannot decode damaged.png: ")) << damaged.err;
}

}  // namespace
}  // namespace plakard::test
