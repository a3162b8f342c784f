#pragma once

#include <string>

#include "platform/PlakardError.hpp"

namespace plakard {

// "<font> has no glyph for 'c' (U+XXXX); pass --font with a face that covers
// this headline", the one refusal of a character the face lacks.
PlakardError missingGlyph(const std::string& fontName, char32_t character);

}  // namespace plakard
