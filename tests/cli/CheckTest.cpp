// The limits of `plakard check` that committed files would make large or
// many: Google Play's 8 MB and its 2 to 8 pages a folder, each at its
// boundary, and App Store slots that share a size.
#include <gtest/gtest.h>

#include "cli/PageRules.hpp"
#include "support/Support.hpp"

namespace plakard::test {
namespace {

// A 320x640 page Google Play takes, grown to `bytes` by an ancillary chunk
// after the header, which decoders pass over.
std::string pageOfSize(std::size_t bytes) {
    std::string page = readBytes(dataPath("images/listing/play-good/1.png"));
    const std::size_t length = bytes - page.size() - 12;
    const char size[] = {char(length >> 24), char(length >> 16), char(length >> 8), char(length)};
    return page.insert(33, std::string(size, 4) + "plAk" + std::string(length, '\0') + "crc.");
}

TEST(Check, GooglePlayTakesTwoToEightPagesOfAtMost8MB) {
    const TempDir dir;
    writeBytes(dir / "size/at.png", pageOfSize(8 << 20));
    writeBytes(dir / "size/past.png", pageOfSize((8 << 20) + 1));
    const std::string page = readBytes(dataPath("images/listing/play-good/1.png"));
    for (const int pages : {1, 8, 9}) {
        for (int n = 1; n <= pages; ++n) writeBytes(dir / std::to_string(pages) / (std::to_string(n) + ".png"), page);
    }
    const Outcome run = runInProcess({"check", "--store", "play", "1", "8", "9", "size"}, dir.path);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out,
              "size/past.png: is 8388609 bytes, more than 8 MB; save it smaller, such as a JPEG\n"
              "1: 1 phone page; Google Play takes 2 to 8 a folder, so add 1\n"
              "9: 9 phone pages; Google Play takes 2 to 8 a folder, so remove 1\n"
              "checked 20 images in 4 folders: 3 problems\n");
}

TEST(Check, PagesOfASharedSizeFillWhicheverSlotHasRoom) {
    const std::vector<std::string_view> tv = appStoreSlots(1920, 1080);
    const std::vector<std::string_view> tvOrVision = appStoreSlots(2160, 3840);
    const std::string limit = " pages; the App Store takes at most 10 a slot, so remove ";
    const std::pair<SlotCounts, std::vector<std::string>> cases[] = {
        {{{tvOrVision, 20}}, {}},
        {{{tvOrVision, 21}}, {"21 Apple TV or Vision Pro" + limit + "1"}},
        {{{tv, 5}, {tvOrVision, 15}}, {}},
        {{{tv, 10}, {tvOrVision, 11}}, {"11 Apple TV or Vision Pro" + limit + "1"}},
        {{{tv, 11}, {tvOrVision, 1}}, {"11 Apple TV" + limit + "1"}},
    };
    for (const auto& [counts, problems] : cases) EXPECT_EQ(folderProblems(counts, 0, Store::appStore), problems);
}

}  // namespace
}  // namespace plakard::test
