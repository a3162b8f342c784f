// Inputs and sizes that ask for more memory than a run can have: each ends
// in a result or in one "plakard: ..." line, never in a crash or a kill.

#include <filesystem>
#include <string>
#include <vector>

#include "e2e/Harness.hpp"
#include "e2e/MadeImages.hpp"

namespace plakard::test {
namespace {

const std::string tooLarge = "too large (PNG and JPEG only)";
const std::string notEnoughMemory = "not enough memory for images this large";

class ResourceLimitTest : public EndToEnd {
protected:
    void SetUp() override { provide("e2e/capture-40x60.png", "raw/01.png"); }

    // The folder holds exactly what the test put there: no output, no
    // temporary file.
    void expectNothingWritten() const {
        EXPECT_EQ(folderEntries(folder()), (std::vector<std::string>{"bomb.png", "raw"}));
    }
};

TEST_F(ResourceLimitTest, ImagesDeclaringMoreThanADecodeCanReturnAreRefusedAtTheHeader) {
    const struct {
        const char* what;
        std::string file;
    } cases[] = {
        // Within the decoder's own header check (a byte per pixel), but not
        // as RGBA: refused before 900 MB are inflated.
        {"grey 30000x30000", zeroPNG(30000, 30000, pngGrey)},
        {"RGBA one row over 1 GiB", zeroPNG(16385, 16384, pngRGBA)},
        {"beyond the decoder's 2^24 a side", zeroPNG(1, (1u << 24) + 1, pngGrey)},
        {"JPEG 65535x65535", jpegDeclaring(65535, 65535)},
        // Within the decoder's header check for three channels, not for four.
        {"JPEG 26000x26000", jpegDeclaring(26000, 26000)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        provideBytes("bomb.png", c.file);
        expectFailure({"probe", "bomb.png"}, "cannot decode bomb.png: " + tooLarge);
        expectFailure({"resize", "--in", "bomb.png", "--out", "out.png", "--size", "10x10"},
                      "cannot decode bomb.png: " + tooLarge);
        expectNothingWritten();
    }
}

TEST_F(ResourceLimitTest, ASmallFileOfALargeImageIsDecodedWhole) {
    provideBytes("bomb.png", zeroPNG(4000, 4000, pngGrey));
    ASSERT_LT(std::filesystem::file_size(folder() / "bomb.png"), 120'000u);
    expectRun({"probe", "bomb.png"}, run({"probe", "bomb.png"}), 0, "4000x4000\n", "");
    const std::vector<std::string> resize{"resize", "--in", "bomb.png", "--out", "out.png", "--size", "12x34"};
    expectRun(resize, run(resize), 0, (folder() / "out.png").string() + "\n", "");
}

TEST_F(ResourceLimitTest, ACaptureTooNarrowForItsHeightCannotBeDrawnInThePhone) {
    // On a 300-pixel page the screen is 232 wide, so this capture would need
    // 232 x 2^24 rows of it, more than the resampler can count.
    provideBytes("bomb.png", zeroPNG(1, 1u << 24, pngGrey));
    expectFailure({"compose", "--size", "300x500", "--headline", "A", "--out", "out.png", "--bg", "#102030",
                   "--screenshot", "bomb.png"},
                  "screenshot of 1x16777216 pixels is too tall for its width to draw in the phone");
    expectNothingWritten();
}

// Run under an address-space limit, the largest jobs fail the same way on
// every machine: the allocation fails cleanly instead of the kernel killing
// the process once the memory is touched.
TEST_F(ResourceLimitTest, JobsBeyondTheMemoryAtHandFailWithOneLine) {
    if (sanitizedBuild()) GTEST_SKIP() << "AddressSanitizer needs more address space than the limit allows";
    RunSettings limited = settings();
    limited.addressSpaceLimit = std::uint64_t{1} << 30;
    provideBytes("bomb.png", zeroPNG(1, 16384, pngGrey));  // a 16-million-row screen on the page below
    const std::vector<std::string> compose{"compose",       "--size", "20000x20000", "--headline", "A",
                                           "--out",         "out.png", "--bg", "#102030", "--screenshot",
                                           "raw/01.png"};
    std::vector<std::string> narrowCapture = compose;
    narrowCapture[2] = "1290x2796";
    narrowCapture.back() = "bomb.png";
    const std::vector<std::string> jobs[] = {
        compose,
        narrowCapture,
        {"resize", "--in", "raw/01.png", "--out", "out.png", "--size", "20000x20000"},
    };
    for (const std::vector<std::string>& job : jobs) {
        expectRun(job, runPlakard(job, limited), 1, "", "plakard: " + notEnoughMemory + "\n");
        expectNothingWritten();
    }
}

}  // namespace
}  // namespace plakard::test
