#include "type/LineLayout.hpp"

#include <algorithm>
#include <limits>
#include <utility>

#include "platform/Require.hpp"
#include "platform/Unicode.hpp"
#include "type/FontFace.hpp"
#include "type/GlyphDrawing.hpp"
#include "type/MissingGlyph.hpp"
#include "type/ShapedLine.hpp"

namespace plakard {

namespace {

// The ordinary space needs no glyph and has no ink; every other blank does.
constexpr char32_t space = U' ';

int advanceWidth(const stbtt_fontinfo& info, int glyph) {
    // The bearing is not used; not asking for it spares stb a read that hmtx
    // need not cover for glyphs beyond its long metrics.
    int advance = 0;
    stbtt_GetGlyphHMetrics(&info, glyph, &advance, nullptr);
    return advance;
}

// Each code point's glyph from the character map, kerned against the one
// before it, spaces included.
LineLayout mapLine(const Font& font, std::string_view text) {
    const stbtt_fontinfo& info = font.face().info;
    GlyphRun run{.face = &font};
    std::optional<char32_t> missing;
    double total = 0.0;
    for (char32_t c : codePoints(text)) {
        const int glyph = stbtt_FindGlyphIndex(&info, static_cast<int>(c));
        if (c != space && glyph == 0 && !missing) missing = c;
        const int kern = run.mapped.empty() ? 0 : stbtt_GetGlyphKernAdvance(&info, run.mapped.back().glyph, glyph);
        const int advance = advanceWidth(info, glyph);
        run.mapped.push_back({glyph, kern, advance, c == space});
        total += kern;
        total += advance;
    }
    std::vector<GlyphRun> runs;
    if (!run.mapped.empty()) runs.push_back(std::move(run));
    return LineLayout(font, std::move(runs), total, missing);
}

}  // namespace

LineLayout::LineLayout(const Font& font, std::vector<GlyphRun> runs, double advanceUnits,
                       std::optional<char32_t> missing, std::string fallbackLanguage)
    : font_(&font),
      runs_(std::move(runs)),
      advance_(advanceUnits),
      missing_(missing),
      fallbackLanguage_(std::move(fallbackLanguage)) {
    // Measuring and drawing run these glyphs' outlines.
    for (const GlyphRun& run : runs_) {
        for (const PlacedGlyph& placed : run.placed) requireSoundGlyph(*run.face, placed.glyph);
        for (const MappedGlyph& mapped : run.mapped) requireSoundGlyph(*run.face, mapped.glyph);
    }
}

double LineLayout::advanceUnits() const {
    if (missing_ && !fallbackLanguage_.empty()) throw noFaceCovers(*missing_, fallbackLanguage_);
    if (missing_) throw missingGlyph(font_->name, *missing_);
    return advance_;
}

InkExtent LineLayout::inkExtent(double scale) const {
    double top = std::numeric_limits<double>::max();
    double bottom = -top;
    for (const GlyphRun& run : runs_) {
        const stbtt_fontinfo& info = run.face->face().info;
        const auto glyphScale = static_cast<float>(scale * run.toLineUnits);
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
        // Marks the shaper raises or lowers take their ink with them.
        for (const PlacedGlyph& placed : run.placed) include(placed.glyph, -placed.y * scale);
        for (const MappedGlyph& mapped : run.mapped)
            if (!mapped.space) include(mapped.glyph, 0);
    }
    if (top < bottom) return {top, bottom};
    return {-(font_->ascentUnits * scale), -(font_->descentUnits * scale)};
}

void LineLayout::draw(Canvas& canvas, RGBA colour, double x, double baseline, double scale) const {
    if (runs_.empty()) return;
    const std::int64_t baselineRow = roundToInt64(baseline);
    for (const GlyphRun& run : runs_) {
        const stbtt_fontinfo& info = run.face->face().info;
        const double faceScale = scale * run.toLineUnits;
        const auto glyphScale = static_cast<float>(faceScale);
        for (const PlacedGlyph& placed : run.placed) {
            const std::int64_t row = placed.y == 0 ? baselineRow : roundToInt64(baseline - placed.y * scale);
            drawGlyph(info, placed.glyph, canvas, colour, x + placed.x * scale, row, glyphScale);
        }
        // The pen moves in pixels, kerning first, as it always has.
        double pen = x + run.start * scale;
        for (const MappedGlyph& mapped : run.mapped) {
            pen += faceScale * mapped.kern;
            drawGlyph(info, mapped.glyph, canvas, colour, pen, baselineRow, glyphScale);
            pen += faceScale * mapped.advance;
        }
    }
}

LineLayout layOutLine(const Font& font, std::string_view text, std::string_view language, FallbackFaces* fallback) {
    if (needsShaping(text) || (fallback && needsOtherFaces(font, text)))
        return shapeLine(font, text, language, fallback);
    return mapLine(font, text);
}

}  // namespace plakard
