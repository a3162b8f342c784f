#include <cstdint>
#include <cstring>
#include <system_error>
#include <utility>

#include <hb.h>

#include "platform/Files.hpp"
#include "platform/Paths.hpp"
#include "platform/PlakardError.hpp"
#include "type/FontFace.hpp"
#include "type/FontTables.hpp"

namespace plakard {

namespace {

std::uint32_t bigEndian16(const std::uint8_t* bytes) { return (std::uint32_t{bytes[0]} << 8) | bytes[1]; }

std::string absoluteText(const std::filesystem::path& path) {
    std::error_code ignored;
    std::filesystem::path absolute = std::filesystem::absolute(path, ignored);
    return (absolute.empty() ? path : absolute).string();
}

// stb_truetype trusts the offsets it reads, so everything it will look at
// first is checked here: the collection header (for a "ttcf" file face i's
// offset sits in the four bytes from 12 + 4i) and the table directory.
bool collectionHeaderInside(const std::uint8_t* data, std::size_t size, int faceIndex) {
    if (std::memcmp(data, "ttcf", 4) != 0) return faceIndex == 0;
    return faceIndex >= 0 && size >= 16 + 4 * static_cast<std::uint64_t>(faceIndex);
}

bool tableDirectoryInside(const std::uint8_t* data, std::size_t size, int offset) {
    const std::uint64_t start = static_cast<std::uint64_t>(offset);
    std::uint64_t end = start + 12;
    if (size >= end) end += 16 * std::uint64_t{bigEndian16(data + start + 4)};
    return end <= size;
}

PlakardError notAFont(const std::string& fileName) {
    return PlakardError(fileName + " is not a TrueType or OpenType font, or is truncated");
}

}  // namespace

Font::Font() : face_(std::make_unique<Face>()) {}

Font::~Font() = default;

std::shared_ptr<const Font> Font::load(const std::filesystem::path& path, int faceIndex, OutlineCheck check) {
    FileRead read = readFile(path);
    if (!read.ok()) throw PlakardError("cannot read font " + absoluteText(path) + ": " + read.error);
    // The bytes read become the face's own: a CJK collection is 19 MB, and
    // copying it doubled the page faults of loading it.
    return fromBytes(std::move(read.bytes), lastComponent(path), faceIndex, check);
}

std::shared_ptr<const Font> Font::fromData(std::span<const std::uint8_t> bytes, const std::string& fileName,
                                           int faceIndex, OutlineCheck check) {
    return fromBytes(std::vector<std::uint8_t>(bytes.begin(), bytes.end()), fileName, faceIndex, check);
}

std::shared_ptr<const Font> Font::fromBytes(std::vector<std::uint8_t> bytes, const std::string& fileName,
                                            int faceIndex, OutlineCheck check) {
    if (bytes.size() < 12) throw PlakardError(fileName + " is too small to be a font");
    // The Font is created in place and never moves: info will point into storage.
    std::shared_ptr<Font> font(new Font());
    Face& face = *font->face_;
    face.storage = std::move(bytes);

    const std::uint8_t* data = face.storage.data();
    const std::size_t size = face.storage.size();
    const int offset = collectionHeaderInside(data, size, faceIndex) ? stbtt_GetFontOffsetForIndex(data, faceIndex) : -1;
    CompactOutlines* deferred = check == OutlineCheck::asUsed ? &face.uncheckedOutlines : nullptr;
    if (offset < 0 || !tableDirectoryInside(data, size, offset) || !fontTablesInside(data, size, offset, deferred) ||
        stbtt_InitFont(&face.info, data, offset) == 0) {
        font.reset();
        throw notAFont(fileName);
    }
    if (face.uncheckedOutlines.deferred()) face.glyphChecked.assign(face.uncheckedOutlines.glyphCount(), 0);
    if (size <= UINT32_MAX) {
        // HarfBuzz reads the same bytes stb_truetype does; nothing is copied.
        const Owned<hb_blob_t, hb_blob_destroy> blob(hb_blob_create(reinterpret_cast<const char*>(data),
                                                                    static_cast<unsigned>(size),
                                                                    HB_MEMORY_MODE_READONLY, nullptr, nullptr));
        face.shaperFace.reset(hb_face_create(blob.get(), static_cast<unsigned>(faceIndex)));
        face.shaperFont.reset(hb_font_create(face.shaperFace.get()));
        face.shaperUnitsPerEm = static_cast<int>(hb_face_get_upem(face.shaperFace.get()));
        hb_font_set_scale(face.shaperFont.get(), face.shaperUnitsPerEm, face.shaperUnitsPerEm);
    }

    int ascent = 0;
    int descent = 0;
    int lineGap = 0;
    stbtt_GetFontVMetrics(&face.info, &ascent, &descent, &lineGap);
    font->ascentUnits = ascent;
    font->descentUnits = descent;
    // Deliberately through stb's single-precision scale: an em of 1000 gives
    // 999.999952502551, and every headline size is computed from that value.
    font->unitsPerEm = 1.0 / static_cast<double>(stbtt_ScaleForMappingEmToPixels(&face.info, 1.0f));
    font->name = fileName;
    return font;
}

void requireSoundGlyph(const Font& font, int glyph) {
    const Font::Face& face = font.face();
    if (!face.uncheckedOutlines.deferred()) return;
    const auto index = static_cast<std::size_t>(glyph);
    if (glyph < 0 || index >= face.glyphChecked.size()) throw notAFont(font.name);
    if (face.glyphChecked[index] != 0) return;
    if (!face.uncheckedOutlines.glyphSound(face.storage.data(), face.storage.size(), index)) throw notAFont(font.name);
    face.glyphChecked[index] = 1;
}

}  // namespace plakard
