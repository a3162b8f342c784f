#include <filesystem>
#include <string>
#include <vector>

#include "e2e/Harness.hpp"

namespace plakard::test {
namespace {

class ResizeTest : public EndToEnd {
protected:
    void SetUp() override { provide("e2e/capture-40x60.png", "raw/01.png"); }

    // A successful run prints the output's absolute path and writes an opaque
    // PNG of exactly the size asked for.
    void expectWritten(const std::vector<std::string>& arguments, const std::filesystem::path& output,
                       std::uint32_t width, std::uint32_t height) const {
        expectRun(arguments, run(arguments), 0, output.string() + "\n", "");
        const std::optional<PNGHeader> header = pngHeader(output);
        ASSERT_TRUE(header.has_value()) << output;
        EXPECT_EQ(header->width, width);
        EXPECT_EQ(header->height, height);
        EXPECT_EQ(header->colourType, 2) << "not RGB without alpha";
    }
};

TEST_F(ResizeTest, ChecksItsOptionsInOrder) {
    expectFailure({"resize", "--out", "o.png", "--in", "raw/01.png"}, "missing --size");
    expectFailure({"resize", "--size", "10x10", "--in", "raw/01.png"}, "missing --out");
    expectFailure({"resize", "--size", "10x10", "--out", "o.png"}, "missing --in");
    EXPECT_FALSE(std::filesystem::exists(folder() / "o.png"));
}

TEST_F(ResizeTest, TheFitIsCheckedAfterTheInputDecodes) {
    expectFailure({"resize", "--in", "raw/01.png", "--out", "o.png", "--size", "10x10", "--fit", "Cover"},
                  "--fit must be one of cover, stretch");
    EXPECT_FALSE(std::filesystem::exists(folder() / "o.png"));
    // With an unreadable input, the input's failure wins over the bad fit.
    expectFailure({"resize", "--in", "missing.png", "--out", "o.png", "--size", "10x10", "--fit", "Cover"},
                  "cannot read " + (folder() / "missing.png").string() + ": No such file or directory");
}

TEST_F(ResizeTest, PrintsTheAbsoluteStandardizedOutputPath) {
    expectWritten({"resize", "--in", "raw/01.png", "--out", "final/01.png", "--size", "1284x2778"},
                  folder() / "final/01.png", 1284, 2778);
    expectWritten({"resize", "--in", "raw/01.png", "--out", "./final/../final/./02.png", "--size=20X30"},
                  folder() / "final/02.png", 20, 30);
    expectWritten({"resize", "--in", (folder() / "raw/01.png").string(), "--out", (folder() / "03.png").string(),
                   "--size", "+30xx20", "--fit", "stretch"},
                  folder() / "03.png", 30, 20);
    // The image's own size still writes an opaque PNG; the last --size wins; an old file is replaced whole.
    provide("e2e/grey-7x5.png", "same.png");
    expectWritten({"resize", "--in", "raw/01.png", "--out", "same.png", "--size", "9x9", "--size", "40x60"},
                  folder() / "same.png", 40, 60);
}

TEST_F(ResizeTest, FailuresLeaveAnExistingOutputAsItWas) {
    provide("e2e/grey-7x5.png", "out.png");
    provide("e2e/not-an-image.png", "text.png");
    const std::string before = readBytes(folder() / "out.png");
    const RunResult result = run({"resize", "--in", "text.png", "--out", "out.png", "--size", "10x10"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.err.starts_with("plakard: cannot decode text.png: ")) << result.err;
    EXPECT_EQ(readBytes(folder() / "out.png"), before);
    expectFailure({"resize", "--in", "raw/01.png", "--out", "out.png/o.png", "--size", "10x10"},
                  "cannot write " + (folder() / "out.png/o.png").string() + ": Not a directory");
}

}  // namespace
}  // namespace plakard::test
