#include "type/FontDiscovery.hpp"

#include "platform/Files.hpp"
#include "platform/PlakardError.hpp"

namespace plakard {

namespace {

constexpr const char* companionFace = "Inter-Black.ttf";

}  // namespace

FontChoice chooseFont(const FontSearch& search) {
    if (search.fontOption) {
        const std::string& path = *search.fontOption;
        if (!fileExists(path)) throw PlakardError("font not found: " + path);
        return {path, ""};
    }
    if (search.environmentValue) {
        const std::string& path = *search.environmentValue;
        if (!fileExists(path)) throw PlakardError("font not found: " + path + " (from PLAKARD_FONT)");
        return {path, ""};
    }
    const std::filesystem::path besideBinary = search.executableDirectory / companionFace;
    if (fileExists(besideBinary)) return {besideBinary, ""};

    const std::string directory = search.executableDirectory.string();
    for (std::string_view candidate : search.fallbacks) {
        const std::string fallback(candidate);
        if (!fileExists(fallback)) continue;
        return {fallback, std::string("plakard: ") + companionFace + " is not beside the binary in " + directory +
                              "; composing with " + fallback + ", which will not match the sandbox\n"};
    }
    throw PlakardError(std::string("no usable font: ") + companionFace + " is missing from " + directory +
                       " and no system fallback is installed; pass --font PATH");
}

}  // namespace plakard
