#include "type/CompactFontTables.hpp"

#include <algorithm>
#include <cmath>
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

using Span = CompactSpan;

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

// The local subroutines of every glyph, in glyph order. In a CID-keyed face
// each glyph must find a font dict in FDSelect (stb asserts when one does not)
// and takes that dict's subroutines; format 3 ranges are taken in order, the
// first that holds a glyph deciding, and each glyph is settled once, skipping
// those settled already. Otherwise every glyph takes the top DICT's.
std::vector<Span> localSubroutines(CompactFontWalk& walk, const Span& topSubroutines, Span select,
                                   const Span& fontDicts, std::uint64_t glyphs) {
    // stb reads FDSelect only when its range is not empty.
    if (select.size == 0) return std::vector<Span>(glyphs, topSubroutines);
    std::vector<Span> subroutines(glyphs);
    const std::uint32_t dictCount = walk.indexCount(fontDicts);
    std::vector<Span> dictSubroutines(dictCount);
    std::vector<bool> dictRead(dictCount, false);
    auto selects = [&](std::uint64_t glyph, std::uint32_t dict) {
        if (dict >= dictCount) return walk.fail();
        if (!dictRead[dict]) {
            dictRead[dict] = true;
            dictSubroutines[dict] = walk.subroutines(walk.whole(), walk.indexEntry(fontDicts, dict));
            walk.keep(dictSubroutines[dict]);
        }
        subroutines[glyph] = dictSubroutines[dict];
    };
    walk.seek(select, 0);
    const std::uint32_t format = walk.get8(select);
    if (format == 0) {
        for (std::uint64_t glyph = 0; glyph < glyphs && walk.ok(); ++glyph) selects(glyph, walk.get8(select));
        return subroutines;
    }
    if (format != 3) {
        walk.fail();
        return subroutines;
    }
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
            selects(glyph, dict);
            nextOpen[glyph] = glyph + 1;
            ++settled;
        }
        start = end;
    }
    if (settled != glyphs) walk.fail();
    return subroutines;
}

// stbtt__get_subr: subroutine n, after the bias the INDEX's size sets.
Span subroutine(CompactFontWalk& walk, const Span& index, std::int64_t n) {
    const std::int64_t count = walk.indexCount(index);
    n += count >= 33900 ? 32768 : count >= 1240 ? 1131 : 107;
    if (n < 0 || n >= count) return {};
    return walk.indexEntry(index, n);
}

// Drawing or measuring a glyph runs its charstring. stb's interpreter has no
// budget: subroutines that call each other ten deep, each many times over,
// run for ever, the outline they draw can have more edges than rasterising
// can get through, and the pen can travel beyond the ints its coordinates are
// turned into. It asserts when a hint mask runs past the charstring. Its
// control flow is followed here (the operand values matter only as
// subroutine numbers and pen travel), within budgets no real glyph nears (a
// dense ideograph draws with a few thousand operands).
constexpr std::uint64_t mostOperators = 1 << 16;
constexpr std::uint64_t mostPathOperands = 1 << 18;
constexpr double farthestTravel = 1 << 30;

