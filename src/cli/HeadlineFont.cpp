#include "cli/HeadlineFont.hpp"

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "platform/Paths.hpp"
#include "platform/StandardError.hpp"
#include "type/FontDiscovery.hpp"

namespace plakard {

namespace {

// The folder of the running executable with symbolic links resolved, or of
// the invocation name when the system does not say.
std::filesystem::path executableDirectory() {
    if (std::optional<std::filesystem::path> executable = executablePath())
        return resolvingSymlinks(*executable).parent_path();
    // No arguments at all leaves no name: the working directory stands in.
    const std::string name = invocationName();
    const std::filesystem::path invoked = name.empty() ? std::filesystem::path(".") : std::filesystem::path(name);
    std::error_code ignored;
    std::filesystem::path absolute = std::filesystem::absolute(invoked, ignored);
    if (absolute.empty()) absolute = invoked;
    return resolvingSymlinks(absolute).parent_path();
}

}  // namespace

std::shared_ptr<const Font> headlineFont(const std::optional<std::string>& fontOption) {
    FontSearch search;
    search.fontOption = fontOption;
    if (!fontOption) {
        // An empty PLAKARD_FONT counts as set and fails the existence test.
        if (const char* value = std::getenv("PLAKARD_FONT")) search.environmentValue = value;
        else search.executableDirectory = executableDirectory();
    }
    const FontChoice choice = chooseFont(search);
    if (!choice.warning.empty()) writeStandardError(choice.warning);
    return Font::load(choice.path);
}

bool fontChosen(const std::optional<std::string>& fontOption) {
    return fontOption || std::getenv("PLAKARD_FONT") != nullptr;
}

}  // namespace plakard
