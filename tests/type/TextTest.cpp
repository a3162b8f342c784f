#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "platform/PlakardError.hpp"
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

// Source-over with straight alpha, written out from its definition.
RGBA blended(RGBA below, RGBA colour, double coverage) {
    const double a = colour.a / 255.0 * coverage;
    if (!(a > 0)) return below;
    const double d = below.a / 255.0;
    const double k = 1 - a;
    const double out = a + k * d;
    if (!(out > 0)) return below;
    auto channel = [&](double source, double destination) {
        return static_cast<std::uint8_t>(std::clamp(std::round((a * source + k * d * destination) / out), 0.0, 255.0));
    };
    return {channel(colour.r, below.r), channel(colour.g, below.g), channel(colour.b, below.b),
            static_cast<std::uint8_t>(std::min(std::round(out * 255), 255.0))};
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
        {faces().inter.get(), "GOOD 😀 DAY",
         "Inter-Black.otf has no glyph for '😀' (U+1F600); pass --font with a face that covers this headline"},
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

// A glyph drawn alone must be stb's bitmap blended pixel by pixel at its place.
void expectGlyphBlended(const Font& font, RGBA background, RGBA colour) {
    const double scale = 90.0 / font.unitsPerEm;
    const double x = 7.3;
    const double baseline = 80.0;
    Canvas canvas(120, 110, background);
    font.drawLine("A", canvas, colour, x, baseline, scale);

    const Glyph glyph = rasterised(font, 'A', scale);
    ASSERT_NE(std::count(glyph.coverage.begin(), glyph.coverage.end(), 255), 0);
    ASSERT_NE(std::count_if(glyph.coverage.begin(), glyph.coverage.end(), [](int v) { return v > 0 && v < 255; }),
              0);
    const int left = 7 + glyph.xOffset;
    const int top = 80 + glyph.yOffset;
    for (int y = 0; y < canvas.height; ++y) {
        for (int px = 0; px < canvas.width; ++px) {
            const int i = y - top;
            const int j = px - left;
            const bool inside = i >= 0 && i < glyph.height && j >= 0 && j < glyph.width;
            const double v = inside ? glyph.coverage[static_cast<std::size_t>(i * glyph.width + j)] / 255.0 : 0.0;
            ASSERT_EQ(canvas.colour(px, y), blended(background, colour, v)) << px << "," << y;
            if (v == 1.0 && colour.a == 255 && background.a == 255) {
                ASSERT_EQ(canvas.colour(px, y), colour);
            }
        }
    }
}

TEST(DrawLine, BlendsTheGlyphBitmapOntoAnOpaqueCanvas) {
    expectGlyphBlended(*faces().inter, {20, 40, 60, 255}, {250, 200, 10, 255});
    expectGlyphBlended(*faces().dejaVu, {20, 40, 60, 255}, {250, 200, 10, 140});
}

TEST(DrawLine, WritesTheColourAtCoverageOpacityOntoATransparentCanvas) {
    expectGlyphBlended(*faces().inter, {0, 0, 0, 0}, {250, 200, 10, 255});
    expectGlyphBlended(*faces().dejaVu, {90, 90, 90, 0}, {250, 200, 10, 99});
}

TEST(DrawLine, FullyCoveredPixelsOfAnOpaqueColourTakeItOverATranslucentCanvas) {
    const Font& font = *faces().inter;
    const double scale = 60.0 / font.unitsPerEm;
    const RGBA colour{250, 200, 10, 255};
    Canvas canvas(80, 80, RGBA{90, 60, 30, 77});
    font.drawLine("W", canvas, colour, 4.0, 60.0, scale);
    const Glyph glyph = rasterised(font, 'W', scale);
    int full = 0;
    for (int i = 0; i < glyph.height; ++i) {
        for (int j = 0; j < glyph.width; ++j) {
            if (glyph.coverage[static_cast<std::size_t>(i * glyph.width + j)] != 255) continue;
            ++full;
            ASSERT_EQ(canvas.colour(4 + glyph.xOffset + j, 60 + glyph.yOffset + i), colour);
        }
    }
    EXPECT_GT(full, 100);
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
    EXPECT_EQ(drawn(font, "A", 2.5, 20.0), drawn(font, "A", 3.0, 20.0));
    EXPECT_EQ(drawn(font, "A", 2.4999, 20.0), drawn(font, "A", 2.0, 20.0));
    EXPECT_EQ(drawn(font, "A", -2.5, 20.0), drawn(font, "A", -3.0, 20.0));
    EXPECT_NE(drawn(font, "A", -2.5, 20.0), drawn(font, "A", -2.0, 20.0));
    EXPECT_EQ(drawn(font, "A", 10.0, 20.5), drawn(font, "A", 10.0, 21.0));
    EXPECT_EQ(drawn(font, "A", 10.0, 19.5), drawn(font, "A", 10.0, 20.0));
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
