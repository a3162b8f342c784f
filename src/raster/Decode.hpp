#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "raster/Canvas.hpp"

namespace plakard {

// The decoded image, or the decoder's reason for refusing the bytes.
struct DecodeResult {
    std::optional<Canvas> image;
    std::string failure;  // one line of printable text, such as "outofdata"; empty with an image
};

// Decodes PNG or JPEG bytes into the pixels as the file means them to be
// shown: converted to sRGB by its colour profile and turned upright by its
// EXIF orientation. Bytes the decoder refuses give its reason; nothing throws
// for them.
DecodeResult decoded(std::span<const std::uint8_t> bytes);

// The same, with a refusal thrown as "cannot decode <fileName>: <reason>
// (PNG and JPEG only)".
Canvas decodedImage(std::span<const std::uint8_t> bytes, const std::string& fileName);

}  // namespace plakard
