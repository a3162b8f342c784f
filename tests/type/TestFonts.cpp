#include "type/TestFonts.hpp"

#include <fstream>
#include <stdexcept>

namespace plakard::test {

std::vector<std::uint8_t> fileBytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    if (!file) throw std::runtime_error("missing test font " + path.string() + " (run scripts/install-deps.sh)");
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(file.tellg()));
    file.seekg(0);
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return bytes;
}

void writeBytes(const std::filesystem::path& path, std::span<const std::uint8_t> bytes) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file) throw std::runtime_error("cannot write " + path.string());
}

std::uint32_t bigEndian16At(std::span<const std::uint8_t> bytes, std::size_t offset) {
    return (std::uint32_t{bytes[offset]} << 8) | bytes[offset + 1];
}

std::uint32_t bigEndian32At(std::span<const std::uint8_t> bytes, std::size_t offset) {
    return (bigEndian16At(bytes, offset) << 16) | bigEndian16At(bytes, offset + 2);
}

void putBigEndian32(std::span<std::uint8_t> bytes, std::size_t offset, std::uint32_t value) {
    for (int i = 0; i < 4; ++i) bytes[offset + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
}

TableRecord tableRecord(std::span<const std::uint8_t> font, const std::string& tag) {
    const std::uint32_t count = bigEndian16At(font, 4);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t record = 12 + 16 * i;
        if (std::string(font.begin() + static_cast<std::ptrdiff_t>(record),
                        font.begin() + static_cast<std::ptrdiff_t>(record + 4)) == tag)
            return {record, bigEndian32At(font, record + 8), bigEndian32At(font, record + 12)};
    }
    throw std::runtime_error("no table " + tag);
}

}  // namespace plakard::test
