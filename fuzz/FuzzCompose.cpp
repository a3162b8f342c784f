// Hostile captures and headlines through the whole page composer, with the
// real headline face: a page comes back, or the decode, legibility,
// missing-glyph or device-placement error.
//
// Input: one byte of choices (layout, colours, face, language, the installed
// faces filling in for the plain face's Arabic, whether the
// headline is also read as a --match file whose first line is the page's own,
// a device and a wide page), one byte n, n bytes of headline as typed after
// --headline, then the capture file's bytes.

#include <stb_image.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "cli/Headline.hpp"
#include "cli/MatchFile.hpp"
#include "compose/ComposeRequest.hpp"
#include "compose/PageComposer.hpp"
#include "platform/PlakardError.hpp"
#include "raster/Decode.hpp"
#include "type/FallbackFaces.hpp"
#include "type/Font.hpp"

namespace {

// The capture is resampled into the phone; a huge one only costs time.
constexpr std::int64_t largestPixelCount = 2048 * 2048;

// A face with Arabic and Hebrew as well, so fuzzed lines get through the
// shaper to the page.
std::shared_ptr<const plakard::Font> headlineFace(bool shapingFace) {
    static const std::shared_ptr<const plakard::Font> face = plakard::Font::load(PLAKARD_FUZZ_FONT);
    static const std::shared_ptr<const plakard::Font> shaping = plakard::Font::load(PLAKARD_FUZZ_SHAPING_FONT);
    return shapingFace ? shaping : face;
}

bool hugeImage(std::span<const std::uint8_t> bytes) {
    int width = 0;
    int height = 0;
    int channels = 0;
    return !bytes.empty() && bytes.size() <= INT32_MAX &&
           stbi_info_from_memory(bytes.data(), static_cast<int>(bytes.size()), &width, &height, &channels) &&
           std::int64_t{width} * height > largestPixelCount;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return -1;
    const std::uint8_t choices = data[0];
    const std::size_t headlineSize = std::min<std::size_t>(data[1], size - 2);
    const std::string headline(reinterpret_cast<const char*>(data) + 2, headlineSize);
    const std::span<const std::uint8_t> capture(data + 2 + headlineSize, size - 2 - headlineSize);
    if (hugeImage(capture)) return -1;
    const std::string language = (choices & 8) ? "ar" : (choices & 16) ? "tr" : "";
    const bool matched = (choices & 32) != 0;
    // Bit 6 gives a device, the length byte's low two bits choose it; bit 7
    // lays a device page wide.
    const std::optional<plakard::Device> device =
        (choices & 64) ? std::optional(plakard::allDevices[data[1] & 3]) : std::nullopt;
    const bool wide = device && (choices & 128);
    // Arabic in the plain face is set as --lang without --font sets it: the
    // installed faces fill in what the face lacks, whatever script that is.
    const bool fallback = (choices & 8) && !(choices & 4);
    static const auto installedFaces = std::make_shared<plakard::FallbackFaces>("ar");
    try {
        const plakard::ComposeRequest request{
            .width = wide ? 260 : 120,
            .height = wide ? 120 : 260,
            .background = plakard::RGBA(static_cast<std::uint8_t>(choices * 37), 90, 200, 255),
            .foreground = (choices & 2) ? plakard::RGBA(255, 255, 255, 255) : plakard::RGBA(10, 10, 10, 255),
            .lines = plakard::headlineLines(matched ? headline.substr(0, headline.find('\n')) : headline, language,
                                            fallback),
            .screenshot = plakard::decodedImage(capture, "fuzz.png"),
            .layout = (choices & 1) ? plakard::Layout::deviceTop : plakard::Layout::hero,
            .font = headlineFace(choices & 4),
            .language = language,
            .setHeadlines = matched ? plakard::matchHeadlines(headline, "fuzz.txt", language, fallback)
                                    : std::vector<std::vector<std::string>>{},
            .device = device,
            .fallback = fallback ? installedFaces : nullptr,
        };
        const plakard::Canvas page = plakard::composePage(request);
        if (page.width != request.width || page.height != request.height) __builtin_trap();
    } catch (const plakard::PlakardError&) {
    }
    return 0;
}
