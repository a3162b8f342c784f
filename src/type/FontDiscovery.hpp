#pragma once
// Which file the headline is set in, decided from --font and the facts of the
// process that its caller gathers: nothing here reads the environment or
// writes anything, so each rule can be exercised on its own.

#include <array>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>

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
    std::filesystem::path executableDirectory;    // looked at when neither is
    std::span<const std::string_view> fallbacks = systemFallbackFonts;
};

struct FontChoice {
    std::filesystem::path path;
    // When settling for a system fallback, the line to write on standard error
    // before loading it, so that a broken fallback still explains itself.
    std::string warning;
};

// The first rule that applies decides; a chosen file that then fails to load
// is not replaced by a later candidate. Throws "font not found: ..." or
// "no usable font: ...".
FontChoice chooseFont(const FontSearch& search);

}  // namespace plakard
