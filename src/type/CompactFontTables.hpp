#pragma once
// The CFF outlines of an OpenType face, checked before stb_truetype parses
// them: stb reads CFF as if the table were 512 MiB long and follows every
// offset in it, so everything it will read must lie inside the real table.

#include <cstdint>

#include "type/TableReader.hpp"

namespace plakard {

// Walks what stbtt_InitFont reads in the CFF table, and what glyph outlines
// need later (the private dictionaries and subroutines of every font dict, and
// the font dict of every glyph), failing `r` when any of it lies outside the
// table or would stop stb at an assertion. The result is the number of glyphs
// with a charstring; every glyph id the face can use must be below it.
std::uint64_t compactFontGlyphs(Reader& r, const Table& cff);

}  // namespace plakard
