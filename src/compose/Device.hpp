#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace plakard {

// What holds the capture on the page: the phone with a camera island, a phone
// with a home button (for 16:9 captures, whose status bar an island would
// cover), a tablet, or nothing but the screen's rounded corners and shadow.
enum class Device { phone, homeButton, tablet, none };

inline constexpr std::array<Device, 4> allDevices{Device::phone, Device::homeButton, Device::tablet, Device::none};

constexpr std::string_view deviceText(Device device) {
    switch (device) {
        case Device::phone: return "phone";
        case Device::homeButton: return "home-button";
        case Device::tablet: return "tablet";
        case Device::none: return "none";
    }
    return "";
}

// The device whose text is exactly `text`, if any.
constexpr std::optional<Device> deviceNamed(std::string_view text) {
    for (Device device : allDevices) {
        if (deviceText(device) == text) return device;
    }
    return std::nullopt;
}

}  // namespace plakard
