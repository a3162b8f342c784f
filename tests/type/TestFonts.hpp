#pragma once
// The real faces the type tests use, at the paths their Debian packages
// install them (scripts/install-deps.sh installs the packages), and a few
// helpers for making broken copies of them.

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace plakard::test {

// fonts-dejavu-core: TrueType outlines, em 2048, a kern table.
inline const std::filesystem::path dejaVuSansBold = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf";
// fonts-inter: CFF outlines, em 2816, kerning only in GPOS.
inline const std::filesystem::path interBlack = "/usr/share/fonts/opentype/inter/Inter-Black.otf";
// fonts-noto-mono: TrueType outlines, em 1000.
inline const std::filesystem::path notoSansMono = "/usr/share/fonts/truetype/noto/NotoSansMono-Regular.ttf";
// fonts-liberation: its kern table pairs "A" with the space.
inline const std::filesystem::path liberationSansBold = "/usr/share/fonts/truetype/liberation/LiberationSans-Bold.ttf";
// fonts-opensymbol: symbols only, no Latin letters.
inline const std::filesystem::path openSymbol = "/usr/share/fonts/truetype/libreoffice/opens___.ttf";
// fonts-wqy-microhei: a font collection (.ttc) of two faces.
inline const std::filesystem::path wqyMicroHei = "/usr/share/fonts/truetype/wqy/wqy-microhei.ttc";

std::vector<std::uint8_t> fileBytes(const std::filesystem::path& path);
void writeBytes(const std::filesystem::path& path, std::span<const std::uint8_t> bytes);

std::uint32_t bigEndian16At(std::span<const std::uint8_t> bytes, std::size_t offset);
std::uint32_t bigEndian32At(std::span<const std::uint8_t> bytes, std::size_t offset);
void putBigEndian32(std::span<std::uint8_t> bytes, std::size_t offset, std::uint32_t value);

struct TableRecord {
    std::size_t recordOffset;  // where the directory entry itself starts
    std::uint32_t offset;
    std::uint32_t length;
};

// The directory entry of `tag` in the face starting at byte 0 (not a collection).
TableRecord tableRecord(std::span<const std::uint8_t> font, const std::string& tag);

}  // namespace plakard::test
