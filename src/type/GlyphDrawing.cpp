#include "type/GlyphDrawing.hpp"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>

#include "platform/Require.hpp"
#include "raster/Blend.hpp"

namespace plakard {

namespace {

struct FreeGlyphBitmap {
    void operator()(unsigned char* bitmap) const { stbtt_FreeBitmap(bitmap, nullptr); }
};
using GlyphBitmap = std::unique_ptr<unsigned char, FreeGlyphBitmap>;

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

}  // namespace

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

}  // namespace plakard
