#include "type/CompactFontTables.hpp"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <numeric>
#include <vector>

namespace plakard {

namespace {

// stb's own length for the CFF table, whatever the table's real one.
constexpr std::int64_t nominalLength = 512 * 1024 * 1024;
constexpr std::int64_t intMin = std::numeric_limits<int>::min();
constexpr std::int64_t intMax = std::numeric_limits<int>::max();

// A part of the CFF table as stb sees it: where it starts, how long stb
// believes it is, and stb's cursor in it.
struct Span {
    std::int64_t start = 0;
    std::int64_t size = 0;
    std::int64_t cursor = 0;
};

// Repeats stb's CFF parsing step for step (its stbtt__buf helpers, its int
// arithmetic), with the reads checked against the real table. Whatever stb
// would read outside it, and every step on which stb asserts or its int
// arithmetic overflows, fails the reader.
class CompactFontWalk {
public:
    CompactFontWalk(Reader& r, const Table& cff) : r_(r), cff_(cff) {}

    Span whole() const { return {0, nominalLength, 0}; }
    bool ok() const { return r_.ok(); }
    void fail() { r_.fail(); }

    // A span stb goes on reading later, when drawing glyphs: all of it must
    // lie in the table.
    void keep(const Span& span) {
        if (span.size > 0) r_.need(cff_, static_cast<std::uint64_t>(span.start), static_cast<std::uint64_t>(span.size));
    }

    std::uint32_t get8(Span& b) {
        if (b.cursor >= b.size) return 0;
        return r_.u8(cff_, static_cast<std::uint64_t>(b.start + b.cursor++));
    }
    std::uint32_t peek8(const Span& b) {
        if (b.cursor >= b.size) return 0;
        return r_.u8(cff_, static_cast<std::uint64_t>(b.start + b.cursor));
    }
    std::uint32_t get(Span& b, std::int64_t n) {
        if (n < 1 || n > 4) fail();
        std::uint32_t v = 0;
        for (std::int64_t i = 0; i < n && ok(); ++i) v = (v << 8) | get8(b);
        return v;
    }
    void seek(Span& b, std::int64_t o) {
        if (o < 0 || o > b.size) {
            fail();
            o = b.size;
        }
        b.cursor = o;
    }
    // stb adds in int; an overflow there is undefined behaviour.
    void skip(Span& b, std::int64_t o) {
        const std::int64_t to = b.cursor + o;
        if (to < intMin || to > intMax) fail();
        seek(b, to);
    }
    static Span range(const Span& b, std::int64_t o, std::int64_t s) {
        if (o < 0 || s < 0 || o > b.size || s > b.size - o) return {};
        return {b.start + o, s, 0};
    }

    // stbtt__cff_get_index: an INDEX at the cursor, the cursor moved past it.
    Span index(Span& b) {
        const std::int64_t start = b.cursor;
        const std::uint32_t count = get(b, 2);
        if (count != 0) {
            const std::uint32_t offsetSize = get8(b);
            if (offsetSize < 1 || offsetSize > 4) {
                fail();
                return {};
            }
            skip(b, std::int64_t{offsetSize} * count);
            skip(b, static_cast<int>(get(b, offsetSize) - 1));
        }
        return range(b, start, b.cursor - start);
    }

    std::uint32_t indexCount(Span b) {
        seek(b, 0);
        return get(b, 2);
    }

    // stbtt__cff_index_get: entry i of an INDEX.
    Span indexEntry(Span b, std::int64_t i) {
        seek(b, 0);
        const std::int64_t count = get(b, 2);
        const std::int64_t offsetSize = get8(b);
        if (i < 0 || i >= count || offsetSize < 1 || offsetSize > 4) {
            fail();
            return {};
        }
        skip(b, i * offsetSize);
        const std::int64_t start = static_cast<int>(get(b, offsetSize));
        const std::int64_t end = static_cast<int>(get(b, offsetSize));
        const std::int64_t at = 2 + (count + 1) * offsetSize + start;
        if (at > intMax || end - start < intMin || end - start > intMax) fail();
        return range(b, at, end - start);
    }

    // stbtt__cff_int; stb asserts on anything but an integer operand.
    std::uint32_t integer(Span& b) {
        const std::uint32_t b0 = get8(b);
        if (b0 >= 32 && b0 <= 246) return b0 - 139;
        if (b0 >= 247 && b0 <= 250) return (b0 - 247) * 256 + get8(b) + 108;
        if (b0 >= 251 && b0 <= 254) return 0u - ((b0 - 251) * 256 + get8(b) + 108);
        if (b0 == 28) return get(b, 2);
        if (b0 == 29) return get(b, 4);
        fail();
        return 0;
    }

    void skipOperand(Span& b) {
        if (peek8(b) != 30) {
            integer(b);
            return;
        }
        skip(b, 1);
        while (b.cursor < b.size && ok()) {
            const std::uint32_t v = get8(b);
            if ((v & 0xF) == 0xF || (v >> 4) == 0xF) break;
        }
    }

    // stbtt__dict_get: the operands of `key` in a DICT.
    Span dictEntry(Span& b, std::uint32_t key) {
        seek(b, 0);
        while (b.cursor < b.size && ok()) {
            const std::int64_t start = b.cursor;
            while (peek8(b) >= 28 && ok()) skipOperand(b);
            const std::int64_t end = b.cursor;
            std::uint32_t op = get8(b);
            if (op == 12) op = get8(b) | 0x100;
            if (op == key) return range(b, start, end - start);
        }
        return range(b, 0, 0);
    }

