#pragma once
// A headline line laid out once, then measured, inked and drawn as many times
// as its page needs. Its glyphs come in runs, each of one face and set one way:
// shaped (right-to-left text, scripts that join or reorder; see
// type/ShapedLine.hpp) or code point by code point from the face's character
// map with its kerning. Every run is drawn at the line's size, on its baseline.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "raster/Canvas.hpp"
#include "raster/RGBA.hpp"
#include "type/Font.hpp"

namespace plakard {

class FallbackFaces;

// Vertical extent of a line's ink in pixels relative to the baseline, y down
// (top is usually negative).
struct InkExtent {
    double top;
    double bottom;
};

// A glyph the shaper placed, in the line's units: x from the line's start to
// the glyph's origin, y up from the baseline.
struct PlacedGlyph {
    int glyph;
    double x;
    double y;
};

// A glyph set from the character map, in its face's units: the kerning with
// the glyph before it, then its own advance. Drawing moves the pen by these in
// pixels, step by step, so such lines land on exactly the pixels they always have.
struct MappedGlyph {
    int glyph;
    int kern;
    int advance;
    bool space;  // U+0020: drawn, but its ink is never counted
};

// Glyphs of one face, either placed by the shaper or mapped, never both.
struct GlyphRun {
    const Font* face;
    // The line's units per unit of this face: 1 for the face the line is
    // measured in; a face with another em is scaled to the line's size.
    double toLineUnits = 1;
    std::vector<PlacedGlyph> placed{};
    std::vector<MappedGlyph> mapped{};
    double start = 0;  // where a mapped run's pen starts, in the line's units
};

class LineLayout {
public:
    // `font` is the face the line is measured in (its units are the line's
    // units); it and every run's face must outlive the layout. `missing` is
    // the first character, in text order, no run's face has a glyph for.
    // `fallbackLanguage` is the --lang tag when other installed faces were
    // searched too.
    LineLayout(const Font& font, std::vector<GlyphRun> runs, double advanceUnits, std::optional<char32_t> missing,
               std::string fallbackLanguage = {});

    // The line's advance width in the line's units, kerning included: what
    // fitting measures. Throws "<name> has no glyph for 'c' (U+XXXX); pass
    // --font with a face that covers this headline" for a missing character,
    // or, when other faces were searched, noFaceCovers' message.
    double advanceUnits() const;

    // The ink's vertical extent at `scale` pixels per unit of the line; the
    // face's line box when the line has no ink. Coverage is not tested.
    InkExtent inkExtent(double scale) const;

    // Draws the line with its pen starting at x and its baseline at
    // `baseline`, clipped to the canvas. Coverage is not tested.
    void draw(Canvas& canvas, RGBA colour, double x, double baseline, double scale) const;

    std::span<const GlyphRun> runs() const { return runs_; }

private:
    const Font* font_;
    std::vector<GlyphRun> runs_;
    double advance_;
    std::optional<char32_t> missing_;
    std::string fallbackLanguage_;
};

// Lays `text` out in `font`: shaped when needsShaping says so, told `language`
// (a BCP 47 tag, or empty), otherwise code point by code point. With
// `fallback`, a line that needsOtherFaces is shaped too, in the faces it finds.
LineLayout layOutLine(const Font& font, std::string_view text, std::string_view language = {},
                      FallbackFaces* fallback = nullptr);

}  // namespace plakard
