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

// R, G, B of `count` pixels over black. `out` may be `in` itself: pixel i
// goes to bytes 3i to 3i + 2 only after its own four bytes have been read,
// and never reaches the bytes of the pixels after it.
void flatten(const std::uint8_t* in, std::uint8_t* out, std::size_t count) {
    const FlattenTable& table = flattenTable();
    for (std::size_t i = 0; i < count; ++i, in += 4, out += 3) {
        const std::array<std::uint8_t, 256>& scale = table[in[3]];
        out[0] = scale[in[0]];
        out[1] = scale[in[1]];
        out[2] = scale[in[2]];
    }
}

// The writer counts in ints; checked before anything is flattened.
void requireWriterSizes(const Canvas& canvas, int components) {
    toInt32(canvas.width);
    toInt32(canvas.height);
    toInt32(std::int64_t{components} * canvas.width);
}

// The PNG file of `data`: width x height pixels of `components` bytes each,
// no row padding.
std::vector<std::uint8_t> encoded(const std::uint8_t* data, std::int64_t width, std::int64_t height,
                                  int components) {
    Sink sink;
    const int written = stbi_write_png_to_func(appendToSink, &sink, toInt32(width), toInt32(height), components,
                                               data, toInt32(std::int64_t{components} * width));
    if (written == 0 || sink.data.empty())
        throw PlakardError("PNG encoding failed for a " + std::to_string(width) + "x" + std::to_string(height) +
                           " image");
    return std::move(sink.data);
}

}  // namespace

std::vector<std::uint8_t> Canvas::flattenedRGB() const {
    std::vector<std::uint8_t> rgb(pixels.size() / 4 * 3);
    flatten(pixels.data(), rgb.data(), pixels.size() / 4);
    return rgb;
}

std::vector<std::uint8_t> Canvas::pngData(bool opaque) const {
    requireWriterSizes(*this, opaque ? 3 : 4);
    if (!opaque) return encoded(pixels.data(), width, height, 4);
    const std::vector<std::uint8_t> rgb = flattenedRGB();
    return encoded(rgb.data(), width, height, 3);
}

void writePNG(Canvas canvas, const std::filesystem::path& destination, bool opaque) {
    // Encode before touching the disk: a failed encoding creates nothing.
    std::vector<std::uint8_t> png;
    if (opaque) {
        // The canvas is this call's own, so its memory takes the flattened
        // pixels: no second image-sized buffer beside it while stb encodes.
        requireWriterSizes(canvas, 3);
        flatten(canvas.pixels.data(), canvas.pixels.data(), canvas.pixels.size() / 4);
        png = encoded(canvas.pixels.data(), canvas.width, canvas.height, 3);
    } else {
        png = canvas.pngData(false);
    }
    const std::filesystem::path fullPath = absolutePath(destination);
    createDirectories(fullPath.parent_path());
    const std::string error = writeFileAtomically(fullPath, png);
    if (!error.empty()) throw PlakardError("cannot write " + fullPath.string() + ": " + error);
}

}  // namespace plakard
