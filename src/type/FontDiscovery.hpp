#pragma once
// The search behind Font::discover with its inputs spelled out, so that each
// rule can be exercised on its own.

#include <array>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "type/Font.hpp"

namespace plakard {

// Tried in this order when Inter-Black.ttf is not beside the executable.
// Linux and macOS locations together, searched as they stand on every system.
inline constexpr std::array<std::string_view, 5> systemFallbackFonts = {
    "/usr/share/fonts/inter/Inter-Black.otf",
    "/usr/share/fonts/inter/Inter-ExtraBold.otf",
    "/System/Library/Fonts/Supplemental/Arial Black.ttf",
    "/usr/share/fonts/dejavu/DejaVuSans-Bold.ttf",
    "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf",
};

struct FontSearch {
    std::optional<std::string> fontOption;        // --font, if given
    std::optional<std::string> environmentValue;  // PLAKARD_FONT, if set
    std::filesystem::path executableDirectory;
    std::span<const std::string_view> fallbacks = systemFallbackFonts;
};

// The first rule that applies decides; a chosen file that fails to load is
// not replaced by a later candidate.
std::shared_ptr<const Font> findFont(const FontSearch& search);

// The folder of the running executable with symbolic links resolved, or of
// the invocation name when the system does not say.
std::filesystem::path executableDirectory();

}  // namespace plakard
