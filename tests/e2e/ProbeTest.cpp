#include <cctype>
#include <filesystem>
#include <optional>
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

namespace plakard::test {
namespace {

// Real files of every kind a user feeds in: each gives its size through
// probe and an opaque RGB PNG of the asked size through resize, or one
// decode line naming the file.
TEST_F(EndToEnd, RealInputsProbeAndResizeOrFailWithTheDecoderReason) {
    struct Case {
        const char* name;
        const char* probed;  // "WxH", or the decoder's reason
    };
    const Case cases[] = {
        {"browser-screenshot.png", "390x844"}, {"capture.jpg", "400x867"},
        {"grey.png", "4x2"},                   {"grey-alpha.png", "2x2"},
        {"palette.png", "3x2"},                {"sixteen-bit.png", "3x2"},
        {"interlaced.png", "13x11"},           {"progressive.jpg", "32x16"},
        {"empty.png", "unknown image type"},   {"text.png", "unknown image type"},
        {"not-an-image.gif", "unknown image type"}, {"truncated.png", "outofdata"},
    };
    for (const Case& c : cases) {
        const std::string name = c.name;
        provide("images/" + name, name);
        const std::vector<std::string> probe{"probe", name};
        const std::vector<std::string> resize{"resize", "--in", name, "--out", "out/" + name + ".png", "--size",
                                              "31x17"};
        if (std::string(c.probed).find('x') != std::string::npos && std::isdigit(c.probed[0])) {
            expectRun(probe, run(probe), 0, std::string(c.probed) + "\n", "");
            expectRun(resize, run(resize), 0, (folder() / "out" / (name + ".png")).string() + "\n", "");
            const std::optional<PNGHeader> header = pngHeader(folder() / "out" / (name + ".png"));
            ASSERT_TRUE(header) << name;
            EXPECT_EQ(header->width, 31u) << name;
            EXPECT_EQ(header->height, 17u) << name;
            EXPECT_EQ(header->colourType, 2) << name;
        } else {
            const std::string message = "cannot decode " + name + ": " + c.probed + " (PNG and JPEG only)";
            expectFailure(probe, message);
            expectFailure(resize, message);
            EXPECT_FALSE(std::filesystem::exists(folder() / "out" / (name + ".png"))) << name;
        }
    }
}

}  // namespace
}  // namespace plakard::test
