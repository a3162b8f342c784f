#include <stb_image.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/Files.hpp"
#include "platform/Paths.hpp"
#include "platform/PlakardError.hpp"
#include "platform/Require.hpp"
#include "raster/Canvas.hpp"
#include "raster/ColourProfile.hpp"
#include "raster/Decode.hpp"
#include "raster/ImageMetadata.hpp"
#include "raster/Orientation.hpp"
#include "raster/PixelBuffer.hpp"
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

// The decoder hands out 4-channel pixels in one buffer counted in an int, so
// it can never return more than this many pixels. It checks that only against
// the channels in the file, though: a grey image or a JPEG beyond it is
// inflated in full (gigabytes, seconds) before the conversion to RGBA fails.
constexpr std::int64_t largestDecodablePixelCount = (INT32_MAX - 1) / 4;

// Whether the header declares more pixels than a decode could return. A
// header the decoder cannot read is left for the decode itself to report.
bool declaresTooManyPixels(const stbi_uc* bytes, int count) {
    int width = 0;
    int height = 0;
    int channels = 0;
    if (!stbi_info_from_memory(bytes, count, &width, &height, &channels)) return false;
    return width > 0 && height > 0 && std::int64_t{width} * height > largestDecodablePixelCount;
}

DecodeResult decodedPixels(std::span<const std::uint8_t> data) {
    // An empty file still goes to the decoder (and fails there like any
    // other undecodable data), but never as a null pointer.
    static const stbi_uc nothing = 0;
    const stbi_uc* bytes = data.empty() ? &nothing : data.data();
    // Never a trap for a file: readFile refuses one of more than INT32_MAX bytes.
    const int count = toInt32(static_cast<std::int64_t>(data.size()));
    // Refused before anything is allocated, in the decoder's own word.
    if (declaresTooManyPixels(bytes, count)) return {std::nullopt, "too large"};
    int width = 0;
    int height = 0;
    int channelsInFile = 0;
    clearDecoderFailureReason();
    std::unique_ptr<stbi_uc, DecodedPixelsFree> pixels(
        stbi_load_from_memory(bytes, count, &width, &height, &channelsInFile, 4));
    if (!pixels) {
        // The reason is global state of the decoder: read it right away.
        return {std::nullopt, printableReason(stbi_failure_reason())};
    }
    require(width >= 1 && height >= 1 && width <= INT64_MAX / 4 / height);
    const std::size_t byteCount = static_cast<std::size_t>(std::int64_t{width} * height * 4);
    // The decoder allocates through imageMemory, so the canvas takes its buffer over.
    return {Canvas(width, height, PixelBuffer::adopted(pixels.release(), byteCount)), {}};
}

}  // namespace

// The pixels as the file means them to be shown: in sRGB and upright.
DecodeResult decoded(std::span<const std::uint8_t> data) {
    DecodeResult result = decodedPixels(data);
    if (!result.image) return result;
    const ImageMetadata metadata = imageMetadata(data);
    if (metadata.colourProfile) convertToSRGB(*result.image, *metadata.colourProfile);
    result.image = oriented(std::move(*result.image), metadata.orientation);
    return result;
}

Canvas decodedImage(std::span<const std::uint8_t> data, const std::string& fileName) {
    DecodeResult result = decoded(data);
    if (!result.image) throw PlakardError("cannot decode " + fileName + ": " + result.failure + " (PNG and JPEG only)");
    return std::move(*result.image);
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
