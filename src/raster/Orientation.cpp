#include "raster/Orientation.hpp"

#include <cstring>
#include <utility>

namespace plakard {

int exifOrientation(std::span<const std::uint8_t> tiff) {
    if (tiff.size() < 8) return 1;
    const bool littleEndian = tiff[0] == 'I' && tiff[1] == 'I';
    if (!littleEndian && !(tiff[0] == 'M' && tiff[1] == 'M')) return 1;
    const auto read = [&](std::size_t at, int count) {
        std::uint32_t value = 0;
        for (int i = 0; i < count; ++i) {
            const std::uint32_t byte = tiff[at + (littleEndian ? count - 1 - i : i)];
            value = value << 8 | byte;
        }
        return value;
    };
    if (read(2, 2) != 42) return 1;
    // Only the first directory is read: no offset is followed twice, so a
    // block whose directories point at each other cannot loop.
    const std::uint32_t directory = read(4, 4);
    if (directory < 8 || directory > tiff.size() - 2) return 1;
    const std::uint32_t entries = read(directory, 2);
    if (entries > (tiff.size() - directory - 2) / 12) return 1;
    for (std::uint32_t i = 0; i < entries; ++i) {
        const std::size_t entry = directory + 2 + std::size_t{i} * 12;
        if (read(entry, 2) != 0x0112) continue;
        // One SHORT, stored in the entry itself.
        if (read(entry + 2, 2) != 3 || read(entry + 4, 4) != 1) return 1;
        const std::uint32_t value = read(entry + 8, 2);
        return value >= 1 && value <= 8 ? static_cast<int>(value) : 1;
    }
    return 1;
}

Canvas oriented(Canvas image, int orientation) {
    if (orientation < 2 || orientation > 8) return image;
    const std::int64_t w = image.width;
    const std::int64_t h = image.height;
    const bool swapsSides = orientation >= 5;
    Canvas shown(swapsSides ? h : w, swapsSides ? w : h, RGBA{0, 0, 0, 0});
    for (std::int64_t y = 0; y < shown.height; ++y) {
        for (std::int64_t x = 0; x < shown.width; ++x) {
            // Where the pixel shown at (x, y) is stored.
            std::pair<std::int64_t, std::int64_t> from;
            switch (orientation) {
                case 2: from = {w - 1 - x, y}; break;          // mirrored left to right
                case 3: from = {w - 1 - x, h - 1 - y}; break;  // turned half way
                case 4: from = {x, h - 1 - y}; break;          // mirrored top to bottom
                case 5: from = {y, x}; break;                  // mirrored across the diagonal
                case 6: from = {y, h - 1 - x}; break;          // turned a quarter clockwise to show
                case 7: from = {w - 1 - y, h - 1 - x}; break;  // mirrored across the other diagonal
                default: from = {w - 1 - y, x}; break;         // 8: turned a quarter anticlockwise
            }
            std::memcpy(shown.pixel(x, y), image.pixel(from.first, from.second), 4);
        }
    }
    return shown;
}

}  // namespace plakard
