#include <stb_image.h>

#include <cstdint>
#include <memory>
#include <string>

#include "platform/Files.hpp"
#include "platform/Paths.hpp"
#include "platform/PlakardError.hpp"
#include "platform/Require.hpp"
#include "raster/Canvas.hpp"
#include "raster/Decode.hpp"
#include "raster/stb/StbImage.hpp"

namespace plakard {

namespace {

struct DecodedPixelsFree {
    void operator()(stbi_uc* pixels) const { stbi_image_free(pixels); }
};

// The decoder's reason, fit for one line of a terminal. stb names an unknown
// chunk by its type, four bytes straight from the file: those may be control
// characters (a line break, an escape sequence) or not text at all, so any
// byte outside printable ASCII shows as '?'. An empty reason (a type that
// starts with a zero byte) says as little as none.
std::string printableReason(const char* reason) {
    if (!reason || !*reason) return "unsupported image";
    std::string text(reason);
    for (char& c : text) {
        if (c < 0x20 || c > 0x7E) c = '?';
    }
    return text;
}

}  // namespace

Canvas decodedImage(std::span<const std::uint8_t> data, const std::string& fileName) {
    // An empty file still goes to the decoder (and fails there like any
    // other undecodable data), but never as a null pointer.
    static const stbi_uc nothing = 0;
    const stbi_uc* bytes = data.empty() ? &nothing : data.data();
    int width = 0;
    int height = 0;
    int channelsInFile = 0;
    clearDecoderFailureReason();
    std::unique_ptr<stbi_uc, DecodedPixelsFree> decoded(stbi_load_from_memory(
        bytes, toInt32(static_cast<std::int64_t>(data.size())), &width, &height, &channelsInFile, 4));
    if (!decoded) {
        // The reason is global state of the decoder: read it right away.
        throw PlakardError("cannot decode " + fileName + ": " + printableReason(stbi_failure_reason()) +
                           " (PNG and JPEG only)");
    }
    require(width >= 1 && height >= 1 && width <= INT64_MAX / 4 / height);
    const std::size_t byteCount = static_cast<std::size_t>(std::int64_t{width} * height * 4);
    return Canvas(width, height, std::vector<std::uint8_t>(decoded.get(), decoded.get() + byteCount));
}

namespace {

Canvas decode(const std::filesystem::path& path) {
    const std::filesystem::path fullPath = absolutePath(path);
    FileRead file = readFile(fullPath);
    if (!file.ok()) throw PlakardError("cannot read " + fullPath.string() + ": " + file.error);
    return decodedImage(file.bytes, lastComponent(path));
}

}  // namespace

Canvas::Canvas(const std::filesystem::path& contentsOf) : Canvas(decode(contentsOf)) {}

}  // namespace plakard
