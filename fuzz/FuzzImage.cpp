// Hostile image files: decoding either gives a canvas that resamples and
// encodes, or throws the decode error as one line of printable text (the
// decoder's reason can quote bytes of the file); nothing else may happen.
// Decoding also reads the file's colour profile and EXIF orientation, so
// damaged profiles and EXIF blocks are exercised here too, and so is the
// header reader of `plakard check`.

#include <stb_image.h>

#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/PlakardError.hpp"
#include "raster/Canvas.hpp"
#include "raster/Decode.hpp"
#include "raster/ImageHeader.hpp"

namespace {

// Legal but huge images only cost the fuzzer time; their header says so.
constexpr std::int64_t largestPixelCount = 1024 * 1024;
// Encoding a decoded image in full is worth it only while it is small.
constexpr std::int64_t largestEncodedPixelCount = 256 * 256;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > 0 && size <= INT32_MAX) {
        int width = 0;
        int height = 0;
        int channels = 0;
        if (stbi_info_from_memory(data, static_cast<int>(size), &width, &height, &channels) &&
            std::int64_t{width} * height > largestPixelCount) {
            return -1;
        }
    }
    plakard::imageHeader(std::span(data, size));
    try {
        const plakard::Canvas image = plakard::decodedImage(std::span(data, size), "fuzz.png");
        for (const plakard::Fit fit : {plakard::Fit::cover, plakard::Fit::stretch}) {
            image.fitted(7, 13, fit).pngData(true);
            image.fitted(13, 7, fit).pngData(false);
        }
        if (image.width * image.height <= largestEncodedPixelCount) image.pngData(true);
    } catch (const plakard::PlakardError& error) {
        for (const char c : error.description) {
            if (c < 0x20 || c > 0x7E) __builtin_trap();
        }
    }
    return 0;
}
