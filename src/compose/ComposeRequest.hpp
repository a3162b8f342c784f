#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "compose/Device.hpp"
#include "compose/Layout.hpp"
#include "raster/Canvas.hpp"
#include "raster/RGBA.hpp"
#include "type/FallbackFaces.hpp"
#include "type/Font.hpp"

namespace plakard {

// Everything one composed page needs, already validated.
struct ComposeRequest {
    std::int64_t width;
    std::int64_t height;
    RGBA background;
    RGBA foreground;
    std::vector<std::string> lines;  // upper-cased, top first; the first is the large one
    Canvas screenshot;
    Layout layout;
    std::shared_ptr<const Font> font;
    // The headline's BCP 47 language tag for the shaper, or empty.
    std::string language{};
    // The other headlines of the page's set (compose --match), each as its
    // lines; when there are any, the page takes the set's line sizes and block
    // (compose/HeadlineSet.hpp) instead of being fitted alone.
    std::vector<std::vector<std::string>> setHeadlines{};
    // What holds the capture; without one, today's phone on every page.
    std::optional<Device> device{};
    // Installed faces for the characters `font` lacks (--lang without a
    // chosen font), or null to refuse such characters.
    std::shared_ptr<FallbackFaces> fallback{};
};

}  // namespace plakard
