#include "type/FontDiscovery.hpp"

#include <cstdlib>
#include <system_error>

#include "platform/Files.hpp"
#include "platform/Paths.hpp"
#include "platform/PlakardError.hpp"
#include "platform/StandardError.hpp"

namespace plakard {

namespace {

constexpr const char* companionFace = "Inter-Black.ttf";

}  // namespace

std::shared_ptr<const Font> findFont(const FontSearch& search) {
    if (search.fontOption) {
        const std::string& path = *search.fontOption;
        if (!fileExists(path)) throw PlakardError("font not found: " + path);
        return Font::load(path);
    }
    if (search.environmentValue) {
        const std::string& path = *search.environmentValue;
        if (!fileExists(path)) throw PlakardError("font not found: " + path + " (from PLAKARD_FONT)");
        return Font::load(path);
    }
    const std::filesystem::path besideBinary = search.executableDirectory / companionFace;
    if (fileExists(besideBinary)) return Font::load(besideBinary);

    const std::string directory = search.executableDirectory.string();
    for (std::string_view candidate : search.fallbacks) {
        const std::string fallback(candidate);
        if (!fileExists(fallback)) continue;
        // Written before loading, so a broken fallback still explains itself.
        writeStandardError(std::string("plakard: ") + companionFace + " is not beside the binary in " +
                           directory + "; composing with " + fallback + ", which will not match the sandbox\n");
        return Font::load(fallback);
    }
    throw PlakardError(std::string("no usable font: ") + companionFace + " is missing from " + directory +
                       " and no system fallback is installed; pass --font PATH");
}

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

std::shared_ptr<const Font> Font::discover(const std::optional<std::string>& fontPath) {
    FontSearch search;
    search.fontOption = fontPath;
    if (!fontPath) {
        // An empty PLAKARD_FONT counts as set and fails the existence test.
        if (const char* value = std::getenv("PLAKARD_FONT")) search.environmentValue = value;
        else search.executableDirectory = executableDirectory();
    }
    return findFont(search);
}

}  // namespace plakard
