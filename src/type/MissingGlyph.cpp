#include "type/MissingGlyph.hpp"

#include <cstdio>

#include "platform/Unicode.hpp"

namespace plakard {

PlakardError missingGlyph(const std::string& fontName, char32_t character) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%X", static_cast<unsigned>(character));
    return PlakardError(fontName + " has no glyph for '" + utf8(character) + "' (U+" + digits +
                        "); pass --font with a face that covers this headline");
}

}  // namespace plakard
