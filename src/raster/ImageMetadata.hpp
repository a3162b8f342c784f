#pragma once
// What a PNG or JPEG says about how its pixels are meant to be shown, found by
// walking its chunks or markers without decoding any image data. Anything
// damaged, oversized or inconsistent is left out, never reported: the pixels
// stand as decoded.

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace plakard {

struct ImageMetadata {
    // The embedded ICC profile, whole, when the file stores colour (not grey)
    // pixels and does not declare itself sRGB.
    std::optional<std::vector<std::uint8_t>> colourProfile;
    // EXIF orientation, 1 (upright) to 8.
    int orientation = 1;
};

// Profiles beyond this are not real display profiles; reading stops first.
constexpr std::size_t largestColourProfile = 4 * 1024 * 1024;

ImageMetadata imageMetadata(std::span<const std::uint8_t> file);

}  // namespace plakard
