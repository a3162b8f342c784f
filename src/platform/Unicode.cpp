#include "platform/Unicode.hpp"

#include <cstdint>
#include <memory>

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

#include "platform/Require.hpp"

namespace plakard {

namespace {

constexpr char32_t replacementCharacter = 0xFFFD;

// Decodes the code point starting at byte `index` and moves `index` past it;
// a malformed sequence yields U+FFFD and is skipped as ICU delimits it.
char32_t nextCodePoint(std::string_view text, std::int64_t& index) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const auto length = static_cast<std::int64_t>(text.size());
    UChar32 c;
    U8_NEXT(bytes, index, length, c);
    return c < 0 ? replacementCharacter : static_cast<char32_t>(c);
}

bool isBlank(char32_t c) {
    return c == U'\t' || u_charType(static_cast<UChar32>(c)) == U_SPACE_SEPARATOR;
}

icu::UnicodeString unicodeString(std::string_view text) {
    require(text.size() <= INT32_MAX);
    return icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

icu::Locale localeFromTag(std::string_view tag, UErrorCode& status) {
    require(tag.size() <= INT32_MAX);
    return icu::Locale::forLanguageTag(icu::StringPiece(tag.data(), static_cast<std::int32_t>(tag.size())), status);
}

icu::Locale localeFromTag(std::string_view tag) {
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale locale = localeFromTag(tag, status);
    return U_SUCCESS(status) ? locale : icu::Locale::getRoot();
}

}  // namespace

bool isKnownLanguageTag(std::string_view tag) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Locale locale = localeFromTag(tag, status);
    // A well-formed tag can still name no language ICU has heard of ("xx").
    return U_SUCCESS(status) && !locale.isBogus() && *locale.getISO3Language() != '\0';
}

std::string trimmingBlanks(std::string_view text) {
    // One forward pass: the kept range runs from the first non-blank code
    // point to the end of the last one, so invalid bytes inside stay as they are.
    std::int64_t index = 0;
    std::int64_t start = -1;
    std::int64_t end = 0;
    const auto length = static_cast<std::int64_t>(text.size());
    while (index < length) {
        const std::int64_t before = index;
        if (!isBlank(nextCodePoint(text, index))) {
            if (start < 0) start = before;
            end = index;
        }
    }
    if (start < 0) return {};
    return std::string(text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start)));
}

std::string upperCased(std::string_view text, std::string_view language) {
    icu::UnicodeString string = unicodeString(text);
    string.toUpper(language.empty() ? icu::Locale::getRoot() : localeFromTag(language));
    std::string result;
    string.toUTF8String(result);
    return result;
}

std::string composedForm(std::string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* nfc = icu::Normalizer2::getNFCInstance(status);
    require(U_SUCCESS(status));
    const icu::UnicodeString composed = nfc->normalize(unicodeString(text), status);
    require(U_SUCCESS(status));
    std::string result;
    composed.toUTF8String(result);
    return result;
}

bool isUtf8Text(std::string_view text) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const auto length = static_cast<std::int64_t>(text.size());
    for (std::int64_t index = 0; index < length;) {
        UChar32 c;
        U8_NEXT(bytes, index, length, c);
        if (c <= 0) return false;
    }
    return true;
}

std::size_t graphemeCount(std::string_view text) {
    if (text.empty()) return 0;
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::BreakIterator> characters(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    // Only a broken ICU installation (no break rules) fails here.
    require(U_SUCCESS(status) && characters != nullptr);
    characters->setText(unicodeString(text));
    std::size_t count = 0;
    characters->first();
    while (characters->next() != icu::BreakIterator::DONE) ++count;
    return count;
}

std::vector<char32_t> codePoints(std::string_view text) {
    std::vector<char32_t> result;
    result.reserve(text.size());
    std::int64_t index = 0;
    const auto length = static_cast<std::int64_t>(text.size());
    while (index < length) result.push_back(nextCodePoint(text, index));
    return result;
}

std::string utf8(char32_t codePoint) {
    if (codePoint > 0x10FFFF || U_IS_SURROGATE(codePoint)) codePoint = replacementCharacter;
    std::uint8_t buffer[U8_MAX_LENGTH];
    std::int32_t length = 0;
    U8_APPEND_UNSAFE(buffer, length, static_cast<UChar32>(codePoint));
    return std::string(reinterpret_cast<const char*>(buffer), static_cast<std::size_t>(length));
}

std::string asciiLowerCased(std::string text) {
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return text;
}

}  // namespace plakard
