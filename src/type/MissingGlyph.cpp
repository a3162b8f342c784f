#include "type/MissingGlyph.hpp"

#include <cstdio>

#include <unicode/uscript.h>

#include "platform/Unicode.hpp"

namespace plakard {

namespace {

std::string quoted(char32_t character) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%X", static_cast<unsigned>(character));
    // Appended step by step: GCC 12 warns (wrongly) on the chained operator+.
    std::string text = "'";
    text += utf8(character);
    text += "' (U+";
    text += digits;
    text += ')';
    return text;
}

// The Debian package with a heavy face for the character's script, or null.
const char* packageFor(char32_t character) {
    UErrorCode status = U_ZERO_ERROR;
    switch (uscript_getScript(static_cast<UChar32>(character), &status)) {
        case USCRIPT_HAN:
        case USCRIPT_HIRAGANA:
        case USCRIPT_KATAKANA:
        case USCRIPT_HANGUL:
        case USCRIPT_BOPOMOFO:
            return "fonts-noto-cjk";
        case USCRIPT_ARABIC:
        case USCRIPT_HEBREW:
        case USCRIPT_DEVANAGARI:
        case USCRIPT_BENGALI:
        case USCRIPT_GUJARATI:
        case USCRIPT_GURMUKHI:
        case USCRIPT_KANNADA:
        case USCRIPT_MALAYALAM:
        case USCRIPT_ORIYA:
        case USCRIPT_TAMIL:
        case USCRIPT_TELUGU:
        case USCRIPT_THAI:
        case USCRIPT_ARMENIAN:
        case USCRIPT_GEORGIAN:
        case USCRIPT_ETHIOPIC:
        case USCRIPT_KHMER:
        case USCRIPT_LAO:
        case USCRIPT_MYANMAR:
        case USCRIPT_SINHALA:
            return "fonts-noto-core";
        default:
            return nullptr;
    }
}

}  // namespace

PlakardError missingGlyph(const std::string& fontName, char32_t character) {
    return PlakardError(fontName + " has no glyph for " + quoted(character) +
                        "; pass --font with a face that covers this headline");
}

PlakardError noFaceCovers(char32_t character, const std::string& language) {
    const char* package = packageFor(character);
    return PlakardError("no installed face covers " + quoted(character) + " for --lang " + language + "; " +
                        (package ? std::string("install ") + package
                                 : std::string("pass --font with a face that covers this headline")));
}

}  // namespace plakard
