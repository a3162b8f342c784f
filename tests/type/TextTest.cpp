#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "platform/PlakardError.hpp"
#include "raster/Blend.hpp"
#include "raster/Canvas.hpp"
#include "type/Font.hpp"
#include "type/TestFonts.hpp"

namespace plakard {
namespace {

struct Faces {
    std::shared_ptr<const Font> dejaVu = Font::load(test::dejaVuSansBold);
    std::shared_ptr<const Font> inter = Font::load(test::interBlack);
    std::shared_ptr<const Font> liberation = Font::load(test::liberationSansBold);
    std::shared_ptr<const Font> openSymbol = Font::load(test::openSymbol);
};

const Faces& faces() {
    static const Faces loaded;
    return loaded;
}

// stb's own numbers, asked directly, as the reference for measuring and drawing.
int advance(const Font& font, int c) {
    int width = 0;
    int bearing = 0;
    stbtt_GetCodepointHMetrics(&font.info, c, &width, &bearing);
    return width;
}

int kern(const Font& font, int a, int b) { return stbtt_GetCodepointKernAdvance(&font.info, a, b); }

struct Glyph {
    std::vector<unsigned char> coverage;
    int width = 0;
    int height = 0;
    int xOffset = 0;
    int yOffset = 0;
};

Glyph rasterised(const Font& font, int c, double scale) {
    Glyph glyph;
    unsigned char* bitmap = stbtt_GetCodepointBitmap(&font.info, 0, static_cast<float>(scale), c, &glyph.width,
                                                     &glyph.height, &glyph.xOffset, &glyph.yOffset);
    if (bitmap) glyph.coverage.assign(bitmap, bitmap + glyph.width * glyph.height);
    stbtt_FreeBitmap(bitmap, nullptr);
    return glyph;
}

// The one-pixel blend, checked by hand in the raster tests, as the reference
// for the glyph drawing's faster path.
RGBA blended(RGBA below, RGBA colour, double coverage) {
    Canvas pixel(1, 1, below);
    blendPixel(pixel, 0, 0, colour, coverage);
    return pixel.colour(0, 0);
}

std::string glyphFailure(const Font& font, const std::string& text) {
    try {
        font.advanceUnits(text);
    } catch (const PlakardError& error) {
        return error.description;
    }
    return "(measured)";
}

TEST(AdvanceUnits, KernsEveryNeighbouringPairIncludingThoseWithASpace) {
    const Font& font = *faces().liberation;
    // This face kerns A with the space and A with V, so each pairing shows.
    ASSERT_NE(kern(font, 'A', ' '), 0);
    ASSERT_NE(kern(font, 'A', 'V'), 0);
    const double expected = advance(font, 'A') + kern(font, 'A', ' ') + advance(font, ' ') + kern(font, ' ', 'V') +
                            advance(font, 'V');
    EXPECT_EQ(font.advanceUnits("A V"), expected);
    EXPECT_EQ(font.advanceUnits("   "), 3.0 * advance(font, ' ') + 2.0 * kern(font, ' ', ' '));
    EXPECT_EQ(font.advanceUnits(""), 0.0);
}

TEST(AdvanceUnits, KernsFromGposInOpenTypeFaces) {
    const Font& font = *faces().inter;
    ASSERT_NE(kern(font, 'A', 'V'), 0);
    EXPECT_EQ(font.advanceUnits("AV"), advance(font, 'A') + kern(font, 'A', 'V') + advance(font, 'V'));
}

TEST(AdvanceUnits, NamesTheFirstCharacterTheFaceCannotShow) {
    const struct {
        const Font* font;
        std::string text;
        std::string message;
    } cases[] = {
        {faces().openSymbol.get(), "é",
         "opens___.ttf has no glyph for 'é' (U+E9); pass --font with a face that covers this headline"},
        {faces().openSymbol.get(), "  é😀",
         "opens___.ttf has no glyph for 'é' (U+E9); pass --font with a face that covers this headline"},
        {faces().openSymbol.get(), "\u00A0",
         "opens___.ttf has no glyph for '\u00A0' (U+A0); pass --font with a face that covers this headline"},
        {faces().inter.get(), "\U000E0041",
         "Inter-Black.otf has no glyph for '\U000E0041' (U+E0041); pass --font with a face that covers this "
         "headline"},
    };
    for (const auto& c : cases) EXPECT_EQ(glyphFailure(*c.font, c.text), c.message) << c.text;
}

TEST(InkExtent, SpansTheTallestAndDeepestGlyphBoxes) {
    const Font& font = *faces().dejaVu;
    const double scale = 0.037;
    auto box = [&](int c) {
        int x0 = 0, y0 = 0, x1 = 0, y1 = 0;
        stbtt_GetCodepointBitmapBox(&font.info, c, static_cast<float>(scale), static_cast<float>(scale), &x0, &y0,
                                    &x1, &y1);
        return std::pair{y0, y1};
    };
    const InkExtent extent = font.inkExtent("Ag", scale);
    EXPECT_EQ(extent.top, std::min(box('A').first, box('g').first));
    EXPECT_EQ(extent.bottom, std::max(box('A').second, box('g').second));
    EXPECT_LT(extent.top, 0);
    EXPECT_GT(extent.bottom, 0);
    const InkExtent spaced = font.inkExtent(" A g ", scale);
    EXPECT_EQ(spaced.top, extent.top);
    EXPECT_EQ(spaced.bottom, extent.bottom);
}

TEST(InkExtent, FallsBackToTheLineBoxWhenThereIsNoInk) {
    const Font& font = *faces().dejaVu;
    const double scale = 0.05;
    for (const std::string& text : {std::string(), std::string("   "), std::string("\u00A0 \u00A0")}) {
        const InkExtent extent = font.inkExtent(text, scale);
        EXPECT_EQ(extent.top, -(font.ascentUnits * scale)) << text;
        EXPECT_EQ(extent.bottom, -(font.descentUnits * scale)) << text;
    }
}

TEST(DrawLine, BlendsTheGlyphBitmapPixelByPixelAtItsPlace) {
    // Opaque, transparent and translucent canvases, opaque and translucent colours.
    const struct {
        const Font* font;
        RGBA background, colour;
    } cases[] = {
        {faces().inter.get(), {20, 40, 60, 255}, {250, 200, 10, 255}},
        {faces().dejaVu.get(), {20, 40, 60, 255}, {250, 200, 10, 140}},
        {faces().inter.get(), {0, 0, 0, 0}, {250, 200, 10, 255}},
        {faces().dejaVu.get(), {90, 90, 90, 0}, {250, 200, 10, 99}},
        {faces().inter.get(), {90, 60, 30, 77}, {250, 200, 10, 255}},
    };
    for (const auto& c : cases) {
        const Font& font = *c.font;
        const double scale = 90.0 / font.unitsPerEm;
        Canvas canvas(120, 110, c.background);
        font.drawLine("A", canvas, c.colour, 7.3, 80.0, scale);
        const Glyph glyph = rasterised(font, 'A', scale);
        ASSERT_NE(std::count(glyph.coverage.begin(), glyph.coverage.end(), 255), 0);
        const int left = 7 + glyph.xOffset;
        const int top = 80 + glyph.yOffset;
        for (int y = 0; y < canvas.height; ++y)
            for (int x = 0; x < canvas.width; ++x) {
                const int i = y - top, j = x - left;
                const bool inside = i >= 0 && i < glyph.height && j >= 0 && j < glyph.width;
                const double v = inside ? glyph.coverage[static_cast<std::size_t>(i * glyph.width + j)] / 255.0 : 0.0;
                ASSERT_EQ(canvas.colour(x, y), blended(c.background, c.colour, v)) << x << "," << y;
            }
    }
}

TEST(DrawLine, ClipsAtEveryEdgeExactlyAsTheUnclippedDrawingLooks) {
    const Font& font = *faces().dejaVu;
    const double scale = 0.02;  // about 41 px to the em
    const RGBA background{30, 30, 30, 255};
    const RGBA colour{240, 120, 0, 255};
    const struct {
        const char* edge;
        double x;
        double baseline;
    } cases[] = {
        {"left", -23.0, 30.0}, {"right", 35.0, 30.0},   {"top", 5.0, 12.0},       {"bottom", 5.0, 58.0},
        {"corner", -20.0, 8.0}, {"outside", -500.0, 30.0}, {"far away", 1e15, -1e15},
    };
    const int margin = 150;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.edge);
        Canvas small(50, 50, background);
        font.drawLine("AVg", small, colour, c.x, c.baseline, scale);
        Canvas large(50 + 2 * margin, 50 + 2 * margin, background);
        if (std::abs(c.x) < margin) font.drawLine("AVg", large, colour, c.x + margin, c.baseline + margin, scale);
        for (int y = 0; y < 50; ++y)
            for (int x = 0; x < 50; ++x) ASSERT_EQ(small.colour(x, y), large.colour(x + margin, y + margin)) << x << "," << y;
    }
}

