#include "type/ShapedLine.hpp"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include <hb.h>
#include <unicode/brkiter.h>
#include <unicode/ubidi.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/uscript.h>
#include <unicode/utf16.h>

#include "platform/Owned.hpp"
#include "platform/Require.hpp"
#include "platform/Unicode.hpp"
#include "type/FallbackFaces.hpp"
#include "type/FontFace.hpp"

namespace plakard {

namespace {

bool needsShaper(UChar32 c) {
    // Invisible controls (joiners, direction marks) follow the line they sit
    // in: alone they leave a line as it always was, refused where the face
    // lacks them.
    if (u_charType(c) == U_FORMAT_CHAR) return false;
    const UCharDirection direction = u_charDirection(c);
    if (direction == U_RIGHT_TO_LEFT || direction == U_RIGHT_TO_LEFT_ARABIC) return true;
    // Letters that join their neighbours (Arabic, Syriac, Mongolian, N'Ko...).
    const auto joining = u_getIntPropertyValue(c, UCHAR_JOINING_TYPE);
    if (joining != U_JT_NON_JOINING && joining != U_JT_TRANSPARENT) return true;
    // Scripts set in syllables (Devanagari and the other Brahmic scripts, Thai,
    // Khmer...); shared punctuation carries syllable categories too, so only a
    // script's own characters count.
    if (u_getIntPropertyValue(c, UCHAR_INDIC_SYLLABIC_CATEGORY) == U_INSC_OTHER) return false;
    UErrorCode status = U_ZERO_ERROR;
    const UScriptCode script = uscript_getScript(c, &status);
    return U_SUCCESS(status) && script != USCRIPT_COMMON && script != USCRIPT_INHERITED;
}

struct ScriptRun {
    std::int32_t start;
    std::int32_t end;
    UScriptCode script;
};

// The bidi run [start, end) split where the script changes; characters common
// to all scripts (spaces, digits, marks) go with the run they stand in.
std::vector<ScriptRun> scriptRuns(const UChar* units, std::int32_t start, std::int32_t end) {
    std::vector<ScriptRun> runs;
    std::int32_t index = start;
    while (index < end) {
        const std::int32_t before = index;
        UChar32 c = 0;
        U16_NEXT(units, index, end, c);
        UErrorCode status = U_ZERO_ERROR;
        UScriptCode script = uscript_getScript(c, &status);
        if (U_FAILURE(status) || script == USCRIPT_INHERITED) script = USCRIPT_COMMON;
        if (runs.empty()) {
            runs.push_back({before, index, script});
        } else if (script == USCRIPT_COMMON || script == runs.back().script || runs.back().script == USCRIPT_COMMON) {
            runs.back().end = index;
            if (script != USCRIPT_COMMON) runs.back().script = script;
        } else {
            runs.push_back({before, index, script});
        }
    }
    return runs;
}

char32_t codePointAt(const UChar* units, std::int32_t length, std::int32_t index) {
    UChar32 c = 0;
    U16_GET(units, 0, index, length, c);
    return static_cast<char32_t>(c);
}

// The character to name for a glyph 0 whose cluster starts at `cluster`: the
// first in that cluster the face's character map lacks, else its first.
char32_t missingCharacter(const Font& font, const UChar* units, std::int32_t length, std::uint32_t cluster,
                          std::uint32_t clusterEnd) {
    std::int32_t index = static_cast<std::int32_t>(cluster);
    const std::int32_t end = std::min(static_cast<std::int32_t>(clusterEnd), length);
    while (index < end) {
        UChar32 c = 0;
        U16_NEXT(units, index, end, c);
        if (c != U' ' && stbtt_FindGlyphIndex(&font.face().info, c) == 0) return static_cast<char32_t>(c);
    }
    return codePointAt(units, length, static_cast<std::int32_t>(cluster));
}

bool ignorable(UChar32 c) { return u_hasBinaryProperty(c, UCHAR_DEFAULT_IGNORABLE_CODE_POINT) != 0; }

bool mark(UChar32 c) {
    const std::int8_t type = u_charType(c);
    return type == U_NON_SPACING_MARK || type == U_ENCLOSING_MARK || type == U_COMBINING_SPACING_MARK;
}

bool hasGlyph(const Font& font, UChar32 c) { return stbtt_FindGlyphIndex(&font.face().info, c) != 0; }

// The face each UTF-16 unit is set in. A grapheme cluster (a base and its
// marks) stays in the headline face when that has all of it, else goes to the
// fallback face of its first character the headline face lacks, so marks sit
// on their base; ignorables need no glyph of their own. `missing` becomes the
// first character no installed face has.
std::vector<const Font*> unitFaces(const Font& font, FallbackFaces& fallback, const icu::UnicodeString& string,
                                   std::optional<char32_t>& missing) {
    const UChar* units = string.getBuffer();
    const std::int32_t length = string.length();
    std::vector<const Font*> faces(static_cast<std::size_t>(length), &font);
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> clusters(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    require(U_SUCCESS(status));
    clusters->setText(string);
    const Font* previous = &font;
    for (std::int32_t start = clusters->first(), end = clusters->next(); end != icu::BreakIterator::DONE;
         start = end, end = clusters->next()) {
        std::optional<UChar32> lacking;
        bool visible = false;
        for (std::int32_t index = start; index < end;) {
            UChar32 c = 0;
            U16_NEXT(units, index, end, c);
            if (ignorable(c)) continue;
            visible = true;
            if (!lacking && c != U' ' && !hasGlyph(font, c)) lacking = c;
        }
        const Font* face = visible ? &font : previous;
        if (lacking) {
            face = fallback.faceFor(static_cast<char32_t>(*lacking));
            if (!face) {
                if (!missing) missing = static_cast<char32_t>(*lacking);
                face = &font;
            }
        }
        std::fill(faces.begin() + start, faces.begin() + end, face);
        previous = face;
    }
    return faces;
}

}  // namespace

bool needsShaping(std::string_view text) {
    for (char32_t c : codePoints(text)) {
        if (needsShaper(static_cast<UChar32>(c))) return true;
    }
    return false;
}

bool needsOtherFaces(const Font& font, std::string_view text) {
    for (char32_t c : codePoints(text)) {
        const auto character = static_cast<UChar32>(c);
        if (mark(character) || ignorable(character) || (c != U' ' && !hasGlyph(font, character))) return true;
    }
    return false;
}

LineLayout shapeLine(const Font& font, std::string_view text, std::string_view language, FallbackFaces* fallback) {
    require(text.size() <= INT32_MAX && font.face().shaperFont);
    const icu::UnicodeString string =
        icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
    const UChar* units = string.getBuffer();
    const std::int32_t length = string.length();

    UErrorCode status = U_ZERO_ERROR;
    const Owned<UBiDi, ubidi_close> bidi(ubidi_openSized(length, 0, &status));
    // The line's first strong character sets its direction, as a reader expects.
    ubidi_setPara(bidi.get(), units, length, UBIDI_DEFAULT_LTR, nullptr, &status);
    const std::int32_t runCount = ubidi_countRuns(bidi.get(), &status);
    require(U_SUCCESS(status));

    std::optional<char32_t> uncovered;
    const std::vector<const Font*> faces = fallback ? unitFaces(font, *fallback, string, uncovered)
                                                    : std::vector<const Font*>(static_cast<std::size_t>(length), &font);
    const Owned<hb_buffer_t, hb_buffer_destroy> buffer(hb_buffer_create());
    const hb_language_t hbLanguage = language.empty()
                                         ? hb_language_get_default()
                                         : hb_language_from_string(language.data(), static_cast<int>(language.size()));

    std::vector<GlyphRun> glyphRuns;
    std::uint32_t firstMissing = UINT32_MAX;
    std::vector<std::uint32_t> clusterStarts{static_cast<std::uint32_t>(length)};
    double pen = 0;
    for (std::int32_t r = 0; r < runCount; ++r) {
        std::int32_t start = 0;
        std::int32_t runLength = 0;
        const UBiDiDirection direction = ubidi_getVisualRun(bidi.get(), r, &start, &runLength);
        std::vector<ScriptRun> runs = scriptRuns(units, start, start + runLength);
        if (direction == UBIDI_RTL) std::reverse(runs.begin(), runs.end());
        // Each script run splits again where the face changes.
        std::vector<ScriptRun> pieces;
        for (const ScriptRun& run : runs) {
            const std::size_t first = pieces.size();
            for (std::int32_t from = run.start; from < run.end;) {
                std::int32_t to = from + 1;
                while (to < run.end && faces[static_cast<std::size_t>(to)] == faces[static_cast<std::size_t>(from)])
                    ++to;
                pieces.push_back({from, to, run.script});
                from = to;
            }
            if (direction == UBIDI_RTL) std::reverse(pieces.begin() + static_cast<std::ptrdiff_t>(first), pieces.end());
        }
        for (const ScriptRun& run : pieces) {
            const Font& runFont = *faces[static_cast<std::size_t>(run.start)];
            const Font::Face& face = runFont.face();
            // Positions in the line's units, like every other measure of a line.
            const double toLineUnits = font.unitsPerEm / face.shaperUnitsPerEm;
            hb_buffer_clear_contents(buffer.get());
            // The whole line goes in as context, so letters join across runs.
            hb_buffer_add_utf16(buffer.get(), reinterpret_cast<const std::uint16_t*>(units), length,
                                static_cast<unsigned>(run.start), run.end - run.start);
            hb_buffer_set_direction(buffer.get(), direction == UBIDI_RTL ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
            hb_buffer_set_script(buffer.get(), hb_script_from_string(uscript_getShortName(run.script), -1));
            hb_buffer_set_language(buffer.get(), hbLanguage);
            hb_shape(face.shaperFont.get(), buffer.get(), nullptr, 0);
            unsigned count = 0;
            const hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(buffer.get(), &count);
            const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(buffer.get(), &count);
            GlyphRun& glyphRun = glyphRuns.emplace_back(
                GlyphRun{.face = &runFont, .toLineUnits = font.unitsPerEm / runFont.unitsPerEm});
            glyphRun.placed.reserve(count);
            for (unsigned i = 0; i < count; ++i) {
                const std::uint32_t cluster = infos[i].cluster;
                clusterStarts.push_back(cluster);
                // A damaged face's substitutions can name glyphs it does not
                // have; those count as missing, like glyph 0.
                const int glyph = infos[i].codepoint < static_cast<unsigned>(face.info.numGlyphs)
                                      ? static_cast<int>(infos[i].codepoint)
                                      : 0;
                if (glyph == 0 && codePointAt(units, length, static_cast<std::int32_t>(cluster)) != U' ')
                    firstMissing = std::min(firstMissing, cluster);
                glyphRun.placed.push_back(
                    {glyph, pen + positions[i].x_offset * toLineUnits, positions[i].y_offset * toLineUnits});
                pen += positions[i].x_advance * toLineUnits;
            }
        }
    }
    std::optional<char32_t> missing = uncovered;
    if (!missing && firstMissing != UINT32_MAX) {
        std::sort(clusterStarts.begin(), clusterStarts.end());
        const std::uint32_t clusterEnd = *std::upper_bound(clusterStarts.begin(), clusterStarts.end(), firstMissing);
        missing = missingCharacter(*faces[firstMissing], units, length, firstMissing, clusterEnd);
    }
    return LineLayout(font, std::move(glyphRuns), pen, missing, fallback ? fallback->language() : std::string());
}

}  // namespace plakard
