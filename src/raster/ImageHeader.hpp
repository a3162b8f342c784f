#pragma once
// How a PNG or JPEG file stores its pixels, as its own header declares it:
// the format, the colour model, the bits per sample and whether an alpha
// channel is there. Read from the chunks and segments alone; anything a file
// does not declare (or declares past its end) stays at the defaults.

#include <cstdint>
#include <span>

namespace plakard {

enum class ImageFormat { unknown, png, jpeg };

enum class ColourModel {
    unknown,
    grey,     // PNG colour types 0 and 4, one-component JPEG
    rgb,      // PNG colour types 2 and 6, three-component JPEG (YCbCr or RGB)
    palette,  // PNG colour type 3: indices into a table of RGB colours
    cmyk,     // four-component JPEG (CMYK or YCCK)
};

struct ImageHeader {
    ImageFormat format = ImageFormat::unknown;
    ColourModel colour = ColourModel::unknown;
    // PNG: bits per sample (a palette's index bits); JPEG: sample precision.
    int bitDepth = 0;
    // An alpha channel (PNG colour types 4 and 6) or a transparency chunk
    // (tRNS), whether or not any pixel uses it.
    bool alpha = false;
};

// The format by the file's first bytes, its signature.
ImageFormat imageFormat(std::span<const std::uint8_t> file);

ImageHeader imageHeader(std::span<const std::uint8_t> file);

}  // namespace plakard
