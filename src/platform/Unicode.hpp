#pragma once
// Unicode text services, all backed by ICU. Texts are UTF-8; an invalid byte
// sequence is read as U+FFFD, never an error.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace plakard {

// Removes Unicode space separators (general category Zs) and U+0009 from both
// ends. Line breaks are kept.
std::string trimmingBlanks(std::string_view text);

// Full upper-case mapping ("straße" gives "STRASSE"); with a BCP 47
// language tag, that language's rules ("tr": "i" gives "İ").
std::string upperCased(std::string_view text, std::string_view language = {});

// Unicode normalisation form C: a base and the marks that have a precomposed
// character become that character ("E" + U+0301 gives "É").
std::string composedForm(std::string_view text);

// Only A-Z lowered, every other byte kept: for the ASCII words of sizes and
// file extensions, which no locale may change ("I" stays "i" under tr).
std::string asciiLowerCased(std::string text);

// Whether ICU reads `tag` as a well-formed BCP 47 tag of a language it knows.
bool isKnownLanguageTag(std::string_view tag);

// Whether the bytes are well-formed UTF-8 (no overlong forms, surrogates or
// values past U+10FFFF) and hold no NUL, which no text a person typed does.
bool isUtf8Text(std::string_view text);

// The number of user-perceived characters (extended grapheme clusters).
std::size_t graphemeCount(std::string_view text);

// The text's code points in order.
std::vector<char32_t> codePoints(std::string_view text);

// The code point encoded as UTF-8.
std::string utf8(char32_t codePoint);

}  // namespace plakard