    // stbtt__dict_get_ints.
    void dictIntegers(Span& b, std::uint32_t key, std::uint32_t* out, int count) {
        Span operands = dictEntry(b, key);
        for (int i = 0; i < count && operands.cursor < operands.size && ok(); ++i) out[i] = integer(operands);
    }

    // stbtt__get_subrs: the local subroutines of a font dict.
    Span subroutines(Span cff, Span fontDict) {
        std::uint32_t privateDict[2] = {0, 0};
        dictIntegers(fontDict, 18, privateDict, 2);
        if (privateDict[1] == 0 || privateDict[0] == 0) return {};
        Span dict = range(cff, static_cast<int>(privateDict[1]), static_cast<int>(privateDict[0]));
        std::uint32_t offset = 0;
        dictIntegers(dict, 19, &offset, 1);
        if (offset == 0) return {};
        seek(cff, static_cast<int>(privateDict[1] + offset));
        return index(cff);
    }

private:
    Reader& r_;
    const Table& cff_;
};

// Every glyph below `glyphs` must find a font dict in FDSelect (stb asserts
// when one does not) whose subroutines lie in the table. Format 3 ranges are
// taken in order, the first that holds a glyph deciding; each glyph is
// settled once, skipping those settled already.
void fontDictSelectInside(CompactFontWalk& walk, const Span& cff, Span select, const Span& fontDicts,
                          std::uint64_t glyphs) {
    if (select.size == 0) return;  // stb then draws every glyph with the top DICT's subroutines
    const std::uint32_t dictCount = walk.indexCount(fontDicts);
    std::vector<bool> dictChecked(dictCount, false);
    auto selects = [&](std::uint32_t dict) {
        if (dict >= dictCount) return walk.fail();
        if (dictChecked[dict]) return;
        dictChecked[dict] = true;
        walk.keep(walk.subroutines(cff, walk.indexEntry(fontDicts, dict)));
    };
    walk.seek(select, 0);
    const std::uint32_t format = walk.get8(select);
    if (format == 0) {
        for (std::uint64_t glyph = 0; glyph < glyphs && walk.ok(); ++glyph) selects(walk.get8(select));
        walk.keep(Span{select.start, select.cursor, 0});
        return;
    }
    if (format != 3) return walk.fail();
    const std::uint32_t ranges = walk.get(select, 2);
    std::uint32_t start = walk.get(select, 2);
    // nextOpen[g]: the first glyph at or after g not settled yet.
    std::vector<std::uint64_t> nextOpen(glyphs + 1);
    std::iota(nextOpen.begin(), nextOpen.end(), std::uint64_t{0});
    auto open = [&](std::uint64_t glyph) {
        while (nextOpen[glyph] != glyph) glyph = nextOpen[glyph] = nextOpen[nextOpen[glyph]];
        return glyph;
    };
    std::uint64_t settled = 0;
    for (std::uint32_t i = 0; i < ranges && walk.ok(); ++i) {
        const std::uint32_t dict = walk.get8(select);
        const std::uint32_t end = walk.get(select, 2);
        const std::uint64_t last = std::min<std::uint64_t>(end, glyphs);
        for (std::uint64_t glyph = open(std::min<std::uint64_t>(start, glyphs)); glyph < last; glyph = open(glyph)) {
            selects(dict);
            nextOpen[glyph] = glyph + 1;
            ++settled;
        }
        start = end;
    }
    walk.keep(Span{select.start, select.cursor, 0});
    if (settled != glyphs) walk.fail();
}

}  // namespace

std::uint64_t compactFontGlyphs(Reader& r, const Table& cff) {
    CompactFontWalk walk(r, cff);
    // stbtt_InitFont, step for step.
    Span b = walk.whole();
    walk.skip(b, 2);
    walk.seek(b, walk.get8(b));
    walk.index(b);  // names
    const Span topDicts = walk.index(b);
    Span topDict = walk.indexEntry(topDicts, 0);
    walk.index(b);  // strings
    walk.keep(walk.index(b));  // global subroutines
    std::uint32_t charStrings = 0;
    std::uint32_t charStringType = 2;
    std::uint32_t fontDictsOffset = 0;
    std::uint32_t selectOffset = 0;
    walk.dictIntegers(topDict, 17, &charStrings, 1);
    walk.dictIntegers(topDict, 0x100 | 6, &charStringType, 1);
    walk.dictIntegers(topDict, 0x100 | 36, &fontDictsOffset, 1);
    walk.dictIntegers(topDict, 0x100 | 37, &selectOffset, 1);
    walk.keep(walk.subroutines(b, topDict));
    if (!walk.ok() || charStringType != 2 || charStrings == 0) return 0;  // stb refuses these itself
    Span fontDicts;
    Span select;
    if (fontDictsOffset != 0) {
        if (selectOffset == 0) return 0;
        walk.seek(b, static_cast<int>(fontDictsOffset));
        fontDicts = walk.index(b);
        walk.keep(fontDicts);
        select = CompactFontWalk::range(b, static_cast<int>(selectOffset), b.size - static_cast<int>(selectOffset));
    }
    walk.seek(b, static_cast<int>(charStrings));
    const Span glyphs = walk.index(b);
    walk.keep(glyphs);
    const std::uint64_t glyphCount = walk.ok() ? walk.indexCount(glyphs) : 0;
    // Drawing a glyph reads its charstring (stb asserts on a glyph id beyond
    // them, so there must be one for glyph 0, the missing glyph) and, in a
    // CID-keyed font, the glyph's font dict.
    if (glyphCount == 0) walk.fail();
    if (fontDictsOffset != 0 && walk.ok()) fontDictSelectInside(walk, walk.whole(), select, fontDicts, glyphCount);
    return glyphCount;
}

}  // namespace plakard
