#include <filesystem>
#include <string>
#include <vector>

#include "e2e/Harness.hpp"

namespace plakard::test {
namespace {

const std::string sizeMessage = "--size must be WxH in pixels up to 20000 a side, for example 1284x2778 (got '";

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
    expectFailure({"resize"}, "missing --size");
    expectFailure({"resize", "--out", "o.png", "--in", "raw/01.png"}, "missing --size");
    expectFailure({"resize", "--size", "10x10"}, "missing --out");
    expectFailure({"resize", "--size", "10x10", "--in", "raw/01.png"}, "missing --out");
    expectFailure({"resize", "--size", "10x10", "--out", "o.png"}, "missing --in");
    // Positional words are ignored.
    expectFailure({"resize", "raw/01.png", "--size", "10x10", "--out", "o.png"}, "missing --in");
    // --out --size stores "--size" as the output; 10x10 becomes positional.
    expectFailure({"resize", "--out", "--size", "10x10", "--in", "raw/01.png"}, "missing --size");
    expectFailure({"resize", "--Size", "10x10", "--out", "o.png", "--in", "raw/01.png"}, "missing --size");
    EXPECT_FALSE(std::filesystem::exists(folder() / "o.png"));
}

TEST_F(ResizeTest, RefusesBadSizesQuotingThemAsTyped) {
    for (const std::string size : {"20001x10", "0x10", "-5x10", "12 x 10", "12", "1x2x3", "", "12x",
                                   "99999999999999999999x1", "0X10"}) {
        expectFailure({"resize", "--size", size, "--out", "o.png", "--in", "raw/01.png"}, sizeMessage + size + "')");
        expectFailure({"resize", "--size=" + size}, sizeMessage + size + "')");
    }
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
}

TEST_F(ResizeTest, TheImagesOwnSizeStillWritesAnOpaquePNG) {
    expectWritten({"resize", "--in", "raw/01.png", "--out", "same.png", "--size", "40x60"}, folder() / "same.png",
                  40, 60);
}

TEST_F(ResizeTest, AnExistingOutputIsReplacedWhole) {
    provide("e2e/grey-7x5.png", "out.png");
    expectWritten({"resize", "--in", "raw/01.png", "--out", "out.png", "--size", "9x9", "--size", "10x11"},
                  folder() / "out.png", 10, 11);
}

TEST_F(ResizeTest, AFailedRunLeavesAnExistingOutputAsItWas) {
    provide("e2e/grey-7x5.png", "out.png");
    provide("e2e/not-an-image.png", "text.png");
    const std::string before = readBytes(folder() / "out.png");
    const RunResult result = run({"resize", "--in", "text.png", "--out", "out.png", "--size", "10x10"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_TRUE(result.err.starts_with("plakard: cannot decode text.png: ")) << result.err;
    EXPECT_EQ(readBytes(folder() / "out.png"), before);
}

TEST_F(ResizeTest, AnOutputBelowARegularFileCannotBeWritten) {
    provide("e2e/grey-7x5.png", "file");
    const RunResult result = run({"resize", "--in", "raw/01.png", "--out", "file/o.png", "--size", "10x10"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_TRUE(result.err.starts_with("plakard: cannot write " + (folder() / "file/o.png").string() + ": "))
        << result.err;
}

}  // namespace
}  // namespace plakard::test