Canvas drawn(const Font& font, const std::string& text, double x, double baseline) {
    Canvas canvas(40, 40, RGBA{0, 0, 0, 255});
    font.drawLine(text, canvas, {255, 255, 255, 255}, x, baseline, 0.01);
    return canvas;
}

TEST(DrawLine, RoundsHalfPixelPositionsAwayFromZero) {
    const Font& font = *faces().dejaVu;
    const struct {
        double x, baseline, sameAsX, sameAsBaseline;
    } cases[] = {{2.5, 20, 3, 20}, {2.4999, 20, 2, 20}, {-2.5, 20, -3, 20}, {10, 20.5, 10, 21}, {10, 19.5, 10, 20}};
    for (const auto& c : cases)
        EXPECT_EQ(drawn(font, "A", c.x, c.baseline), drawn(font, "A", c.sameAsX, c.sameAsBaseline)) << c.x << "," << c.baseline;
    EXPECT_NE(drawn(font, "A", -2.5, 20.0), drawn(font, "A", -2.0, 20.0));
}

TEST(DrawLine, MovesThePenByScaledAdvancesAndKerningRoundingEachGlyphAfresh) {
    const Font& font = *faces().liberation;
    const double scale = 0.05;
    const double x = 3.3;
    const RGBA colour{255, 255, 255, 255};
    Canvas line(200, 80, RGBA{0, 0, 0, 255});
    font.drawLine("A V", line, colour, x, 60.0, scale);

    Canvas pieces(200, 80, RGBA{0, 0, 0, 255});
    font.drawLine("A", pieces, colour, x, 60.0, scale);
    double pen = x;
    pen += scale * advance(font, 'A');
    pen += scale * kern(font, 'A', ' ');
    pen += scale * advance(font, ' ');
    pen += scale * kern(font, ' ', 'V');
    font.drawLine("V", pieces, colour, pen, 60.0, scale);
    EXPECT_EQ(line, pieces);

    Canvas unkerned(200, 80, RGBA{0, 0, 0, 255});
    font.drawLine("A", unkerned, colour, x, 60.0, scale);
    font.drawLine("V", unkerned, colour, x + scale * (advance(font, 'A') + advance(font, ' ')), 60.0, scale);
    EXPECT_NE(line, unkerned);
}

TEST(DrawLine, LeavesTheCanvasAloneForSpacesEmptyTextAndATransparentColour) {
    const Font& font = *faces().inter;
    const Canvas before(60, 60, RGBA{10, 20, 30, 255});
    for (const auto& [text, colour] : {std::pair{std::string("   "), RGBA{255, 255, 255, 255}},
                                       std::pair{std::string(), RGBA{255, 255, 255, 255}},
                                       std::pair{std::string("WIDE"), RGBA{255, 255, 255, 0}}}) {
        Canvas canvas = before;
        font.drawLine(text, canvas, colour, 2.0, 45.0, 40.0 / font.unitsPerEm);
        EXPECT_EQ(canvas, before) << text;
    }
}

}  // namespace
}  // namespace plakard
