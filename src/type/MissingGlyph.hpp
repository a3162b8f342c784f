#pragma once

#include <string>

#include "platform/PlakardError.hpp"

namespace plakard {

// "<font> has no glyph for 'c' (U+XXXX); pass --font with a face that covers
// this headline", the one refusal of a character the face lacks.
PlakardError missingGlyph(const std::string& fontName, char32_t character);

// "no installed face covers 'c' (U+XXXX) for --lang <tag>; install <package>"
// when a Debian package has a face for the character's script, else "...; pass
// --font with a face that covers this headline": the refusal when --lang had
// the installed faces searched.
PlakardError noFaceCovers(char32_t character, const std::string& language);

}  // namespace plakard
