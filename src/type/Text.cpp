#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>

#include "platform/PlakardError.hpp"
#include "platform/Require.hpp"
#include "platform/Unicode.hpp"
#include "raster/Blend.hpp"
#include "type/Font.hpp"
#include "type/MissingGlyph.hpp"
#include "type/ShapedLine.hpp"

namespace plakard {

namespace {

// The ordinary space needs no glyph and has no ink; every other blank does.
constexpr char32_t space = U' ';

struct FreeGlyphBitmap {
    void operator()(unsigned char* bitmap) const { stbtt_FreeBitmap(bitmap, nullptr); }
};
using GlyphBitmap = std::unique_ptr<unsigned char, FreeGlyphBitmap>;

int advanceWidth(const stbtt_fontinfo& info, int codePoint) {
    // The bearing is not used; not asking for it spares stb a read that hmtx
    // need not cover for glyphs beyond its long metrics.
    int advance = 0;
    stbtt_GetCodepointHMetrics(&info, codePoint, &advance, nullptr);
    return advance;
}

std::int64_t sum(std::int64_t a, std::int64_t b) {
    std::int64_t result = 0;
    require(!__builtin_add_overflow(a, b, &result));
    return result;
}

struct Span {
    std::int64_t first;
    std::int64_t end;
};

// The indices i in 0..<length for which start + i lies in 0..<limit, computed
// without overflow however far outside the canvas the glyph lands.
Span visible(std::int64_t start, std::int64_t length, std::int64_t limit) {
    if (start >= limit) return {0, 0};
    if (start >= 0) return {0, std::min(length, limit - start)};
    if (start <= -length) return {0, 0};
    return {-start, start + length <= limit ? length : limit - start};
}

// Blends one glyph's coverage bitmap with its top-left pixel at (left, top),
// skipping whatever falls outside the canvas.
void blendGlyph(Canvas& canvas, const unsigned char* coverage, int width, int height, std::int64_t left,
                std::int64_t top, RGBA colour) {
    const Span rows = visible(top, height, canvas.height);
    const Span columns = visible(left, width, canvas.width);
    // A fully covered pixel of an opaque colour blends to exactly the colour,
    // whatever lies below; headline glyphs are mostly such pixels.
    const bool opaque = colour.a == 255;
    const std::uint8_t solid[4] = {colour.r, colour.g, colour.b, colour.a};
    for (std::int64_t i = rows.first; i < rows.end; ++i) {
        const unsigned char* row = coverage + i * width;
        std::uint8_t* target = canvas.pixel(left + columns.first, top + i);
        for (std::int64_t j = columns.first; j < columns.end; ++j, target += 4) {
            if (row[j] == 0) continue;
            if (opaque && row[j] == 255) std::memcpy(target, solid, 4);
            else blendInto(target, colour, row[j] / 255.0);
        }
    }
}

struct FreeGlyphShape {
    const stbtt_fontinfo* info;
    void operator()(stbtt_vertex* vertices) const { stbtt_FreeShape(info, vertices); }
};

// Whether any point of the glyph's outline lies above the baseline.
bool inkAboveBaseline(const stbtt_fontinfo& info, int glyph) {
    stbtt_vertex* vertices = nullptr;
    const int count = stbtt_GetGlyphShape(&info, glyph, &vertices);
    const std::unique_ptr<stbtt_vertex, FreeGlyphShape> shape(vertices, FreeGlyphShape{&info});
    for (int i = 0; i < count; ++i) {
        if (vertices[i].y > 0 || vertices[i].cy > 0 || vertices[i].cy1 > 0) return true;
    }
    return false;
}

// stb sizes a glyph's bitmap from its box with int arithmetic and no checks:
// the box of a corrupt glyph can be inverted (a negative size to allocate) or
// too large to count in an int (twice the width included). stb could make no
// bitmap for such a glyph, and there is nothing to draw for one that lands
// wholly outside the canvas, so those are never rasterised; nor is one stb
// would trip over, below.
bool worthRasterising(const stbtt_fontinfo& info, int glyph, float scale, double pen, std::int64_t baselineRow,
                      const Canvas& canvas) {
    int x0 = 0;
    int y0 = 0;
    int x1 = 0;
    int y1 = 0;
    stbtt_GetGlyphBitmapBox(&info, glyph, scale, scale, &x0, &y0, &x1, &y1);
    const std::int64_t width = std::int64_t{x1} - x0;
    const std::int64_t height = std::int64_t{y1} - y0;
    constexpr std::int64_t intMax = std::numeric_limits<int>::max();
    if (width < 1 || height < 1 || width > (intMax - 1) / 2 || width > intMax / height) return false;
    // The box comes from the glyph's header, and a corrupt one can leave ink
    // above it. stb clips edges above the bitmap's first row, except when that
    // row is the baseline's (it asserts there instead).
    if (y0 == 0 && inkAboveBaseline(info, glyph)) return false;
    const Span rows = visible(sum(baselineRow, y0), height, canvas.height);
    const Span columns = visible(sum(roundToInt64(pen), x0), width, canvas.width);
    return rows.first < rows.end && columns.first < columns.end;
}

// One glyph with its pen at `pen` and its baseline on row `baselineRow`,
// rasterised, blended and freed before the next: no cache outlives its glyph.
void drawGlyph(const stbtt_fontinfo& info, int glyph, Canvas& canvas, RGBA colour, double pen, std::int64_t baselineRow,
               float scale) {
    if (!worthRasterising(info, glyph, scale, pen, baselineRow, canvas)) return;
    int width = 0;
    int height = 0;
    int xOffset = 0;
    int yOffset = 0;
    GlyphBitmap bitmap(stbtt_GetGlyphBitmap(&info, 0, scale, glyph, &width, &height, &xOffset, &yOffset));
    if (bitmap) {
        blendGlyph(canvas, bitmap.get(), width, height, sum(roundToInt64(pen), xOffset), sum(baselineRow, yOffset),
                   colour);
    }
}

}  // namespace

double Font::advanceUnits(std::string_view text, std::string_view language) const {
    if (needsShaping(text)) {
        const ShapedLine line = shapeLine(*this, text, language);
        if (line.missing) throw missingGlyph(name, *line.missing);
        return line.advance;
    }
    double total = 0.0;
    bool first = true;
    int previous = 0;
    for (char32_t c : codePoints(text)) {
        const int codePoint = static_cast<int>(c);
        if (c != space && stbtt_FindGlyphIndex(&info, codePoint) == 0) {
            throw missingGlyph(name, c);
        }
        const int advance = advanceWidth(info, codePoint);
        if (!first) total += stbtt_GetCodepointKernAdvance(&info, previous, codePoint);
        total += advance;
        previous = codePoint;
        first = false;
    }
    return total;
}

InkExtent Font::inkExtent(std::string_view text, double scale, std::string_view language) const {
    double top = std::numeric_limits<double>::max();
    double bottom = -top;
    const float glyphScale = static_cast<float>(scale);
    // Widens the extent by the glyph's box, moved down by `shift` pixels.
    const auto include = [&](int glyph, double shift) {
        int x0 = 0;
        int y0 = 0;
        int x1 = 0;
        int y1 = 0;
        stbtt_GetGlyphBitmapBox(&info, glyph, glyphScale, glyphScale, &x0, &y0, &x1, &y1);
        if (y0 < y1) {
            top = std::min(top, y0 + shift);
            bottom = std::max(bottom, y1 + shift);
        }
    };
    if (needsShaping(text)) {
        // Marks the shaper raises or lowers take their ink with them.
        for (const PlacedGlyph& placed : shapeLine(*this, text, language).glyphs)
            include(placed.glyph, -placed.y * scale);
    } else {
        for (char32_t c : codePoints(text))
            if (c != space) include(stbtt_FindGlyphIndex(&info, static_cast<int>(c)), 0);
    }
    if (top < bottom) return {top, bottom};
    return {-(ascentUnits * scale), -(descentUnits * scale)};
}

void Font::drawLine(std::string_view text, Canvas& canvas, RGBA colour, double x, double baseline, double scale,
                    std::string_view language) const {
    if (text.empty()) return;
    const std::int64_t baselineRow = roundToInt64(baseline);
    const float glyphScale = static_cast<float>(scale);
    if (needsShaping(text)) {
        for (const PlacedGlyph& placed : shapeLine(*this, text, language).glyphs) {
            const std::int64_t row = placed.y == 0 ? baselineRow : roundToInt64(baseline - placed.y * scale);
            drawGlyph(info, placed.glyph, canvas, colour, x + placed.x * scale, row, glyphScale);
        }
        return;
    }
    double pen = x;
    bool first = true;
    int previous = 0;
    for (char32_t c : codePoints(text)) {
        const int codePoint = static_cast<int>(c);
        if (!first) pen += scale * stbtt_GetCodepointKernAdvance(&info, previous, codePoint);
        drawGlyph(info, stbtt_FindGlyphIndex(&info, codePoint), canvas, colour, pen, baselineRow, glyphScale);
        pen += scale * advanceWidth(info, codePoint);
        previous = codePoint;
        first = false;
    }
}

}  // namespace plakard
