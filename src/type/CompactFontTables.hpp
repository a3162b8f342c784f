#pragma once
// The CFF outlines of an OpenType face, checked before stb_truetype parses
// them: stb reads CFF as if the table were 512 MiB long and follows every
// offset in it, so everything it will read must lie inside the real table.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "type/TableReader.hpp"

namespace plakard {

// A part of the CFF table as stb sees it: where it starts, how long stb
// believes it is, and stb's cursor in it.
struct CompactSpan {
    std::int64_t start = 0;
    std::int64_t size = 0;
    std::int64_t cursor = 0;
};

// What running one glyph's charstring needs, kept when the charstrings are
// checked as glyphs are used rather than all at load: a CJK collection has
// 65,535 of them, and a page draws a few dozen.
class CompactOutlines {
public:
    // False until a CFF face's structure has been checked with this to fill.
    bool deferred() const { return !locals_.empty(); }
    std::size_t glyphCount() const { return locals_.size(); }

    // Whether stb can run `glyph`'s charstring in `data`, the whole file the
    // face was checked in: the same checks the load would have made.
    bool glyphSound(const std::uint8_t* data, std::size_t size, std::uint64_t glyph) const;

private:
    friend std::uint64_t compactFontGlyphs(Reader& r, const Table& cff, CompactOutlines* deferred);
    Table cff_;
    CompactSpan charStrings_;
    CompactSpan globalSubroutines_;
    std::vector<CompactSpan> locals_;  // each glyph's local subroutines
};

// Walks what stbtt_InitFont reads in the CFF table, and what glyph outlines
// need later (the private dictionaries and subroutines of every font dict, and
// the font dict of every glyph), failing `r` when any of it lies outside the
// table or would stop stb at an assertion. The result is the number of glyphs
// with a charstring; every glyph id the face can use must be below it. With
// `deferred`, the charstrings themselves are left for glyphSound.
std::uint64_t compactFontGlyphs(Reader& r, const Table& cff, CompactOutlines* deferred = nullptr);

}  // namespace plakard
