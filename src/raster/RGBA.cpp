#include "raster/RGBA.hpp"

#include <string>

#include "platform/PlakardError.hpp"

namespace plakard {

namespace {

int hexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

RGBA::RGBA(std::string_view hex) {
    std::string_view digits = hex;
    if (!digits.empty() && digits.front() == '#') digits.remove_prefix(1);
    // Six ASCII hex digits are exactly six user-perceived characters that are
    // all hex digits: any other character (a combining mark, a full-width
    // digit) is no ASCII hex digit, so checking bytes is the whole test.
    std::uint32_t value = 0;
    bool valid = digits.size() == 6;
    for (std::size_t i = 0; valid && i < digits.size(); ++i) {
        int digit = hexValue(digits[i]);
        valid = digit >= 0;
        value = value * 16 + static_cast<std::uint32_t>(digit);
    }
    if (!valid) throw PlakardError("'" + std::string(hex) + "' is not a #RRGGBB colour");
    r = static_cast<std::uint8_t>(value >> 16);
    g = static_cast<std::uint8_t>(value >> 8);
    b = static_cast<std::uint8_t>(value);
    a = 255;
}

}  // namespace plakard
