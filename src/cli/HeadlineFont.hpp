#pragma once

#include <memory>
#include <optional>
#include <string>

#include "type/Font.hpp"

namespace plakard {

// The headline face for this process: --font (`fontOption`), else the
// PLAKARD_FONT environment variable, else Inter-Black.ttf beside the
// executable, else a system fallback, announced on standard error before it
// is loaded.
std::shared_ptr<const Font> headlineFont(const std::optional<std::string>& fontOption);

// Whether the user chose the headline face, with --font or PLAKARD_FONT.
bool fontChosen(const std::optional<std::string>& fontOption);

}  // namespace plakard