void charStringSound(CompactFontWalk& walk, Span b, const Span& localSubroutines, const Span& globalSubroutines) {
    float s[48];
    int sp = 0;
    bool inHeader = true;
    std::int64_t maskBits = 0;
    Span callers[10];
    int depth = 0;
    std::uint64_t operators = 0;
    std::uint64_t pathOperands = 0;
    double travel = 0;
    // A path operator with at least `needed` operands draws with some of them
    // and moves the pen by some; all of them bound how much and how far.
    auto draws = [&](int needed) {
        if (sp < needed) return false;  // stb stops drawing the glyph
        pathOperands += static_cast<std::uint64_t>(sp);
        for (int i = 0; i < sp; ++i) travel += std::abs(static_cast<double>(s[i]));
        return true;
    };
    while (b.cursor < b.size && walk.ok()) {
        if (++operators > mostOperators || pathOperands > mostPathOperands || travel > farthestTravel)
            return walk.fail();
        bool clearStack = true;
        const std::uint32_t b0 = walk.get8(b);
        switch (b0) {
        case 0x13:  // hintmask
        case 0x14:  // cntrmask
            if (inHeader) maskBits += sp / 2;
            inHeader = false;
            walk.skip(b, (maskBits + 7) / 8);
            break;
        case 0x01:  // hstem
        case 0x03:  // vstem
        case 0x12:  // hstemhm
        case 0x17:  // vstemhm
            maskBits += sp / 2;
            break;
        case 0x15:  // rmoveto
            inHeader = false;
            if (!draws(2)) return;
            break;
        case 0x04:  // vmoveto
        case 0x16:  // hmoveto
            inHeader = false;
            if (!draws(1)) return;
            break;
        case 0x05:  // rlineto
            if (!draws(2)) return;
            break;
        case 0x06:  // hlineto
        case 0x07:  // vlineto
            if (!draws(1)) return;
            break;
        case 0x1E:  // vhcurveto
        case 0x1F:  // hvcurveto
        case 0x1A:  // vvcurveto
        case 0x1B:  // hhcurveto
            if (!draws(4)) return;
            break;
        case 0x08:  // rrcurveto
            if (!draws(6)) return;
            break;
        case 0x18:  // rcurveline
        case 0x19:  // rlinecurve
            if (!draws(8)) return;
            break;
        case 0x0A:  // callsubr
        case 0x1D: {  // callgsubr
            if (sp < 1) return;
            const int n = static_cast<int>(s[--sp]);
            if (depth >= 10) return;
            callers[depth++] = b;
            b = subroutine(walk, b0 == 0x0A ? localSubroutines : globalSubroutines, n);
            if (b.size == 0) return;
            b.cursor = 0;
            clearStack = false;
            break;
        }
        case 0x0B:  // return
            if (depth <= 0) return;
            b = callers[--depth];
            clearStack = false;
            break;
        case 0x0E:  // endchar
            return;
        case 0x0C: {  // flex family
            static constexpr int needed[] = {7, 13, 9, 11};  // hflex, flex, hflex1, flex1
            const std::uint32_t b1 = walk.get8(b);
            if (b1 < 0x22 || b1 > 0x25 || !draws(needed[b1 - 0x22])) return;
            break;
        }
        default: {
            if (b0 != 255 && b0 != 28 && b0 < 32) return;  // a reserved operator ends the glyph
            float f = 0;
            if (b0 == 255) {
                f = static_cast<float>(static_cast<std::int32_t>(walk.get(b, 4))) / 0x10000;
            } else {
                walk.skip(b, -1);
                f = static_cast<float>(static_cast<std::int16_t>(walk.integer(b)));
            }
            if (sp >= 48) return;
            s[sp++] = f;
            clearStack = false;
        }
        }
        if (clearStack) sp = 0;
    }
}

}  // namespace

std::uint64_t compactFontGlyphs(Reader& r, const Table& cff, CompactOutlines* deferred) {
    CompactFontWalk walk(r, cff);
    // stbtt_InitFont, step for step.
    Span b = walk.whole();
    walk.skip(b, 2);
    walk.seek(b, walk.get8(b));
    walk.index(b);  // names
    const Span topDicts = walk.index(b);
    Span topDict = walk.indexEntry(topDicts, 0);
    walk.index(b);  // strings
    const Span globalSubroutines = walk.index(b);
    walk.keep(globalSubroutines);
    std::uint32_t charStrings = 0;
    std::uint32_t charStringType = 2;
    std::uint32_t fontDictsOffset = 0;
    std::uint32_t selectOffset = 0;
    walk.dictIntegers(topDict, 17, &charStrings, 1);
    walk.dictIntegers(topDict, 0x100 | 6, &charStringType, 1);
    walk.dictIntegers(topDict, 0x100 | 36, &fontDictsOffset, 1);
    walk.dictIntegers(topDict, 0x100 | 37, &selectOffset, 1);
    const Span topSubroutines = walk.subroutines(b, topDict);
    walk.keep(topSubroutines);
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
    // Drawing a glyph runs its charstring (stb asserts on a glyph id beyond
    // them, so there must be one for glyph 0, the missing glyph) with, in a
    // CID-keyed font, the subroutines of the glyph's font dict.
    if (glyphCount == 0) walk.fail();
    if (!walk.ok()) return 0;
    const std::vector<Span> locals = fontDictsOffset != 0
                                         ? localSubroutines(walk, topSubroutines, select, fontDicts, glyphCount)
                                         : std::vector<Span>(glyphCount, topSubroutines);
    if (deferred && walk.ok()) {
        *deferred = CompactOutlines();
        deferred->cff_ = cff;
        deferred->charStrings_ = glyphs;
        deferred->globalSubroutines_ = globalSubroutines;
        deferred->locals_ = locals;
        return glyphCount;
    }
    for (std::uint64_t glyph = 0; glyph < glyphCount && walk.ok(); ++glyph)
        charStringSound(walk, walk.indexEntry(glyphs, static_cast<std::int64_t>(glyph)), locals[glyph],
                        globalSubroutines);
    return glyphCount;
}

bool CompactOutlines::glyphSound(const std::uint8_t* data, std::size_t size, std::uint64_t glyph) const {
    if (glyph >= locals_.size()) return false;
    Reader r(data, size);
    CompactFontWalk walk(r, cff_);
    charStringSound(walk, walk.indexEntry(charStrings_, static_cast<std::int64_t>(glyph)), locals_[glyph],
                    globalSubroutines_);
    return walk.ok();
}

}  // namespace plakard
