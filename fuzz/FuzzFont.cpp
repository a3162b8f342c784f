// Hostile font files: loading either gives a face that measures and draws any
// text, or throws one of the font errors; nothing else may happen. The last
// bytes of the input are a line of text to set, so the fuzzer also reaches
// unusual code points, kerning pairs and glyphs.

#include <climits>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/PlakardError.hpp"
#include "raster/Canvas.hpp"
#include "type/FontFace.hpp"
#include "type/LineLayout.hpp"

namespace {

constexpr std::size_t textBytes = 32;
// The em sizes in pixels: smaller than any page sets, a small headline's,
// and one whose glyphs overflow the canvas.
constexpr double emSizes[] = {3.0, 24.0, 96.0};
// Legal but huge glyphs only cost the fuzzer time; their boxes say so. Boxes
// too large for stb's int sizes are kept: those the drawing refuses itself.
constexpr std::int64_t largestGlyphPixels = 1024 * 1024;

bool hugeGlyph(const plakard::LineLayout& line, double scale) {
    for (const plakard::GlyphRun& run : line.runs()) {
        std::vector<int> glyphs;
        for (const plakard::PlacedGlyph& placed : run.placed) glyphs.push_back(placed.glyph);
        for (const plakard::MappedGlyph& mapped : run.mapped) glyphs.push_back(mapped.glyph);
        for (const int glyph : glyphs) {
            int x0 = 0;
            int y0 = 0;
            int x1 = 0;
            int y1 = 0;
            const auto glyphScale = static_cast<float>(scale);
            stbtt_GetGlyphBitmapBox(&run.face->face().info, glyph, glyphScale, glyphScale, &x0, &y0, &x1, &y1);
            const std::int64_t pixels = (std::int64_t{x1} - x0) * (std::int64_t{y1} - y0);
            if (x1 > x0 && pixels > largestGlyphPixels && pixels <= INT_MAX) return true;
        }
    }
    return false;
}

void setLine(const plakard::Font& font, std::string_view text) {
    std::optional<plakard::LineLayout> laidOut;
    try {
        laidOut.emplace(plakard::layOutLine(font, text));
    } catch (const plakard::PlakardError&) {
        return;  // a face checked as used: one of the line's outlines is damaged
    }
    const plakard::LineLayout& line = *laidOut;
    try {
        line.advanceUnits();
    } catch (const plakard::PlakardError&) {
        // a missing glyph; the text is still measured and drawn below
    }
    plakard::Canvas canvas(64, 32, plakard::RGBA{20, 40, 60, 255});
    for (const double em : emSizes) {
        const double scale = em / font.unitsPerEm;
        line.inkExtent(scale);
        if (!hugeGlyph(line, scale)) line.draw(canvas, plakard::RGBA{255, 255, 255, 200}, 2.0, 24.0, scale);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::size_t fontSize = size > textBytes ? size - textBytes : size;
    const std::string text(reinterpret_cast<const char*>(data) + fontSize, size - fontSize);
    std::shared_ptr<const plakard::Font> font;
    try {
        font = plakard::Font::fromData(std::span(data, fontSize), "fuzz.ttf");
    } catch (const plakard::PlakardError&) {
        // Refused whole, it may still load as a face found to fill in
        // characters, whose outlines are checked as lines use them.
        try {
            font = plakard::Font::fromData(std::span(data, fontSize), "fuzz.ttf", 0, plakard::OutlineCheck::asUsed);
        } catch (const plakard::PlakardError&) {
            return 0;
        }
    }
    setLine(*font, "AV WÉ fi");
    setLine(*font, text);
    return 0;
}
