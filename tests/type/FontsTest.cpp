// Faces as the loader meets them: real ones from Debian's font packages, every
// prefix of them, crafted ones that break one table rule each, and the files
// that once crashed the fuzz targets; and glyphs cut by the canvas's edges.
#include <gtest/gtest.h>

#include "platform/PlakardError.hpp"
#include "raster/Canvas.hpp"
#include "support/Support.hpp"
#include "type/Font.hpp"
#include "type/LineLayout.hpp"
#include "type/ShapedLine.hpp"

namespace plakard::test {
namespace {
using namespace std::literals;

std::span<const std::uint8_t> bytesOf(const std::string& text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

// The loader's refusal, or "" when the face loaded.
std::string refusal(std::span<const std::uint8_t> bytes, const std::string& name, int faceIndex = 0,
                    OutlineCheck check = OutlineCheck::whole) {
    try {
        Font::fromData(bytes, name, faceIndex, check);
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

// Our own faces with bytes written over them at an offset into one table
// ("" for the file itself), each just past one rule the loader enforces;
// with no face, the bytes are the whole file.
const char *const trueType = "e2e/no-space.ttf", *const compact = "../../fuzz/corpus/fuzz_font/cff-gpos.otf";
const struct {
    const char *name, *face, *table;
    std::size_t at;
    std::string_view bytes;
} brokenFaces[] = {
    {"ttcf-header-of-15-bytes", nullptr, "", 0, "ttcf\0\1\0\0\0\0\0\1\0\0\0"sv},
    {"directory-past-file", trueType, "", 4, "\0\x36"sv},
    {"kern-table-past-file", trueType, "", 12 + 16 * 6 + 12, "\0\0\0\xB5"sv},
    {"head-of-52-bytes", trueType, "", 12 + 16 * 3 + 12, "\0\0\0\x34"sv},
    {"units-per-em-0", trueType, "head", 18, "\0\0"sv},
    {"hhea-of-34-bytes", trueType, "", 12 + 16 * 4 + 12, "\0\0\0\x22"sv},
    {"long-metrics-0", trueType, "hhea", 34, "\0\0"sv},
    {"long-metrics-past-hmtx", trueType, "hhea", 34, "\0\7"sv},
    {"glyphs-past-loca", trueType, "maxp", 4, "\0\7"sv},
    {"loca-past-glyf", trueType, "loca", 12, "\0\x4E"sv},
    {"glyph-of-4-bytes", trueType, "loca", 2, "\0\2"sv},
    {"cmap-encodings-past-table", trueType, "cmap", 2, "\0\x09"sv},
    {"cmap-format-5", trueType, "cmap", 20, "\0\5"sv},
    {"cmap-search-past-segments", trueType, "cmap", 29, "\x0A"sv},
    {"cmap-segments-past-table", trueType, "cmap", 27, "\x0A"sv},
    {"cmap-glyph-array-past-table", trueType, "cmap", 60, "\0\x40"sv},
    {"kern-pairs-past-table", trueType, "kern", 11, "\4"sv},
    {"cmap-groups-past-table", compact, "cmap", 104, "\0\0\1\0"sv},
    {"cmap-glyph-past-int", compact, "cmap", 176, "\x80\0\0\0"sv},
    {"cff-glyph-without-charstring", compact, "cmap", 176, "\0\0\0\6"sv},
    {"cff-glyphs-past-charstrings", compact, "maxp", 4, "\0\7"sv},
    {"gpos-coverage-past-table", compact, "GPOS", 70, "\0\x08"sv},
    {"gpos-pairs-past-table", compact, "GPOS", 74, "\0\3"sv},
    {"cff-index-offset-size-0", compact, "CFF ", 6, "\0"sv},
    {"cff-index-offset-size-5", compact, "CFF ", 6, "\5"sv},
    {"cff-dict-operand-255", compact, "CFF ", 31, "\xFF"sv},
    {"cff-no-charstrings", compact, "CFF ", 78, "\0\0"sv},
    {"cff-charstrings-past-table", compact, "CFF ", 87, "\x79"sv},
    {"cff-hint-mask-past-charstring", compact, "CFF ", 205, "\1\x13"sv},
    {"cff-hint-mask-past-A", compact, "CFF ", 126, "\1\x13"sv},
};

std::string brokenFace(const auto& broken) {
    std::string face = broken.face ? readBytes(dataPath(broken.face)) : std::string(broken.bytes);
    std::size_t at = broken.at;
    const std::size_t tables = std::uint8_t(face[5]);
    for (std::size_t record = 12; *broken.table && record < 12 + 16 * tables; record += 16)
        if (face.compare(record, 4, broken.table) == 0)
            at += std::size_t(std::uint8_t(face[record + 10])) << 8 | std::uint8_t(face[record + 11]);
    return face.replace(at, broken.bytes.size(), broken.bytes);
}

TEST(Fonts, CraftedFacesBreakingOneTableRuleAreRefused) {
    for (const char* face : {trueType, compact}) EXPECT_EQ(refusal(bytesOf(readBytes(dataPath(face))), face), "");
    for (const auto& broken : brokenFaces)
        EXPECT_EQ(refusal(bytesOf(brokenFace(broken)), broken.name),
                  broken.name + " is not a TrueType or OpenType font, or is truncated"s);
    for (const auto& entry : fs::directory_iterator(dataPath("fonts/refused"))) {
        const std::string name = entry.path().filename();
        EXPECT_EQ(refusal(bytesOf(readBytes(entry.path())), name), name + " is not a TrueType or OpenType font, or is truncated");
    }
}

// A face found to fill in characters is refused for the same faults, but a
// damaged outline counts only once a line uses its glyph: A's does, that of
// glyph 5, which no character maps to, never.
TEST(Fonts, FacesCheckedAsUsedRefuseADamagedOutlineWhenALineUsesIt) {
    for (const auto& broken : brokenFaces) {
        const std::string face = brokenFace(broken), name = broken.name;
        const std::string refused = name + " is not a TrueType or OpenType font, or is truncated";
        if (!name.starts_with("cff-hint-mask")) {
            EXPECT_EQ(refusal(bytesOf(face), name, 0, OutlineCheck::asUsed), refused);
            continue;
        }
        const auto font = Font::fromData(bytesOf(face), name, 0, OutlineCheck::asUsed);
        EXPECT_GT(layOutLine(*font, "VO").advanceUnits(), 0) << name;
        for (const char* text : {"VOA", "VOA\u0301"}) {  // mapped, then shaped
            try {
                layOutLine(*font, text);
                EXPECT_EQ(name, "cff-hint-mask-past-charstring");
            } catch (const PlakardError& error) {
                EXPECT_EQ(error.description + name, refused + "cff-hint-mask-past-A");
            }
        }
    }
}

// Each crash file is what the target ran: a face followed by 32 bytes of text,
// or an image. A face is refused, unless only its glyph's box is broken: then
// it loads and draws nothing of that glyph. An image fails with a printable
// reason.
TEST(Fonts, CrashFilesOfTheFuzzTargetsAreRefusedOrHarmless) {
    for (const auto& entry : fs::directory_iterator(dataPath("crashers/fuzz_font"))) {
        const std::string bytes = readBytes(entry.path()), name = entry.path().filename();
        const std::string face = bytes.substr(0, bytes.size() - 32), text = bytes.substr(bytes.size() - 32);
        const std::string refused = refusal(bytesOf(face), name);
        if (!name.starts_with("inverted") && !name.starts_with("glyph-ink")) {
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

// A line crossing any edge of the canvas draws there exactly what a larger
// canvas holds: every glyph row and column inside, nothing outside.
TEST(Fonts, GlyphsCutByEveryEdgeDrawWhatALargerCanvasShows) {
    const auto font = Font::load("/usr/share/fonts/opentype/inter/Inter-Black.otf");
    const LineLayout line = layOutLine(*font, "HI");
    Canvas whole(150, 150, RGBA{20, 40, 60, 255});
    line.draw(whole, {255, 255, 255, 255}, 20.3, 110, 100 / font->unitsPerEm);
    for (const std::int64_t left : {0, 40, 80})
        for (const std::int64_t top : {0, 50, 100}) {
            Canvas part(70, 50, RGBA{20, 40, 60, 255});
            line.draw(part, {255, 255, 255, 255}, 20.3 - left, 110 - top, 100 / font->unitsPerEm);
            EXPECT_TRUE(part == whole.cropped(left, top, 70, 50)) << left << ", " << top;
        }
}

}  // namespace
}  // namespace plakard::test
