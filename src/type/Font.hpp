#pragma once
// One loaded font face, shared and immutable for the whole run. stb_truetype's
// record points into the font's own copy of the file, so a Font is never
// copied or moved once loaded; it is handed around by shared pointer.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include <stb_truetype.h>

#include "raster/Canvas.hpp"
#include "raster/RGBA.hpp"

namespace plakard {

// Vertical extent of a line's ink in pixels relative to the baseline, y down
// (top is usually negative).
struct InkExtent {
    double top;
    double bottom;
};

class Font {
public:
    // Reads, checks and initialises a face. Throws "cannot read font <abs>: ...",
    // "<name> is too small to be a font" or
    // "<name> is not a TrueType or OpenType font, or is truncated".
    static std::shared_ptr<const Font> load(const std::filesystem::path& path);

    // The same checks on a file's bytes already in memory; `fileName` is the
    // name messages use.
    static std::shared_ptr<const Font> fromData(std::span<const std::uint8_t> bytes, const std::string& fileName);

    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;
    ~Font();

    // A line with right-to-left text or a joining or syllable-based script is
    // shaped (type/ShapedLine.hpp), told `language` (a BCP 47 tag, or empty);
    // every other line is set code point by code point with the face's kerning.

    // The line's advance width in font units, kerning included. Throws
    // "<name> has no glyph for 'c' (U+XXXX); pass --font with a face that
    // covers this headline" for the first code point the face lacks (the
    // ordinary space is exempt).
    double advanceUnits(std::string_view text, std::string_view language = {}) const;

    // The ink's vertical extent at `scale` pixels per font unit; the face's
    // line box when the text has no ink.
    InkExtent inkExtent(std::string_view text, double scale, std::string_view language = {}) const;

    // Draws the line with its pen starting at x and its baseline at `baseline`,
    // clipped to the canvas.
    void drawLine(std::string_view text, Canvas& canvas, RGBA colour, double x, double baseline, double scale,
                  std::string_view language = {}) const;

    stbtt_fontinfo info{};
    std::unique_ptr<std::uint8_t[]> storage;
    std::size_t storageSize = 0;
    double ascentUnits = 0;
    double descentUnits = 0;
    double unitsPerEm = 0;
    std::string name;

private:
    Font() = default;
};

}  // namespace plakard
