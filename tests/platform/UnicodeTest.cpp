#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/Unicode.hpp"

namespace plakard {
namespace {

struct TextCase {
    std::string input;
    std::string expected;
};

TEST(Unicode, TrimsSpaceSeparatorsAndTabsAtBothEndsOnly) {
    const TextCase cases[] = {
        {"", ""},
        {"  \t ", ""},
        {" Track ", "Track"},
        {"\tevery  subscription\t", "every  subscription"},
        {"\u00A0\u2003\u3000word\u202F\u205F", "word"},  // no-break, em, ideographic, narrow, math spaces
        {"\u1680x\u2000", "x"},                          // ogham space mark, en quad
        {" \nline\n ", "\nline\n"},                      // line breaks are not blanks
        {"\r\u2028x\u2029\v\f", "\r\u2028x\u2029\v\f"},
        {"\u200Bx\uFEFF", "\u200Bx\uFEFF"},  // zero-width space and BOM are format characters, not Zs
        {" \xFF ", "\xFF"},                  // an invalid byte is a character and is kept as it was
        {"a \xC3", "a \xC3"},
    };
    for (const TextCase& c : cases) EXPECT_EQ(trimmingBlanks(c.input), c.expected) << c.input;
}

TEST(Unicode, UpperCasesWithFullMappingsInTheRootLocale) {
    const TextCase cases[] = {
        {"", ""},
        {"straße", "STRASSE"},
        {"track | every subscription", "TRACK | EVERY SUBSCRIPTION"},
        {"\uFB01ne", "FINE"},           // the fi ligature becomes two letters
        {"\u0149", "\u02BCN"},          // n preceded by apostrophe
        {"istanbul", "ISTANBUL"},       // no Turkish dotted capital I
        {"ὀδυσσεύς", "ὈΔΥΣΣΕΎΣ"},       // final sigma
        {"ǆemal", "ǄEMAL"},
        {"é 😀 123", "É 😀 123"},
        {"\xC0x", "\uFFFDX"},  // an invalid byte reads as U+FFFD
    };
    for (const TextCase& c : cases) EXPECT_EQ(upperCased(c.input), c.expected) << c.input;
}

TEST(Unicode, CountsUserPerceivedCharacters) {
    const struct {
        std::string text;
        std::size_t count;
    } cases[] = {
        {"", 0},
        {"TRACK", 5},
        {"e\u0301", 1},                                      // combining accent
        {"\U0001F44D\U0001F3FD", 1},                         // emoji with skin tone
        {"\U0001F468\u200D\U0001F469\u200D\U0001F467", 1},   // family joined by ZWJ
        {"\U0001F1E9\U0001F1EA\U0001F1EB\U0001F1F7", 2},     // two flags
        {"\r\n", 1},
        {"\u1100\u1161\u11A8", 1},                           // Hangul jamo forming one syllable
        {"STRASSE ÉTÉ", 11},
    };
    for (const auto& c : cases) EXPECT_EQ(graphemeCount(c.text), c.count) << c.text;
}

TEST(Unicode, DecodesCodePointsReadingMalformedSequencesAsReplacementCharacters) {
    const struct {
        std::string text;
        std::vector<char32_t> expected;
    } cases[] = {
        {"", {}},
        {"A é", {U'A', U' ', 0xE9}},
        {"€😀", {0x20AC, 0x1F600}},
        {"\xFF", {0xFFFD}},
        {"a\xE2\x82", {U'a', 0xFFFD}},                // truncated three-byte sequence: one U+FFFD
        {"\xC0\x80", {0xFFFD, 0xFFFD}},               // overlong NUL
        {"\xED\xA0\x80", {0xFFFD, 0xFFFD, 0xFFFD}},   // an encoded surrogate
        {"\xF4\x90\x80\x80", {0xFFFD, 0xFFFD, 0xFFFD, 0xFFFD}},  // beyond U+10FFFF
        {"\x80z", {0xFFFD, U'z'}},
        {std::string("a\0b", 3), {U'a', 0, U'b'}},
    };
    for (const auto& c : cases) EXPECT_EQ(codePoints(c.text), c.expected) << c.text;
}

TEST(Unicode, EncodesCodePointsAsUTF8) {
    const struct {
        char32_t codePoint;
        std::string expected;
    } cases[] = {
        {U'A', "A"},
        {0xE9, "\xC3\xA9"},
        {0x7FF, "\xDF\xBF"},
        {0x20AC, "\xE2\x82\xAC"},
        {0xFFFF, "\xEF\xBF\xBF"},
        {0x1F600, "\xF0\x9F\x98\x80"},
        {0x10FFFF, "\xF4\x8F\xBF\xBF"},
        {0xD800, "\uFFFD"},
        {0x110000, "\uFFFD"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(utf8(c.codePoint), c.expected) << std::hex << static_cast<unsigned>(c.codePoint);
    }
}

}  // namespace
}  // namespace plakard
