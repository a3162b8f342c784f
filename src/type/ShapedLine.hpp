#pragma once
// Lines that drawing code point by code point would get wrong: right-to-left
// text and scripts whose letters join or rearrange. Such a line is split by
// ICU's bidi algorithm and by script, shaped by HarfBuzz on the font's own
// bytes and laid out in visual order, left to right on the page.

#include <optional>
#include <string_view>
#include <vector>

namespace plakard {

class Font;

// One glyph of a shaped line, in font units: x from the pen's start, y up
// from the baseline.
struct PlacedGlyph {
    int glyph;
    double x;
    double y;
};

struct ShapedLine {
    std::vector<PlacedGlyph> glyphs;  // left to right on the page
    double advance = 0;               // font units, what fitting measures
    // The first character, in text order, the face has no glyph for.
    std::optional<char32_t> missing;
};

// Whether the line holds right-to-left text or a script that joins or
// reorders, decided from ICU's character properties.
bool needsShaping(std::string_view text);

// `language` is a BCP 47 tag, or empty for the shaper's default.
ShapedLine shapeLine(const Font& font, std::string_view text, std::string_view language);

}  // namespace plakard
