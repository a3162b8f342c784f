// Font files that crashed the font fuzz target, each named after its defect,
// replayed the way the target runs them: the file is a face followed by 32
// bytes of text to set. The cmap-group and hint-mask files are the fuzzer's
// own inputs, grown from faces fuzz/make-fonts.py made; that script makes the
// others (the ink-above-box one after a fuzzer input grown from a subset of a
// Debian face, which is not ours to commit).

#include <gtest/gtest.h>

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/PlakardError.hpp"
#include "raster/Canvas.hpp"
#include "support/TestSupport.hpp"
#include "type/Font.hpp"
#include "type/TestFonts.hpp"

namespace plakard {
namespace {

constexpr std::size_t textBytes = 32;

struct Replay {
    std::shared_ptr<const Font> font;
    std::string text;
};

Replay loaded(const std::string& name) {
    const std::vector<std::uint8_t> bytes = test::fileBytes(test::dataPath("crashers/fuzz_font/" + name));
    const std::size_t fontSize = bytes.size() - textBytes;
    return {Font::fromData(std::span(bytes).first(fontSize), name),
            std::string(bytes.begin() + static_cast<std::ptrdiff_t>(fontSize), bytes.end())};
}

TEST(FontCrashers, FacesStbWouldReadPastOrAssertOnOrRecurseForeverAreRefused) {
    for (const std::string name :
         {"cff-index-past-table.otf", "cff-glyph-without-charstring.otf", "cff-hint-mask-past-charstring.otf",
          "cmap-group-of-negative-glyph-ids.ttf", "cmap-group-of-negative-glyph-ids.otf",
          "cmap-group-wrapping-past-glyph-ids.ttc",
          "glyph-points-past-glyph.ttf", "off-curve-last-point.ttf", "composite-cycle.ttf",
          "composite-point-matching.ttf"}) {
        try {
            loaded(name);
            ADD_FAILURE() << name << " loaded";
        } catch (const PlakardError& error) {
            EXPECT_EQ(error.description, name + " is not a TrueType or OpenType font, or is truncated");
        }
    }
}

TEST(FontCrashers, AGlyphWithAnInvertedBoxHasNoInkAndDrawsNothing) {
    const Replay replay = loaded("inverted-glyph-box.ttf");
    const Font& font = *replay.font;
    const RGBA background{20, 40, 60, 255};
    const Canvas blank(160, 120, background);
    for (const double em : {3.0, 24.0, 96.0, 5000.0}) {
        SCOPED_TRACE(em);
        const double scale = em / font.unitsPerEm;
        Canvas canvas = blank;
        font.drawLine("A", canvas, {255, 255, 255, 200}, 2.0, 100.0, scale);
        EXPECT_TRUE(canvas == blank);
        const InkExtent ink = font.inkExtent("A", scale);
        EXPECT_EQ(ink.top, -(font.ascentUnits * scale));
        EXPECT_EQ(ink.bottom, -(font.descentUnits * scale));
        // The rest of the face is intact (at 5000 px to the em, V lands beyond
        // the canvas).
        font.drawLine(replay.text, canvas, {255, 255, 255, 200}, 2.0, 100.0, scale);
        font.drawLine("V", canvas, {255, 255, 255, 200}, 2.0, 100.0, scale);
        EXPECT_EQ(canvas != blank, em < 5000.0);
    }
}

// The header puts O's box below the baseline while its ring stands above, so
// stb's bitmap would start on the baseline's row with edges wholly above it.
TEST(FontCrashers, AGlyphWithInkAboveABoxOnTheBaselineDrawsNothing) {
    const Replay replay = loaded("glyph-ink-above-its-box.ttf");
    const Font& font = *replay.font;
    const Canvas blank(160, 120, RGBA{20, 40, 60, 255});
    for (const double em : {3.0, 24.0, 96.0}) {
        SCOPED_TRACE(em);
        Canvas canvas = blank;
        font.drawLine("O", canvas, {255, 255, 255, 255}, 2.0, 100.0, em / font.unitsPerEm);
        EXPECT_TRUE(canvas == blank);
        font.drawLine(replay.text, canvas, {255, 255, 255, 255}, 2.0, 100.0, em / font.unitsPerEm);
        EXPECT_TRUE(canvas != blank);
    }
}

}  // namespace
}  // namespace plakard
