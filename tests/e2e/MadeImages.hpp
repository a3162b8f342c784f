#pragma once
// Image files made by the tests themselves, so that nothing large or hostile
// is committed: decompression bombs, incompressible noise, and a JPEG whose
// header declares whatever size a test wants.

#include <cstdint>
#include <string>

namespace plakard::test {

// PNG colour types.
constexpr int pngGrey = 0;
constexpr int pngRGB = 2;
constexpr int pngRGBA = 6;

// An 8-bit PNG whose every byte of image data is zero, deflated as runs of the
// longest match: a few bytes of file per kilobyte of pixels.
std::string zeroPNG(std::uint32_t width, std::uint32_t height, int colourType);

// An 8-bit RGB PNG of random pixels from `seed`, stored without compression.
std::string noisePNG(std::uint32_t width, std::uint32_t height, std::uint32_t seed);

// The committed 32x16 JPEG with the size in its frame header replaced; its
// scan data are left as they are.
std::string jpegDeclaring(std::uint16_t width, std::uint16_t height);

}  // namespace plakard::test
