#include "e2e/MadeImages.hpp"

#include <array>
#include <random>
#include <stdexcept>

#include "e2e/Harness.hpp"

namespace plakard::test {

namespace {

std::uint32_t crc32(const std::string& bytes) {
    static const std::array<std::uint32_t, 256> table = [] {
        std::array<std::uint32_t, 256> built{};
        for (std::uint32_t n = 0; n < 256; ++n) {
            std::uint32_t c = n;
            for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
            built[n] = c;
        }
        return built;
    }();
    std::uint32_t c = 0xFFFFFFFFu;
    for (unsigned char byte : bytes) c = table[(c ^ byte) & 0xFF] ^ (c >> 8);
    return c ^ 0xFFFFFFFFu;
}

void appendBig32(std::string& out, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) out += static_cast<char>((value >> shift) & 0xFF);
}

void appendChunk(std::string& png, const char* type, const std::string& data) {
    appendBig32(png, static_cast<std::uint32_t>(data.size()));
    const std::string typed = type + data;
    png += typed;
    appendBig32(png, crc32(typed));
}

int channels(int colourType) {
    switch (colourType) {
        case pngGrey: return 1;
        case pngRGB: return 3;
        case pngRGBA: return 4;
        default: throw std::invalid_argument("unsupported colour type");
    }
}

// The filtered rows' byte count: one filter byte before every row.
std::uint64_t imageDataSize(std::uint32_t width, std::uint32_t height, int colourType) {
    return std::uint64_t{height} * (1 + std::uint64_t{width} * static_cast<std::uint64_t>(channels(colourType)));
}

std::string png(std::uint32_t width, std::uint32_t height, int colourType, const std::string& zlibStream) {
    std::string header;
    appendBig32(header, width);
    appendBig32(header, height);
    header += {8, static_cast<char>(colourType), 0, 0, 0};  // depth, colour, deflate, no filter, no interlace
    std::string file = "\x89PNG\r\n\x1a\n";
    appendChunk(file, "IHDR", header);
    appendChunk(file, "IDAT", zlibStream);
    appendChunk(file, "IEND", "");
    return file;
}

// Deflate packs its bits from the least significant end of each byte.
class BitWriter {
public:
    // `count` (at most 32) bits of a value, low bit first: header fields.
    void bits(std::uint32_t value, int count) {
        pending_ |= std::uint64_t{value} << used_;
        used_ += count;
        while (used_ >= 8) {
            out_ += static_cast<char>(pending_ & 0xFF);
            pending_ >>= 8;
            used_ -= 8;
        }
    }
    // A Huffman code, most significant bit first.
    void code(std::uint32_t value, int length) {
        std::uint32_t reversed = 0;
        for (int i = 0; i < length; ++i) reversed |= ((value >> i) & 1) << (length - 1 - i);
        bits(reversed, length);
    }
    std::string finish() {
        if (used_ > 0) out_ += static_cast<char>(pending_ & 0xFF);
        return std::move(out_);
    }

private:
    std::string out_;
    std::uint64_t pending_ = 0;
    int used_ = 0;
};

constexpr char zlibHeader[] = "\x78\x01";  // deflate, 32 KiB window, no dictionary

}  // namespace

std::string zeroPNG(std::uint32_t width, std::uint32_t height, int colourType) {
    const std::uint64_t size = imageDataSize(width, height, colourType);
    // One fixed-Huffman block: a literal zero, then matches of 258 bytes at
    // distance 1 (length code 285, 8 bits; distance code 0, 5 bits), then the
    // last few zeros as literals and the end of the block.
    BitWriter deflate;
    deflate.bits(1, 1);  // final block
    deflate.bits(1, 2);  // fixed Huffman codes
    const auto literalZero = [&] { deflate.code(0x30, 8); };
    literalZero();
    std::uint64_t left = size - 1;
    for (; left >= 258; left -= 258) {
        deflate.code(0xC5, 8);
        deflate.code(0, 5);
    }
    for (; left > 0; --left) literalZero();
    deflate.code(0, 7);  // end of block
    std::string stream = std::string(zlibHeader, 2) + deflate.finish();
    // Adler-32 of zeros: the first sum stays 1, the second counts the bytes.
    appendBig32(stream, static_cast<std::uint32_t>(size % 65521) << 16 | 1);
    return png(width, height, colourType, stream);
}

std::string noisePNG(std::uint32_t width, std::uint32_t height, std::uint32_t seed) {
    std::mt19937 random(seed);
    std::string data;
    data.reserve(imageDataSize(width, height, pngRGB));
    for (std::uint32_t y = 0; y < height; ++y) {
        data += '\0';  // no filter
        for (std::uint64_t i = 0; i < std::uint64_t{width} * 3; ++i) data += static_cast<char>(random() & 0xFF);
    }
    // Stored blocks of at most 65535 bytes, each with its length and the
    // length's complement.
    std::string stream(zlibHeader, 2);
    for (std::size_t start = 0; start < data.size(); start += 65535) {
        const std::size_t length = std::min<std::size_t>(65535, data.size() - start);
        stream += static_cast<char>(start + length == data.size() ? 1 : 0);
        stream += {static_cast<char>(length & 0xFF), static_cast<char>(length >> 8),
                   static_cast<char>(~length & 0xFF), static_cast<char>((~length >> 8) & 0xFF)};
        stream.append(data, start, length);
    }
    std::uint32_t a = 1;
    std::uint32_t b = 0;
    for (unsigned char byte : data) {
        a = (a + byte) % 65521;
        b = (b + a) % 65521;
    }
    appendBig32(stream, b << 16 | a);
    return png(width, height, pngRGB, stream);
}

std::string jpegDeclaring(std::uint16_t width, std::uint16_t height) {
    std::string jpeg = readBytes(dataPath("images/rgb.jpg"));
    // Start of frame: marker, 2 bytes length, 1 byte precision, then the
    // height and the width, big-endian.
    const std::size_t frame = jpeg.find("\xFF\xC0");
    if (frame == std::string::npos || frame + 9 > jpeg.size()) throw std::runtime_error("rgb.jpg has no frame");
    jpeg[frame + 5] = static_cast<char>(height >> 8);
    jpeg[frame + 6] = static_cast<char>(height & 0xFF);
    jpeg[frame + 7] = static_cast<char>(width >> 8);
    jpeg[frame + 8] = static_cast<char>(width & 0xFF);
    return jpeg;
}

}  // namespace plakard::test
