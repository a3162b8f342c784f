#include "type/ShapedLine.hpp"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include <hb.h>
#include <unicode/ubidi.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/uscript.h>
#include <unicode/utf16.h>

#include "platform/Owned.hpp"
#include "platform/Require.hpp"
#include "platform/Unicode.hpp"
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

}  // namespace

bool needsShaping(std::string_view text) {
    for (char32_t c : codePoints(text)) {
        if (needsShaper(static_cast<UChar32>(c))) return true;
    }
    return false;
}

LineLayout shapeLine(const Font& font, std::string_view text, std::string_view language) {
    const Font::Face& face = font.face();
    require(text.size() <= INT32_MAX && face.shaperFont);
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

    // Positions in font units, like every other measure of a line.
    const double toFontUnits = font.unitsPerEm / face.shaperUnitsPerEm;
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
        for (const ScriptRun& run : runs) {
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
            GlyphRun& glyphRun = glyphRuns.emplace_back(GlyphRun{.face = &font});
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
                    {glyph, pen + positions[i].x_offset * toFontUnits, positions[i].y_offset * toFontUnits});
                pen += positions[i].x_advance * toFontUnits;
            }
        }
    }
    std::optional<char32_t> missing;
    if (firstMissing != UINT32_MAX) {
        std::sort(clusterStarts.begin(), clusterStarts.end());
        const std::uint32_t clusterEnd = *std::upper_bound(clusterStarts.begin(), clusterStarts.end(), firstMissing);
        missing = missingCharacter(font, units, length, firstMissing, clusterEnd);
    }
    return LineLayout(font, std::move(glyphRuns), pen, missing);
}

}  // namespace plakard
