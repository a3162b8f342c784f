// Lines the shaper sets: letters joined and read right to left, numbers and
// Latin words kept left to right inside them, conjuncts, and the same refusal
// of a missing character as a line set code point by code point.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/PlakardError.hpp"
#include "platform/Unicode.hpp"
#include "type/FontFace.hpp"
#include "type/LineLayout.hpp"
#include "type/ShapedLine.hpp"
#include "cli/Headline.hpp"

namespace plakard {
namespace {

// Faces from Debian packages: DejaVu covers Arabic and Hebrew, Lohit
// Devanagari has its conjunct ligatures, WenQuanYi is a CJK collection.
const std::filesystem::path dejaVuSansBold = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf";
const std::filesystem::path lohitDevanagari = "/usr/share/fonts/truetype/lohit-devanagari/Lohit-Devanagari.ttf";
const std::filesystem::path wqyMicroHei = "/usr/share/fonts/truetype/wqy/wqy-microhei.ttc";
const std::filesystem::path interBlack = "/usr/share/fonts/opentype/inter/Inter-Black.otf";

struct Case {
    const std::filesystem::path* face;
    const char* text;
    bool shaped;
    // Left to right on the page, the characters the face maps the expected
    // glyphs to; when empty, only the number of glyphs is checked.
    const char* onPage;
    std::size_t glyphs;
    const char* refusal;  // what measuring throws, if anything
};

const Case cases[] = {
    // The first letter takes its initial form at the right-hand end, the last its final form.
    {&dejaVuSansBold, "تتبع", true, "\uFECA\uFE92\uFE98\uFE97", 0, ""},
    {&dejaVuSansBold, "עקוב", true, "בוקע", 0, ""},
    {&dejaVuSansBold, "עקוב 2026 iPhone", true, "iPhone 2026 בוקע", 0, ""},
    // One right-to-left run in two scripts: the Arabic word, read last, lands leftmost.
    {&dejaVuSansBold, "עב ا", true, "ا בע", 0, ""},
    {&lohitDevanagari, "क्ष", true, "", 1, ""},
    {&dejaVuSansBold, "تتبع क", true, "", 0,
     "DejaVuSans-Bold.ttf has no glyph for 'क' (U+915); pass --font with a face that covers this headline"},
    // What the code point path already sets well stays on it.
    {&dejaVuSansBold, "ÀÉ STRASSE ΚΆΘΕ КАЖДЫЙ – 2026 ỆỬ", false, "", 0, ""},
    {&wqyMicroHei, "毎日すべてのサブスク", false, "", 0, ""},
    {&interBlack, "A\u200DB \u200F\u202EC", false, "", 0, ""},  // invisible controls alone
};

TEST(ShapingTest, SetsEachLineAsItsReadersExpect) {
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        const std::shared_ptr<const Font> font = Font::load(*c.face);
        EXPECT_EQ(needsShaping(c.text), c.shaped);
        if (!c.shaped) continue;
        if (*c.refusal) {
            try {
                layOutLine(*font, c.text).advanceUnits();
                ADD_FAILURE() << "measured a line with a missing glyph";
            } catch (const PlakardError& error) {
                EXPECT_EQ(error.description, c.refusal);
            }
            continue;
        }
        const LineLayout line = shapeLine(*font, c.text, "");
        std::vector<int> glyphs;
        double previous = -1;
        for (const GlyphRun& run : line.runs()) {
            for (const PlacedGlyph& placed : run.placed) {
                glyphs.push_back(placed.glyph);
                EXPECT_GT(placed.x, previous);
                previous = placed.x;
            }
        }
        std::vector<int> expected;
        for (char32_t character : codePoints(c.onPage))
            expected.push_back(stbtt_FindGlyphIndex(&font->face().info, character));
        if (*c.onPage) EXPECT_EQ(glyphs, expected);
        else EXPECT_EQ(glyphs.size(), c.glyphs);
        EXPECT_NE(glyphs.front(), 0);
        EXPECT_GT(line.advanceUnits(), 0);
    }
}

// Capitals by the headline's language (--lang); without one, the
// language-neutral full mapping.
TEST(ShapingTest, UpperCasesByTheHeadlinesLanguage) {
    const struct {
        const char *headline, *language, *capitals;
    } casings[] = {
        {"istediğin gibi", "", "ISTEDIĞIN GIBI"},   {"istediğin gibi", "tr", "İSTEDİĞİN GİBİ"},
        {"istediğin gibi", "az", "İSTEDİĞİN GİBİ"}, {"κάθε συνδρομή", "", "ΚΆΘΕ ΣΥΝΔΡΟΜΉ"},
        {"κάθε συνδρομή", "el", "ΚΑΘΕ ΣΥΝΔΡΟΜΗ"},   {"i\u0307\u0300", "", "I\u0307\u0300"},
        {"i\u0307\u0300", "lt", "I\u0300"},         {"straße", "de", "STRASSE"},
    };
    for (const auto& c : casings)
        EXPECT_EQ(headlineLines(c.headline, c.language), std::vector<std::string>{c.capitals}) << c.language;
}

}  // namespace
}  // namespace plakard
