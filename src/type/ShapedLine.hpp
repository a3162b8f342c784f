#pragma once
// Lines that drawing code point by code point would get wrong: right-to-left
// text and scripts whose letters join or rearrange. Such a line is split by
// ICU's bidi algorithm and by script, shaped by HarfBuzz on the font's own
// bytes and laid out in visual order, left to right on the page.

#include <string_view>

#include "type/FallbackFaces.hpp"
#include "type/LineLayout.hpp"

namespace plakard {

// Whether the line holds right-to-left text or a script that joins or
// reorders, decided from ICU's character properties.
bool needsShaping(std::string_view text);

// Whether a line needs faces other than `font`, or marks placed on their
// bases: it holds a character the face lacks, a combining mark or a default
// ignorable (soft hyphen, joiners), which only the shaper draws as nothing.
bool needsOtherFaces(const Font& font, std::string_view text);

// One run per script run and face, left to right on the page, positions counted along
// the whole line. `language` is a BCP 47 tag, or empty for the shaper's
// default. With `fallback`, characters `font` lacks are set in the faces it
// finds (see unitFaces).
LineLayout shapeLine(const Font& font, std::string_view text, std::string_view language,
                     FallbackFaces* fallback = nullptr);

}  // namespace plakard
