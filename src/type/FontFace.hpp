#pragma once
// What a Font holds for the font libraries, seen only inside type/: the file's
// bytes, stb_truetype's record pointing into them, and HarfBuzz's face and
// font on the same bytes. All are made once, when the face is loaded, and
// torn down in the reverse order: the bytes last.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include <hb.h>
#include <stb_truetype.h>

#include "platform/Owned.hpp"
#include "type/CompactFontTables.hpp"
#include "type/Font.hpp"

namespace plakard {

struct Font::Face {
    std::vector<std::uint8_t> storage;
    stbtt_fontinfo info{};
    // Null for a file too large for HarfBuzz to count its bytes, which can
    // then set only lines that need no shaping.
    Owned<hb_face_t, hb_face_destroy> shaperFace;
    // Scaled to the face's own units per em, so positions come in font units.
    Owned<hb_font_t, hb_font_destroy> shaperFont;
    int shaperUnitsPerEm = 0;
    // Loaded with OutlineCheck::asUsed: the charstrings not checked yet, and
    // for each glyph whether it has been (0 not yet, 1 sound).
    CompactOutlines uncheckedOutlines;
    mutable std::vector<std::uint8_t> glyphChecked;
};

// Before stb runs `glyph`'s outline: a glyph of a face loaded with
// OutlineCheck::asUsed is checked the first time. Throws the load's "<name> is
// not a TrueType or OpenType font, or is truncated" when it is damaged.
void requireSoundGlyph(const Font& font, int glyph);

}  // namespace plakard
