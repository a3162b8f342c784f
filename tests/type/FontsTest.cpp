// Faces as the loader meets them: real ones from Debian's font packages, every
// prefix of them, crafted ones that break one table rule each, and the files
// that once crashed the fuzz targets.
#include <gtest/gtest.h>

#include "platform/PlakardError.hpp"
#include "raster/Canvas.hpp"
#include "support/Support.hpp"
#include "type/Font.hpp"
#include "type/LineLayout.hpp"
#include "type/ShapedLine.hpp"

namespace plakard::test {
namespace {

std::span<const std::uint8_t> bytesOf(const std::string& text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

// The loader's refusal, or "" when the face loaded.
std::string refusal(std::span<const std::uint8_t> bytes, const std::string& name, int faceIndex = 0) {
    try {
        Font::fromData(bytes, name, faceIndex);
        return "";
    } catch (const PlakardError& error) {
        return error.description;
    }
}

TEST(Fonts, RealFacesLoadWithTheirEmAndNoPrefixOfThemIsReadPastItsEnd) {
    const std::pair<const char*, double> faces[] = {
        {"/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf", 2048},
        {"/usr/share/fonts/opentype/inter/Inter-Black.otf", 2815.9999160766624},
        {"/usr/share/fonts/truetype/noto/NotoSansMono-Regular.ttf", 999.999952502551},
        {"/usr/share/fonts/truetype/wqy/wqy-microhei.ttc", 2048},
    };
    for (const auto& [path, em] : faces) {
        EXPECT_NEAR(Font::load(path)->unitsPerEm, em, 1e-9) << path;
        const std::string bytes = readBytes(path);
        // Prefixes through the table directory, then across the whole file:
        // refused, or whole enough for everything that is read.
        for (std::size_t size = 12; size < bytes.size(); size += size < 600 ? 1 : bytes.size() / 89) {
            const std::string refused = refusal(bytesOf(bytes).first(size), "cut");
            ASSERT_TRUE(refused.empty() || refused == "cut is not a TrueType or OpenType font, or is truncated") << refused;
        }
    }
}

// A collection's second member is its own face (WenQuanYi's is monospaced),
// checked as the first is; there is no member past the last, nor a second
// face in a plain font file.
TEST(Fonts, CollectionMembersLoadByIndex) {
    const char* path = "/usr/share/fonts/truetype/wqy/wqy-microhei.ttc";
    const auto width = [&](int index, const char* text) { return layOutLine(*Font::load(path, index), text).advanceUnits(); };
    EXPECT_NE(width(0, "I"), width(0, "W"));
    EXPECT_EQ(width(1, "I"), width(1, "W"));
    const auto mono = Font::load(path, 1);
    EXPECT_EQ(shapeLine(*mono, "IW", {}).advanceUnits(), layOutLine(*mono, "IW").advanceUnits());
    const std::string bytes = readBytes(path);
    for (std::size_t size = 12; size < 600; ++size) {
        const std::string refused = refusal(bytesOf(bytes).first(size), "cut", 1);
        ASSERT_TRUE(refused.empty() || refused == "cut is not a TrueType or OpenType font, or is truncated") << size;
    }
    EXPECT_EQ(refusal(bytesOf(bytes), "wqy", 2), "wqy is not a TrueType or OpenType font, or is truncated");
    EXPECT_EQ(refusal(bytesOf(readBytes("/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf")), "dv", 1),
              "dv is not a TrueType or OpenType font, or is truncated");
}

TEST(Fonts, CraftedFacesBreakingOneTableRuleAreRefused) {
    for (const auto& entry : fs::directory_iterator(dataPath("fonts/refused"))) {
        const std::string name = entry.path().filename();
        EXPECT_EQ(refusal(bytesOf(readBytes(entry.path())), name), name + " is not a TrueType or OpenType font, or is truncated");
    }
}

// Each crash file is what the target ran: a face followed by 32 bytes of text,
// or an image. A face is refused, or loads and draws nothing of the broken
// glyph; an image fails with a printable reason.
TEST(Fonts, CrashFilesOfTheFuzzTargetsAreRefusedOrHarmless) {
    for (const auto& entry : fs::directory_iterator(dataPath("crashers/fuzz_font"))) {
        const std::string bytes = readBytes(entry.path()), name = entry.path().filename();
        const std::string face = bytes.substr(0, bytes.size() - 32), text = bytes.substr(bytes.size() - 32);
        const std::string refused = refusal(bytesOf(face), name);
        if (!refused.empty()) {
            EXPECT_EQ(refused, name + " is not a TrueType or OpenType font, or is truncated");
            continue;
        }
        const auto font = Font::fromData(bytesOf(face), name);
        const Canvas blank(160, 120, RGBA{20, 40, 60, 255});
        for (const double em : {3.0, 24.0, 96.0}) {
            Canvas canvas = blank;
            const LineLayout glyph = layOutLine(*font, name.starts_with("inverted") ? "A" : "O");
            glyph.draw(canvas, {255, 255, 255, 200}, 2, 100, em / font->unitsPerEm);
            EXPECT_TRUE(canvas == blank) << name << " at " << em;
            layOutLine(*font, text).draw(canvas, {255, 255, 255, 255}, 2, 100, em / font->unitsPerEm);
        }
    }
    for (const auto& entry : fs::directory_iterator(dataPath("crashers/fuzz_image"))) {
        try {
            Canvas image(entry.path());
            ADD_FAILURE() << entry.path() << " decoded";
        } catch (const PlakardError& error) {
            for (const char c : error.description) EXPECT_TRUE(c >= 0x20 && c < 0x7F) << error.description;
        }
    }
}

}  // namespace
}  // namespace plakard::test
