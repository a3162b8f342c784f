#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace plakard {

// Page arrangement: `hero` sets the headline on top and lets the phone run off
// the bottom; `deviceTop` hangs the phone from the top edge above the headline.
enum class Layout { hero, deviceTop };

inline constexpr std::array<Layout, 2> allLayouts{Layout::hero, Layout::deviceTop};

constexpr std::string_view layoutText(Layout layout) {
    return layout == Layout::hero ? "hero" : "device-top";
}

// The layout whose text is exactly `text`, if any.
constexpr std::optional<Layout> layoutNamed(std::string_view text) {
    for (Layout layout : allLayouts) {
        if (layoutText(layout) == text) return layout;
    }
    return std::nullopt;
}

}  // namespace plakard
