#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <type_traits>
#include <vector>

#include "platform/PlakardError.hpp"
#include "support/TestSupport.hpp"
#include "type/Font.hpp"
#include "type/TestFonts.hpp"

namespace plakard {
namespace {

using test::TempDir;

static_assert(!std::is_copy_constructible_v<Font> && !std::is_move_constructible_v<Font>,
              "stb's record points into the Font's own storage");

std::string loadFailure(const std::filesystem::path& path) {
    try {
        Font::load(path);
    } catch (const PlakardError& error) {
        return error.description;
    }
    return "(loaded)";
}

std::string notAFont(const std::string& name) {
    return name + " is not a TrueType or OpenType font, or is truncated";
}

std::filesystem::path writeFile(const TempDir& dir, const std::string& name, std::span<const std::uint8_t> bytes) {
    std::filesystem::path path = dir / name;
    test::writeBytes(path, bytes);
    return path;
}

std::int16_t signed16(std::uint32_t value) { return static_cast<std::int16_t>(static_cast<std::uint16_t>(value)); }

struct FaceCase {
    std::filesystem::path path;
    double unitsPerEm;  // through stb's single-precision scale: exact only for powers of two
    double tolerance;
};

TEST(FontLoad, KeepsTheFacesVerticalMetricsAndItsFileName) {
    const FaceCase cases[] = {
        {test::dejaVuSansBold, 2048.0, 0.0},
        {test::notoSansMono, 999.999952502551, 5e-13},
        {test::interBlack, 2815.99991607666, 5e-12},
        {test::liberationSansBold, 2048.0, 0.0},
    };
    for (const FaceCase& c : cases) {
        SCOPED_TRACE(c.path);
        const std::vector<std::uint8_t> bytes = test::fileBytes(c.path);
        const std::uint32_t hhea = test::tableRecord(bytes, "hhea").offset;
        auto font = Font::load(c.path);
        EXPECT_NEAR(font->unitsPerEm, c.unitsPerEm, c.tolerance);
        EXPECT_EQ(font->ascentUnits, signed16(test::bigEndian16At(bytes, hhea + 4)));
        EXPECT_EQ(font->descentUnits, signed16(test::bigEndian16At(bytes, hhea + 6)));
        EXPECT_EQ(font->name, c.path.filename().string());
        EXPECT_EQ(font->storageSize, bytes.size());
        EXPECT_EQ(std::memcmp(font->storage.get(), bytes.data(), bytes.size()), 0);
    }
}

TEST(FontLoad, TakesTheFirstFaceOfACollectionAndKeepsTheCollectionsName) {
    const std::vector<std::uint8_t> bytes = test::fileBytes(test::wqyMicroHei);
    ASSERT_EQ(std::string(bytes.begin(), bytes.begin() + 4), "ttcf");
    const std::uint32_t firstFace = test::bigEndian32At(bytes, 12);
    const std::vector<std::uint8_t> face(bytes.begin() + firstFace, bytes.end());
    const std::uint32_t hhea = test::tableRecord(face, "hhea").offset;  // offsets count from the file's start

    auto font = Font::load(test::wqyMicroHei);
    EXPECT_EQ(font->name, "wqy-microhei.ttc");
    EXPECT_EQ(font->unitsPerEm, 2048.0);
    EXPECT_EQ(font->ascentUnits, signed16(test::bigEndian16At(bytes, hhea + 4)));
    EXPECT_EQ(font->info.fontstart, static_cast<int>(firstFace));
}

TEST(FontLoad, RefusesFilesThatAreNotFonts) {
    // A complete 1 x 1 PNG, renamed.
    const std::vector<std::uint8_t> png = {
        0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A, 0x00, 0x00, 0x00, 0x0D, 0x49, 0x48, 0x44, 0x52,
        0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x01, 0x08, 0x06, 0x00, 0x00, 0x00, 0x1F, 0x15, 0xC4,
        0x89, 0x00, 0x00, 0x00, 0x0D, 0x49, 0x44, 0x41, 0x54, 0x78, 0x9C, 0x63, 0xF8, 0xCF, 0xC0, 0xF0,
        0x1F, 0x00, 0x05, 0x00, 0x01, 0xFF, 0x56, 0xC7, 0x2F, 0x0D, 0x00, 0x00, 0x00, 0x00, 0x49, 0x45,
        0x4E, 0x44, 0xAE, 0x42, 0x60, 0x82};
    const std::vector<std::uint8_t> dejaVu = test::fileBytes(test::dejaVuSansBold);
    const struct {
        const char* name;
        std::vector<std::uint8_t> bytes;
        std::string message;
    } cases[] = {
        {"empty.ttf", {}, "empty.ttf is too small to be a font"},
        {"eleven.ttf", {dejaVu.begin(), dejaVu.begin() + 11}, "eleven.ttf is too small to be a font"},
        // Twelve bytes pass the size test and are judged as a font.
        {"twelve.ttf", {dejaVu.begin(), dejaVu.begin() + 12}, notAFont("twelve.ttf")},
        {"picture.ttf", png, notAFont("picture.ttf")},
        {"zeros.ttf", std::vector<std::uint8_t>(12, 0), notAFont("zeros.ttf")},
        {"header.ttc", {'t', 't', 'c', 'f', 0, 1, 0, 0, 0, 0, 0, 1}, notAFont("header.ttc")},
        {"past.ttc", {'t', 't', 'c', 'f', 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 16}, notAFont("past.ttc")},
    };
    TempDir dir;
    for (const auto& c : cases) EXPECT_EQ(loadFailure(writeFile(dir, c.name, c.bytes)), c.message);
}

TEST(FontLoad, RefusesFontsCutShortInsideTheirTableDirectory) {
    TempDir dir;
    for (const std::filesystem::path& source : {test::dejaVuSansBold, test::interBlack, test::notoSansMono}) {
        const std::vector<std::uint8_t> bytes = test::fileBytes(source);
        const std::size_t directoryEnd = 12 + 16 * std::size_t{test::bigEndian16At(bytes, 4)};
        for (std::size_t length : {std::size_t{12}, std::size_t{13}, std::size_t{27}, std::size_t{28},
                                   directoryEnd / 2, directoryEnd - 1}) {
            SCOPED_TRACE(source.string() + " cut to " + std::to_string(length));
            EXPECT_EQ(loadFailure(writeFile(dir, "cut.ttf", std::span(bytes).first(length))), notAFont("cut.ttf"));
        }
    }
    // A collection cut inside its first face's directory.
    const std::vector<std::uint8_t> collection = test::fileBytes(test::wqyMicroHei);
    const std::size_t firstFace = test::bigEndian32At(collection, 12);
    for (std::size_t length : {std::size_t{14}, firstFace + 11, firstFace + 12, firstFace + 100}) {
        SCOPED_TRACE("collection cut to " + std::to_string(length));
        EXPECT_EQ(loadFailure(writeFile(dir, "cut.ttc", std::span(collection).first(length))), notAFont("cut.ttc"));
    }
}

}  // namespace
}  // namespace plakard
