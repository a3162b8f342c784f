#include "raster/ImageChunks.hpp"

#include <cstring>

namespace plakard {

bool startsWith(Bytes bytes, std::string_view prefix) {
    return bytes.size() >= prefix.size() && std::memcmp(bytes.data(), prefix.data(), prefix.size()) == 0;
}

namespace {

std::uint32_t bigEndian(Bytes bytes, std::size_t at, int count) {
    std::uint32_t value = 0;
    for (int i = 0; i < count; ++i) value = value << 8 | bytes[at + i];
    return value;
}

}  // namespace

bool isPNG(Bytes file) { return startsWith(file, "\x89PNG\r\n\x1a\n"); }

bool isJPEG(Bytes file) { return startsWith(file, "\xFF\xD8"); }

std::vector<PNGChunk> pngChunks(Bytes file) {
    std::vector<PNGChunk> chunks;
    if (!isPNG(file)) return chunks;
    // Length, type, data, CRC: a chunk takes 12 bytes besides its data.
    for (std::size_t at = 8; file.size() - at >= 12;) {
        const std::uint32_t length = bigEndian(file, at, 4);
        if (length > file.size() - at - 12) break;
        chunks.push_back({file.subspan(at + 4, 4), file.subspan(at + 8, length)});
        if (startsWith(chunks.back().type, "IEND")) break;
        at += 12 + std::size_t{length};
    }
    return chunks;
}

std::vector<JPEGSegment> jpegSegments(Bytes file) {
    std::vector<JPEGSegment> segments;
    if (!isJPEG(file)) return segments;
    for (std::size_t at = 2; file.size() - at >= 4 && file[at] == 0xFF;) {
        const std::uint8_t marker = file[at + 1];
        if (marker == 0xFF) {  // fill byte
            ++at;
            continue;
        }
        if (marker == 0xDA || marker == 0xD9) break;
        if (marker == 0x01 || (marker >= 0xD0 && marker <= 0xD8)) {  // markers without a length
            at += 2;
            continue;
        }
        const std::size_t length = bigEndian(file, at + 2, 2);
        if (length < 2 || length > file.size() - at - 2) break;
        segments.push_back({marker, file.subspan(at + 4, length - 2)});
        at += 2 + length;
    }
    return segments;
}

bool isFrameHeader(std::uint8_t marker) {
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

}  // namespace plakard
