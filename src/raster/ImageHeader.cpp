#include "raster/ImageHeader.hpp"

#include "raster/ImageChunks.hpp"

namespace plakard {

namespace {

ColourModel pngColourModel(std::uint8_t colourType) {
    switch (colourType) {
        case 0:
        case 4:
            return ColourModel::grey;
        case 2:
        case 6:
            return ColourModel::rgb;
        case 3:
            return ColourModel::palette;
        default:
            return ColourModel::unknown;
    }
}

ColourModel jpegColourModel(std::uint8_t components) {
    switch (components) {
        case 1:
            return ColourModel::grey;
        case 3:
            return ColourModel::rgb;
        case 4:
            return ColourModel::cmyk;
        default:
            return ColourModel::unknown;
    }
}

// IHDR: width (4), height (4), bit depth, colour type, compression, filter, interlace.
void readPNG(Bytes file, ImageHeader& header) {
    for (const auto& [type, data] : pngChunks(file)) {
        if (startsWith(type, "IHDR") && data.size() >= 13) {
            header.bitDepth = data[8];
            header.colour = pngColourModel(data[9]);
            header.alpha = data[9] == 4 || data[9] == 6;
        }
        if (startsWith(type, "tRNS")) header.alpha = true;
    }
}

// SOFn: precision (1), height (2), width (2), component count (1), ...
void readJPEG(Bytes file, ImageHeader& header) {
    for (const auto& [marker, data] : jpegSegments(file)) {
        if (!isFrameHeader(marker) || data.size() < 6) continue;
        header.bitDepth = data[0];
        header.colour = jpegColourModel(data[5]);
        return;
    }
}

}  // namespace

ImageFormat imageFormat(std::span<const std::uint8_t> file) {
    if (isPNG(file)) return ImageFormat::png;
    if (isJPEG(file)) return ImageFormat::jpeg;
    return ImageFormat::unknown;
}

ImageHeader imageHeader(std::span<const std::uint8_t> file) {
    ImageHeader header;
    header.format = imageFormat(file);
    if (header.format == ImageFormat::png) readPNG(file, header);
    if (header.format == ImageFormat::jpeg) readJPEG(file, header);
    return header;
}

}  // namespace plakard
