#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/PlakardError.hpp"
#include "raster/Canvas.hpp"
#include "support/TestSupport.hpp"
#include "type/Font.hpp"
#include "type/TestFonts.hpp"

namespace plakard {
namespace {

using Bytes = std::vector<std::uint8_t>;

void put16(Bytes& bytes, std::size_t offset, std::uint32_t value) {
    bytes[offset] = static_cast<std::uint8_t>(value >> 8);
    bytes[offset + 1] = static_cast<std::uint8_t>(value);
}

// Loads the bytes from a file; "loaded" or the failure's text.
std::string loadOutcome(const Bytes& bytes) {
    test::TempDir dir;
    test::writeBytes(dir / "face.ttf", bytes);
    try {
        Font::load(dir / "face.ttf");
        return "loaded";
    } catch (const PlakardError& error) {
        return error.description;
    }
}

const std::string refused = "face.ttf is not a TrueType or OpenType font, or is truncated";

struct Damage {
    const char* what;
    std::function<void(Bytes&)> apply;
};

void expectRefused(const std::filesystem::path& font, const std::vector<Damage>& damages) {
    const Bytes original = test::fileBytes(font);
    ASSERT_EQ(loadOutcome(original), "loaded");
    for (const Damage& damage : damages) {
        Bytes bytes = original;
        damage.apply(bytes);
        EXPECT_EQ(loadOutcome(bytes), refused) << damage.what;
    }
}

// A prefix that ends one byte before the table does.
Damage cutInside(const std::string& tag) {
    return {"cut inside a table", [tag](Bytes& bytes) {
                const test::TableRecord table = test::tableRecord(bytes, tag);
                bytes.resize(table.offset + table.length - 1);
            }};
}

// The face's table at another offset or with another length in the directory.
Damage moved(const std::string& tag, std::uint32_t offset, std::uint32_t length) {
    return {"table moved", [=](Bytes& bytes) {
                const test::TableRecord table = test::tableRecord(bytes, tag);
                test::putBigEndian32(bytes, table.recordOffset + 8, offset);
                test::putBigEndian32(bytes, table.recordOffset + 12, length);
            }};
}

Damage shortened(const std::string& tag, std::uint32_t length) {
    return {"table shortened", [=](Bytes& bytes) {
                const test::TableRecord table = test::tableRecord(bytes, tag);
                test::putBigEndian32(bytes, table.recordOffset + 12, length);
            }};
}

Damage field16(const std::string& tag, std::size_t at, std::uint32_t value) {
    return {"field changed", [=](Bytes& bytes) { put16(bytes, test::tableRecord(bytes, tag).offset + at, value); }};
}

TEST(FontTables, RefusesTrueTypeFacesWhoseTablesStbReadsAreCutOrMisplaced) {
    std::vector<Damage> damages;
    for (const char* tag : {"cmap", "head", "hhea", "hmtx", "loca", "glyf", "kern", "GPOS", "maxp"})
        damages.push_back(cutInside(tag));
    const std::uint32_t size = static_cast<std::uint32_t>(test::fileBytes(test::dejaVuSansBold).size());
    damages.push_back(moved("head", size - 10, 54));
    damages.push_back(moved("hhea", 0xFFFFFFF0, 0x20));  // offset + length wraps in 32 bits
    damages.push_back(shortened("head", 50));
    damages.push_back(shortened("hmtx", 100));
    damages.push_back(shortened("GPOS", 9));
    damages.push_back(field16("head", 18, 0));   // an em of 0 units
    damages.push_back(field16("hhea", 34, 0));   // no long horizontal metrics
    damages.push_back(field16("kern", 10, 0xFFFF));  // more kerning pairs than the table holds
    damages.push_back({"loca entry beyond glyf", [](Bytes& bytes) {
                           // DejaVu's loca holds 32-bit offsets.
                           const std::uint32_t glyfLength = test::tableRecord(bytes, "glyf").length;
                           test::putBigEndian32(bytes, test::tableRecord(bytes, "loca").offset + 4 * 7, glyfLength + 4);
                       }});
    damages.push_back({"a cmap format stb cannot read", [](Bytes& bytes) {
                           const std::uint32_t cmap = test::tableRecord(bytes, "cmap").offset;
                           const std::uint32_t records = test::bigEndian16At(bytes, cmap + 2);
                           const std::uint32_t chosen = test::bigEndian32At(bytes, cmap + 4 + 8 * (records - 1) + 4);
                           put16(bytes, cmap + chosen, 2);
                       }});
    expectRefused(test::dejaVuSansBold, damages);
}

// DejaVu's last Unicode cmap subtable is format 12; hiding the format 12
// records makes stb use the format 4 one.
void useSegmentMapping(Bytes& bytes) {
    const std::uint32_t cmap = test::tableRecord(bytes, "cmap").offset;
    const std::uint32_t records = test::bigEndian16At(bytes, cmap + 2);
    for (std::uint32_t i = 0; i < records; ++i) {
        const std::size_t record = cmap + 4 + 8 * i;
        const std::uint32_t subtable = test::bigEndian32At(bytes, record + 4);
        if (test::bigEndian16At(bytes, cmap + subtable) == 12) put16(bytes, record, 1);  // Macintosh: ignored
    }
}

TEST(FontTables, RefusesSegmentMappingsThatSteerTheSearchOutside) {
    Bytes bytes = test::fileBytes(test::dejaVuSansBold);
    useSegmentMapping(bytes);
    ASSERT_EQ(loadOutcome(bytes), "loaded");
    const std::uint32_t cmap = test::tableRecord(bytes, "cmap").offset;
    const std::uint32_t subtable = cmap + test::bigEndian32At(bytes, cmap + 4 + 8 * 3 + 4);  // (3, 1)
    ASSERT_EQ(test::bigEndian16At(bytes, subtable), 4u);
    const std::uint32_t segments = test::bigEndian16At(bytes, subtable + 6) / 2;

    Bytes searchBeyond = bytes;
    put16(searchBeyond, subtable + 12, 0xFFFE);  // rangeShift
    EXPECT_EQ(loadOutcome(searchBeyond), refused);

    Bytes glyphIdsBeyond = bytes;
    put16(glyphIdsBeyond, subtable + 16 + 6 * segments, 0xFFF0);  // first segment's idRangeOffset
    EXPECT_EQ(loadOutcome(glyphIdsBeyond), refused);
}

TEST(FontTables, RefusesOpenTypeFacesWhoseTablesStbReadsAreCutOrMisplaced) {
    const std::uint32_t size = static_cast<std::uint32_t>(test::fileBytes(test::interBlack).size());
    std::vector<Damage> damages;
    for (const char* tag : {"cmap", "head", "hhea", "hmtx", "GPOS", "CFF "}) damages.push_back(cutInside(tag));
    damages.push_back(moved("CFF ", size - 2, 2));
    damages.push_back(shortened("CFF ", 1000));  // its charstrings now lie outside it
    damages.push_back(field16("GPOS", 8, 0xFFF0));  // the lookup list beyond the table
    expectRefused(test::interBlack, damages);
}

// Under AddressSanitizer this proves that no prefix of a real face makes stb
// read past the end: each one is refused or measures and draws in bounds.
TEST(FontTables, NoPrefixOfARealFaceIsReadPastItsEnd) {
    for (const std::filesystem::path& path : {test::dejaVuSansBold, test::interBlack, test::notoSansMono}) {
        const Bytes bytes = test::fileBytes(path);
        test::TempDir dir;
        for (std::size_t step = 1; step < 48; ++step) {
            const std::size_t length = bytes.size() * step / 48;
            test::writeBytes(dir / "cut.ttf", std::span(bytes).first(length));
            try {
                auto font = Font::load(dir / "cut.ttf");
                Canvas canvas(64, 64, RGBA{0, 0, 0, 255});
                font->drawLine("AVg", canvas, {255, 255, 255, 255}, 2.0, 40.0, 30.0 / font->unitsPerEm);
                EXPECT_GT(font->advanceUnits("AV"), 0.0);
            } catch (const PlakardError& error) {
                EXPECT_EQ(error.description, "cut.ttf is not a TrueType or OpenType font, or is truncated");
            }
        }
    }
}

}  // namespace
}  // namespace plakard
