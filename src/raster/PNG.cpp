#include <stb_image_write.h>

#include <array>
#include <cmath>
#include <string>

#include "platform/Files.hpp"
#include "platform/Paths.hpp"
#include "platform/PlakardError.hpp"
#include "platform/Require.hpp"
#include "raster/Canvas.hpp"

namespace plakard {

namespace {

// round(a / 255 * c) for every alpha a and colour byte c. The flattened value
// depends on those two bytes only, so one 64 KiB table built on first use
// replaces two multiplications and a rounding per channel.
using FlattenTable = std::array<std::array<std::uint8_t, 256>, 256>;

const FlattenTable& flattenTable() {
    static const FlattenTable table = [] {
        FlattenTable built{};
        for (int a = 0; a < 256; ++a) {
            const double f = a / 255.0;
            for (int c = 0; c < 256; ++c) built[a][c] = static_cast<std::uint8_t>(std::round(f * c));
        }
        return built;
    }();
    return table;
}

// Collects the encoder's output, which arrives in pieces.
struct Sink {
    std::vector<std::uint8_t> data;
};

void appendToSink(void* context, void* bytes, int count) {
    if (!context || !bytes || count < 1) return;
    const auto* first = static_cast<const std::uint8_t*>(bytes);
    static_cast<Sink*>(context)->data.insert(static_cast<Sink*>(context)->data.end(), first, first + count);
}

}  // namespace

std::vector<std::uint8_t> Canvas::flattenedRGB() const {
    const FlattenTable& table = flattenTable();
    const std::size_t count = pixels.size() / 4;
    std::vector<std::uint8_t> rgb(count * 3);
    const std::uint8_t* in = pixels.data();
    std::uint8_t* out = rgb.data();
    for (std::size_t i = 0; i < count; ++i, in += 4, out += 3) {
        const std::array<std::uint8_t, 256>& scale = table[in[3]];
        out[0] = scale[in[0]];
        out[1] = scale[in[1]];
        out[2] = scale[in[2]];
    }
    return rgb;
}

std::vector<std::uint8_t> Canvas::pngData(bool opaque) const {
    // The writer counts in ints; check that before flattening anything.
    const int components = opaque ? 3 : 4;
    const int w = toInt32(width);
    const int h = toInt32(height);
    const int stride = toInt32(std::int64_t{components} * width);
    std::vector<std::uint8_t> rgb;
    if (opaque) rgb = flattenedRGB();
    const std::uint8_t* data = opaque ? rgb.data() : pixels.data();
    Sink sink;
    const int written = stbi_write_png_to_func(appendToSink, &sink, w, h, components, data, stride);
    if (written == 0 || sink.data.empty())
        throw PlakardError("PNG encoding failed for a " + std::to_string(width) + "x" + std::to_string(height) +
                           " image");
    return std::move(sink.data);
}

void writePNG(const Canvas& canvas, const std::filesystem::path& destination, bool opaque) {
    // Encode before touching the disk: a failed encoding creates nothing.
    const std::vector<std::uint8_t> png = canvas.pngData(opaque);
    const std::filesystem::path fullPath = absolutePath(destination);
    createDirectories(fullPath.parent_path());
    const std::string error = writeFileAtomically(fullPath, png);
    if (!error.empty()) throw PlakardError("cannot write " + fullPath.string() + ": " + error);
}

}  // namespace plakard
