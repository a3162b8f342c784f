#pragma once
// One colour: four 8-bit channels, straight (not premultiplied) alpha.

#include <cstdint>
#include <string_view>

namespace plakard {

struct RGBA {
    std::uint8_t r = 0;
    std::uint8_t g = 0;
    std::uint8_t b = 0;
    std::uint8_t a = 0;

    constexpr RGBA() = default;
    constexpr RGBA(std::uint8_t red, std::uint8_t green, std::uint8_t blue, std::uint8_t alpha)
        : r(red), g(green), b(blue), a(alpha) {}

    // Parses "#RRGGBB" (the "#" optional, hex digits in either case) as typed,
    // giving an opaque colour; anything else throws
    // "'<text>' is not a #RRGGBB colour".
    explicit RGBA(std::string_view hex);

    friend constexpr bool operator==(const RGBA&, const RGBA&) = default;
};

}  // namespace plakard
