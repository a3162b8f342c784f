#include "type/FontTables.hpp"

#include <algorithm>
#include <cstring>

namespace plakard {

namespace {

struct Table {
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
    bool present = false;
};

// Reads big-endian numbers from tables; a read or a check outside the table
// marks the font bad for good and reads as 0, so a walk can go on without
// testing every step and is judged once at the end.
class Reader {
public:
    Reader(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    bool ok() const { return ok_; }
    void fail() { ok_ = false; }

    // The table as stb finds it: the first directory entry with the tag; an
    // entry with offset 0 counts as missing, as it does for stb.
    Table table(int fontStart, const char* tag) {
        const std::uint64_t directory = static_cast<std::uint64_t>(fontStart);
        const std::uint32_t count = read16(directory + 4);
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::uint64_t record = directory + 12 + 16 * std::uint64_t{i};
            if (std::memcmp(data_ + record, tag, 4) != 0) continue;
            Table found{read32(record + 8), read32(record + 12), true};
            if (found.offset == 0) return {};
            if (found.offset + found.length > size_) fail();
            return found;
        }
        return {};
    }

    bool need(const Table& table, std::uint64_t at, std::uint64_t count) {
        if (at > table.length || count > table.length - at) fail();
        return ok_;
    }
    std::uint32_t u16(const Table& table, std::uint64_t at) {
        return need(table, at, 2) ? read16(table.offset + at) : 0;
    }
    std::uint32_t u32(const Table& table, std::uint64_t at) {
        return need(table, at, 4) ? read32(table.offset + at) : 0;
    }

private:
    std::uint32_t read16(std::uint64_t at) const { return (std::uint32_t{data_[at]} << 8) | data_[at + 1]; }
    std::uint32_t read32(std::uint64_t at) const { return (read16(at) << 16) | read16(at + 2); }

    const std::uint8_t* data_;
    std::size_t size_;
    bool ok_ = true;
};

// Format 4's binary search is steered by searchRange, entrySelector and
// rangeShift from the file; they must keep it inside the segment arrays, and
// every glyph-id array a segment points to must end inside cmap.
void segmentMappingInside(Reader& r, const Table& cmap, std::uint64_t subtable) {
    const std::uint64_t segments = r.u16(cmap, subtable + 6) >> 1;
    const std::uint64_t searchRange = r.u16(cmap, subtable + 8) >> 1;
    const std::uint64_t rangeShift = r.u16(cmap, subtable + 12) >> 1;
    const std::uint64_t lastReachable = rangeShift + (searchRange > 0 ? searchRange - 1 : 0);
    if (segments == 0 || lastReachable >= segments) return r.fail();
    if (!r.need(cmap, subtable, 16 + 8 * segments)) return;
    const std::uint64_t ends = subtable + 14;
    const std::uint64_t starts = ends + 2 * segments + 2;
    const std::uint64_t rangeOffsets = starts + 4 * segments;
    for (std::uint64_t i = 0; i < segments; ++i) {
        const std::uint32_t end = r.u16(cmap, ends + 2 * i);
        const std::uint32_t start = r.u16(cmap, starts + 2 * i);
        const std::uint32_t rangeOffset = r.u16(cmap, rangeOffsets + 2 * i);
        if (rangeOffset != 0 && start <= end) r.need(cmap, rangeOffsets + 2 * i + rangeOffset + 2 * (end - start), 2);
    }
}

// The subtable stb picks (the last Unicode one) and what it reads there. stb
// stops at an assertion on formats it does not know, so those are refused.
void characterMapInside(Reader& r, const Table& cmap) {
    const std::uint32_t encodings = r.u16(cmap, 2);
    if (!r.need(cmap, 4, 8 * std::uint64_t{encodings})) return;
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
    if (!found) return;  // stb refuses the font itself
    switch (r.u16(cmap, subtable)) {
    case 0:
        r.need(cmap, subtable, std::max<std::uint64_t>(6, r.u16(cmap, subtable + 2)));
        break;
    case 4:
        segmentMappingInside(r, cmap, subtable);
        break;
    case 6:
        r.need(cmap, subtable, 10 + 2 * std::uint64_t{r.u16(cmap, subtable + 8)});
        break;
    case 12:
    case 13:
        r.need(cmap, subtable, 16 + 12 * std::uint64_t{r.u32(cmap, subtable + 12)});
        break;
    default:
        r.fail();
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

// Every loca entry stb can read points inside glyf, with room for the glyph
// header wherever a glyph is not empty.
void glyphLocationsInside(Reader& r, const Table& head, const Table& loca, const Table& glyf,
                          std::uint64_t glyphCount) {
    const std::uint32_t format = r.u16(head, 50);
    if (format >= 2) return;  // stb then reads no outlines at all
    const std::uint64_t entrySize = format == 0 ? 2 : 4;
    if (!r.need(loca, 0, (glyphCount + 1) * entrySize)) return;
    auto location = [&](std::uint64_t i) -> std::uint64_t {
        return format == 0 ? 2 * std::uint64_t{r.u16(loca, 2 * i)} : r.u32(loca, 4 * i);
    };
    std::uint64_t start = location(0);
    for (std::uint64_t i = 0; i < glyphCount; ++i) {
        const std::uint64_t end = location(i + 1);
        if (start != end) r.need(glyf, start, 10);
        if (end > glyf.length) return r.fail();
        start = end;
    }
}

}  // namespace

bool fontTablesInside(const std::uint8_t* data, std::size_t size, int fontStart) {
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

    characterMapInside(r, cmap);
    if (kern.present) kernPairsInside(r, kern);
    if (gpos.present) pairAdjustmentsInside(r, gpos);
    if (glyf.present) {
        if (!loca.present) return false;
        glyphLocationsInside(r, head, loca, glyf, glyphCount);
    } else {
        if (!cff.present) return false;
        r.need(cff, 0, 4);
    }
    return r.ok();
}

bool cffIndexesInside(const stbtt_fontinfo& info, const std::uint8_t* data, std::size_t size, int fontStart) {
    Reader r(data, size);
    const Table glyf = r.table(fontStart, "glyf");
    const Table cff = r.table(fontStart, "CFF ");
    if (glyf.present || !cff.present) return r.ok();
    const std::uint8_t* begin = data + cff.offset;
    const std::uint8_t* end = begin + cff.length;
    for (const stbtt__buf& index : {info.charstrings, info.gsubrs, info.subrs, info.fontdicts, info.fdselect}) {
        if (index.data == nullptr || index.size == 0) continue;
        if (index.data < begin || index.size < 0 || index.size > end - index.data) return false;
    }
    return true;
}

}  // namespace plakard
