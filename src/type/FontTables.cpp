#include "type/FontTables.hpp"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

#include <stb_truetype.h>

#include "type/CompactFontTables.hpp"
#include "type/TableReader.hpp"

namespace plakard {

namespace {

// The largest glyph id a format 4 subtable gives: stb adds the delta to the
// code point, or takes the glyph-id array's entry as it stands. Segments may
// share array entries, so each entry is read once, whatever the overlaps.
std::uint64_t largestSegmentGlyph(Reader& r, const Table& cmap, std::uint64_t subtable) {
    const std::uint64_t segments = r.u16(cmap, subtable + 6) >> 1;
    const std::uint64_t ends = subtable + 14;
    const std::uint64_t starts = ends + 2 * segments + 2;
    const std::uint64_t deltas = starts + 2 * segments;
    const std::uint64_t rangeOffsets = deltas + 2 * segments;
    std::uint64_t largest = 0;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> arrays;  // first and last entry's offset
    for (std::uint64_t i = 0; i < segments; ++i) {
        const std::uint32_t end = r.u16(cmap, ends + 2 * i);
        const std::uint32_t start = r.u16(cmap, starts + 2 * i);
        if (start > end) continue;
        const std::uint32_t rangeOffset = r.u16(cmap, rangeOffsets + 2 * i);
        if (rangeOffset != 0) {
            const std::uint64_t first = rangeOffsets + 2 * i + rangeOffset;
            arrays.emplace_back(first, first + 2 * std::uint64_t{end - start});
            continue;
        }
        const std::uint32_t delta = r.u16(cmap, deltas + 2 * i);
        const std::uint32_t low = start + delta;
        const std::uint32_t high = end + delta;
        largest = std::max<std::uint64_t>(largest, (low >> 16) != (high >> 16) ? 0xFFFF : high & 0xFFFF);
    }
    std::sort(arrays.begin(), arrays.end());
    std::uint64_t readUpTo[2] = {0, 1};  // per parity of the offset: where the unread entries start
    for (const auto& [first, last] : arrays) {
        std::uint64_t& done = readUpTo[first % 2];
        for (std::uint64_t at = std::max(first, done); at <= last && r.ok(); at += 2)
            largest = std::max<std::uint64_t>(largest, r.u16(cmap, at));
        done = std::max(done, last + 2);
    }
    return largest;
}

// Format 4's binary search is steered by searchRange, entrySelector and
// rangeShift from the file; they must keep it inside the segment arrays, and
// every glyph-id array a segment points to must end inside cmap.
std::uint64_t segmentMappingInside(Reader& r, const Table& cmap, std::uint64_t subtable) {
    const std::uint64_t segments = r.u16(cmap, subtable + 6) >> 1;
    const std::uint64_t searchRange = r.u16(cmap, subtable + 8) >> 1;
    const std::uint64_t rangeShift = r.u16(cmap, subtable + 12) >> 1;
    const std::uint64_t lastReachable = rangeShift + (searchRange > 0 ? searchRange - 1 : 0);
    if (segments == 0 || lastReachable >= segments) {
        r.fail();
        return 0;
    }
    if (!r.need(cmap, subtable, 16 + 8 * segments)) return 0;
    const std::uint64_t ends = subtable + 14;
    const std::uint64_t starts = ends + 2 * segments + 2;
    const std::uint64_t rangeOffsets = starts + 4 * segments;
    for (std::uint64_t i = 0; i < segments; ++i) {
        const std::uint32_t end = r.u16(cmap, ends + 2 * i);
        const std::uint32_t start = r.u16(cmap, starts + 2 * i);
        const std::uint32_t rangeOffset = r.u16(cmap, rangeOffsets + 2 * i);
        if (rangeOffset != 0 && start <= end) r.need(cmap, rangeOffsets + 2 * i + rangeOffset + 2 * (end - start), 2);
    }
    return r.ok() ? largestSegmentGlyph(r, cmap, subtable) : 0;
}

// The largest glyph id of a format 12 (consecutive) or 13 (many-to-one)
// subtable, for the code points text can hold.
std::uint64_t largestGroupGlyph(Reader& r, const Table& cmap, std::uint64_t subtable, bool consecutive) {
    const std::uint64_t groups = r.u32(cmap, subtable + 12);
    if (!r.need(cmap, subtable, 16 + 12 * groups)) return 0;
    std::uint64_t largest = 0;
    for (std::uint64_t i = 0; i < groups; ++i) {
        const std::uint64_t group = subtable + 16 + 12 * i;
        const std::uint64_t start = r.u32(cmap, group);
        const std::uint64_t end = std::min<std::uint64_t>(r.u32(cmap, group + 4), 0x10FFFF);
        const std::uint64_t glyph = r.u32(cmap, group + 8);
        // stb adds in 32 bits: a group that runs past the top wraps round,
        // having given the largest id there is on the way.
        if (start <= end) largest = std::max(largest, consecutive ? std::min<std::uint64_t>(glyph + end - start, 0xFFFFFFFF) : glyph);
    }
    return largest;
}

// The subtable stb picks (the last Unicode one) and what it reads there; the
// result is the largest glyph id it can give. stb stops at an assertion on
// formats it does not know, so those are refused.
std::uint64_t characterMapInside(Reader& r, const Table& cmap) {
    const std::uint32_t encodings = r.u16(cmap, 2);
    if (!r.need(cmap, 4, 8 * std::uint64_t{encodings})) return 0;
    std::uint64_t subtable = 0;
    bool found = false;
    for (std::uint32_t i = 0; i < encodings; ++i) {
        const std::uint64_t record = 4 + 8 * std::uint64_t{i};
        const std::uint32_t platform = r.u16(cmap, record);
        const std::uint32_t encoding = r.u16(cmap, record + 2);
        if (platform == STBTT_PLATFORM_ID_UNICODE ||
            (platform == STBTT_PLATFORM_ID_MICROSOFT &&
             (encoding == STBTT_MS_EID_UNICODE_BMP || encoding == STBTT_MS_EID_UNICODE_FULL))) {
            subtable = r.u32(cmap, record + 4);
            found = true;
        }
    }
    if (!found) return 0;  // stb refuses the font itself
    std::uint64_t largest = 0;
    switch (r.u16(cmap, subtable)) {
    case 0: {
        const std::uint64_t length = r.u16(cmap, subtable + 2);
        r.need(cmap, subtable, std::max<std::uint64_t>(6, length));
        for (std::uint64_t i = 6; i < length && r.ok(); ++i) largest = std::max<std::uint64_t>(largest, r.u8(cmap, subtable + i));
        return largest;
    }
    case 4:
        return segmentMappingInside(r, cmap, subtable);
    case 6: {
        const std::uint64_t count = r.u16(cmap, subtable + 8);
        r.need(cmap, subtable, 10 + 2 * count);
        for (std::uint64_t i = 0; i < count && r.ok(); ++i) largest = std::max<std::uint64_t>(largest, r.u16(cmap, subtable + 10 + 2 * i));
        return largest;
    }
    case 12:
    case 13:
        return largestGroupGlyph(r, cmap, subtable, r.u16(cmap, subtable) == 12);
    default:
        r.fail();
        return 0;
    }
}

// The first subtable of the old kern table, as stb reads it.
void kernPairsInside(Reader& r, const Table& kern) {
    if (r.u16(kern, 2) < 1 || r.u16(kern, 8) != 1) return;
    r.need(kern, 18, 6 * std::uint64_t{r.u16(kern, 10)});
}

// The largest index a coverage table can give, or -1 when stb finds none in it.
std::int64_t largestCoverageIndex(Reader& r, const Table& gpos, std::uint64_t coverage) {
    const std::uint32_t format = r.u16(gpos, coverage);
    const std::uint32_t count = r.u16(gpos, coverage + 2);
    if (format == 1) {
        r.need(gpos, coverage + 4, 2 * std::uint64_t{count});
        return std::int64_t{count} - 1;
    }
    if (format != 2 || !r.need(gpos, coverage + 4, 6 * std::uint64_t{count})) return -1;
    std::int64_t largest = -1;
    for (std::uint64_t i = 0; i < count; ++i) {
        const std::uint64_t range = coverage + 4 + 6 * i;
        const std::uint32_t start = r.u16(gpos, range);
        const std::uint32_t end = r.u16(gpos, range + 2);
        if (start <= end) largest = std::max<std::int64_t>(largest, std::int64_t{r.u16(gpos, range + 4)} + end - start);
    }
    return largest;
}

void classDefinitionInside(Reader& r, const Table& gpos, std::uint64_t classes) {
    const std::uint32_t format = r.u16(gpos, classes);
    if (format == 1) r.need(gpos, classes + 6, 2 * std::uint64_t{r.u16(gpos, classes + 4)});
    if (format == 2) r.need(gpos, classes + 4, 6 * std::uint64_t{r.u16(gpos, classes + 2)});
}

// stb kerns from GPOS pair adjustments (lookup type 2) with an x-advance-only
// value record, in either subtable format; everything it reads on the way.
void pairAdjustmentsInside(Reader& r, const Table& gpos) {
    if (!r.need(gpos, 0, 10) || r.u16(gpos, 0) != 1 || r.u16(gpos, 2) != 0) return;
    const std::uint64_t lookups = r.u16(gpos, 8);
    const std::uint32_t lookupCount = r.u16(gpos, lookups);
    for (std::uint64_t i = 0; i < lookupCount && r.ok(); ++i) {
        const std::uint64_t lookup = lookups + r.u16(gpos, lookups + 2 + 2 * i);
        if (!r.need(gpos, lookup, 6) || r.u16(gpos, lookup) != 2) continue;
        const std::uint32_t subtableCount = r.u16(gpos, lookup + 4);
        for (std::uint64_t s = 0; s < subtableCount && r.ok(); ++s) {
            const std::uint64_t subtable = lookup + r.u16(gpos, lookup + 6 + 2 * s);
            const std::uint32_t format = r.u16(gpos, subtable);
            const std::int64_t largest = largestCoverageIndex(r, gpos, subtable + r.u16(gpos, subtable + 2));
            if (largest < 0 || r.u16(gpos, subtable + 4) != 4 || r.u16(gpos, subtable + 6) != 0) continue;
            if (format == 1) {
                // stb reads the pair-set offset and its count before comparing
                // the index with the pair-set count.
                const std::uint32_t pairSets = r.u16(gpos, subtable + 8);
                for (std::int64_t index = 0; index <= largest && r.ok(); ++index) {
                    const std::uint64_t pairSet =
                        subtable + r.u16(gpos, subtable + 10 + 2 * static_cast<std::uint64_t>(index));
                    const std::uint32_t pairs = r.u16(gpos, pairSet);
                    if (index < std::int64_t{pairSets}) r.need(gpos, pairSet + 2, 4 * std::uint64_t{pairs});
                }
            } else if (format == 2) {
                classDefinitionInside(r, gpos, subtable + r.u16(gpos, subtable + 8));
                classDefinitionInside(r, gpos, subtable + r.u16(gpos, subtable + 10));
                const std::uint64_t class1Count = r.u16(gpos, subtable + 12);
                const std::uint64_t class2Count = r.u16(gpos, subtable + 14);
                r.need(gpos, subtable + 16, 2 * class1Count * class2Count);
            }
        }
    }
}

// What stb makes of one glyph's outline: a bound on its vertex count and on
// the size of its coordinates, and the glyphs it is composed of.
struct Outline {
    std::uint64_t vertices = 0;
    double largestCoordinate = 0;
    struct Component {
        std::uint32_t glyph;
        double scaleX;  // |x| of a transformed point is at most scaleX * largest + offsetX
        double offsetX;
        double scaleY;
        double offsetY;
    };
    std::vector<Component> components;
};

// A simple glyph, inside its own data: contour ends, instructions, flags and
// coordinates. stb reads the point after a contour's off-curve first point,
// one past its buffer when that is the glyph's last point.
void simpleOutlineInside(Reader& r, const Table& glyph, std::uint64_t contours, std::vector<std::uint8_t>& flags,
                         Outline& outline) {
    const std::uint64_t points = std::uint64_t{r.u16(glyph, 10 + 2 * contours - 2)} + 1;
    std::uint64_t at = 10 + 2 * contours + 2 + r.u16(glyph, 10 + 2 * contours);
    flags.resize(points);
    for (std::uint64_t i = 0; i < points && r.ok();) {
        const auto flag = static_cast<std::uint8_t>(r.u8(glyph, at++));
        std::uint64_t repeat = (flag & 8) ? 1 + std::uint64_t{r.u8(glyph, at++)} : 1;
        for (; repeat > 0 && i < points; --repeat) flags[i++] = flag;
    }
    // x then y, each a byte (bits 2 and 4 with their signs in bits 16 and 32),
    // nothing (the same as before), or a 16-bit delta. stb keeps each as 16 bits.
    for (const int axis : {0, 1}) {
        const std::uint8_t shortBit = axis == 0 ? 2 : 4;
        const std::uint8_t sameBit = axis == 0 ? 16 : 32;
        std::int32_t value = 0;
        for (std::uint64_t i = 0; i < points && r.ok(); ++i) {
            if (flags[i] & shortBit) {
                const auto delta = static_cast<std::int32_t>(r.u8(glyph, at++));
                value += (flags[i] & sameBit) ? delta : -delta;
            } else if (!(flags[i] & sameBit)) {
                value += static_cast<std::int16_t>(r.u16(glyph, at));
                at += 2;
            }
            const double stored = static_cast<std::int16_t>(value);
            outline.largestCoordinate = std::max(outline.largestCoordinate, std::abs(stored));
        }
    }
    std::uint64_t nextContour = 0;
    for (std::uint64_t i = 0, contour = 0; i < points && r.ok(); ++i) {
        if (i != nextContour) continue;
        if (!(flags[i] & 1)) {
            if (i + 1 >= points) return r.fail();
            if (flags[i + 1] & 1) ++i;
        }
        nextContour = 1 + std::uint64_t{r.u16(glyph, 10 + 2 * contour++)};
    }
    outline.vertices = points + 2 * contours;
}

// A composite glyph's component records, inside its own data. stb asserts on
// components placed by matching points instead of offsets.
void compositeOutlineInside(Reader& r, const Table& glyph, Outline& outline) {
    std::uint64_t at = 10;
    for (bool more = true; more && r.ok();) {
        const std::uint32_t flags = r.u16(glyph, at);
        const std::uint32_t component = r.u16(glyph, at + 2);
        at += 4;
        if (!(flags & 2)) return r.fail();
        double dx = 0;
        double dy = 0;
        if (flags & 1) {
            dx = static_cast<std::int16_t>(r.u16(glyph, at));
            dy = static_cast<std::int16_t>(r.u16(glyph, at + 2));
            at += 4;
        } else {
            dx = static_cast<std::int8_t>(r.u8(glyph, at));
            dy = static_cast<std::int8_t>(r.u8(glyph, at + 1));
            at += 2;
        }
        auto fixed = [&](std::uint64_t offset) { return static_cast<std::int16_t>(r.u16(glyph, offset)) / 16384.0; };
        double a = 1, b = 0, c = 0, d = 1;
        if (flags & 8) {
            a = d = fixed(at);
            at += 2;
        } else if (flags & 64) {
            a = fixed(at);
            d = fixed(at + 2);
            at += 4;
        } else if (flags & 128) {
            a = fixed(at);
            b = fixed(at + 2);
            c = fixed(at + 4);
            d = fixed(at + 6);
            at += 8;
        }
        // stb scales x by |(a, b)| and y by |(c, d)| on top of the matrix.
        const double m = std::sqrt(a * a + b * b);
        const double n = std::sqrt(c * c + d * d);
        outline.components.push_back({component, m * (std::abs(a) + std::abs(c)), m * std::abs(dx),
                                      n * (std::abs(b) + std::abs(d)), n * std::abs(dy)});
        more = flags & 32;
    }
}

// stb builds a composite by calling itself for each component: a cycle, or
// nesting deeper than real fonts go, would run it out of stack, and
// components used many times over can multiply the vertices beyond what
// rasterising can get through (real glyphs have a few thousand at most). Its
// transformed coordinates go back into 16 bits, so they must fit.
constexpr std::uint64_t deepestNesting = 32;
constexpr std::uint64_t mostVertices = 1 << 18;

void compositesSound(Reader& r, std::vector<Outline>& outlines) {
    enum class State : std::uint8_t { unseen, open, done };
    std::vector<State> state(outlines.size(), State::unseen);
    std::vector<std::uint64_t> depth(outlines.size(), 0);
    std::vector<std::pair<std::size_t, std::size_t>> stack;  // glyph, next component
    for (std::size_t root = 0; root < outlines.size() && r.ok(); ++root) {
        if (state[root] != State::unseen) continue;
        stack.emplace_back(root, 0);
        state[root] = State::open;
        while (!stack.empty() && r.ok()) {
            auto& [glyph, next] = stack.back();
            Outline& outline = outlines[glyph];
            if (next < outline.components.size()) {
                const std::uint32_t component = outline.components[next++].glyph;
                if (component >= outlines.size()) continue;  // stb draws nothing for it
                if (state[component] == State::open) return r.fail();
                if (state[component] == State::unseen) {
                    state[component] = State::open;
                    stack.emplace_back(component, 0);
                }
                continue;
            }
            for (const Outline::Component& part : outline.components) {
                if (part.glyph >= outlines.size()) continue;
                const Outline& used = outlines[part.glyph];
                depth[glyph] = std::max(depth[glyph], depth[part.glyph] + 1);
                outline.vertices += used.vertices;
                outline.largestCoordinate =
                    std::max({outline.largestCoordinate, part.scaleX * used.largestCoordinate + part.offsetX,
                              part.scaleY * used.largestCoordinate + part.offsetY});
            }
            if (depth[glyph] > deepestNesting || outline.vertices > mostVertices ||
                outline.largestCoordinate >= 32767)
                return r.fail();
            state[glyph] = State::done;
            stack.pop_back();
        }
    }
}

// Every loca entry stb can read points inside glyf, and every glyph's outline
// lies inside its own data, as stb will read it.
void glyphOutlinesInside(Reader& r, const Table& head, const Table& loca, const Table& glyf,
                         std::uint64_t glyphCount) {
    const std::uint32_t format = r.u16(head, 50);
    if (format >= 2) return;  // stb then reads no outlines at all
    const std::uint64_t entrySize = format == 0 ? 2 : 4;
    if (!r.need(loca, 0, (glyphCount + 1) * entrySize)) return;
    auto location = [&](std::uint64_t i) -> std::uint64_t {
        return format == 0 ? 2 * std::uint64_t{r.u16(loca, 2 * i)} : r.u32(loca, 4 * i);
    };
    std::vector<Outline> outlines(glyphCount);
    std::vector<std::uint8_t> flags;  // one buffer for every glyph's point flags
    std::uint64_t start = location(0);
    for (std::uint64_t i = 0; i < glyphCount && r.ok(); ++i) {
        const std::uint64_t end = location(i + 1);
        if (end > glyf.length) return r.fail();
        if (start != end) {
            // stb reads from the glyph's start on, whatever the next entry says.
            if (end < start + 10) return r.fail();
            const Table glyph{glyf.offset + start, end - start, true};
            const auto contours = static_cast<std::int16_t>(r.u16(glyph, 0));
            if (contours > 0) simpleOutlineInside(r, glyph, static_cast<std::uint64_t>(contours), flags, outlines[i]);
            if (contours < 0) compositeOutlineInside(r, glyph, outlines[i]);
        }
        start = end;
    }
    compositesSound(r, outlines);
}

}  // namespace

bool fontTablesInside(const std::uint8_t* data, std::size_t size, int fontStart, CompactOutlines* deferred) {
    Reader r(data, size);
    const Table cmap = r.table(fontStart, "cmap");
    const Table head = r.table(fontStart, "head");
    const Table hhea = r.table(fontStart, "hhea");
    const Table hmtx = r.table(fontStart, "hmtx");
    const Table maxp = r.table(fontStart, "maxp");
    const Table loca = r.table(fontStart, "loca");
    const Table glyf = r.table(fontStart, "glyf");
    const Table cff = r.table(fontStart, "CFF ");
    const Table kern = r.table(fontStart, "kern");
    const Table gpos = r.table(fontStart, "GPOS");
    if (!r.ok() || !cmap.present || !head.present || !hhea.present || !hmtx.present) return false;

    // head: the em size (an em of 0 units makes every scale infinite) and
    // the loca format. hhea: the vertical metrics and the count of long
    // horizontal metrics, which hmtx must hold (stb reads the last one for
    // every glyph beyond them).
    r.need(head, 0, 54);
    if (r.u16(head, 18) == 0) return false;
    r.need(hhea, 0, 36);
    const std::uint32_t longMetrics = r.u16(hhea, 34);
    if (longMetrics == 0) return false;
    r.need(hmtx, 0, 4 * std::uint64_t{longMetrics});
    const std::uint64_t glyphCount = maxp.present ? r.u16(maxp, 4) : 0xFFFF;

    // stb takes glyph ids as ints: one beyond them would index tables
    // backwards.
    const std::uint64_t largestMappedGlyph = characterMapInside(r, cmap);
    if (largestMappedGlyph > INT_MAX) return false;
    if (kern.present) kernPairsInside(r, kern);
    if (gpos.present) pairAdjustmentsInside(r, gpos);
    if (glyf.present) {
        if (!loca.present) return false;
        glyphOutlinesInside(r, head, loca, glyf, glyphCount);
    } else {
        if (!cff.present) return false;
        // stb looks up a CFF glyph's charstring by id without a check, so the
        // character map may only give glyphs that have one, and so must every
        // glyph the face counts: the shaper's substitutions can name any.
        if (compactFontGlyphs(r, cff, deferred) < std::max(largestMappedGlyph + 1, glyphCount)) return false;
    }
    return r.ok();
}

}  // namespace plakard
