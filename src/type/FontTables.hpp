#pragma once
// stb_truetype follows the offsets and counts inside a font without checking
// them against the file's length. These checks walk the same structures it
// will read, so that a truncated or corrupt file is refused instead of read
// past its end.

#include <cstddef>
#include <cstdint>

#include "type/CompactFontTables.hpp"

namespace plakard {

// Before stbtt_InitFont: every table stb reads for the face starting at
// `fontStart` (whose table directory is known to lie inside the file) fits
// in the file, with the headers, cmap subtable, kerning data, GPOS pair
// adjustments, glyph locations and CFF structures stb looks at inside their
// tables, and the glyph ids the character map gives are ones stb can look up.
// With `deferred`, a CFF face's charstrings are left there to check one glyph
// at a time.
bool fontTablesInside(const std::uint8_t* data, std::size_t size, int fontStart,
                      CompactOutlines* deferred = nullptr);

}  // namespace plakard
