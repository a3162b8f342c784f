#include "raster/Orientation.hpp"

#include <cstring>

#include "raster/PixelBuffer.hpp"

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
    // Where the pixel shown at the top left is stored (the right and/or the
    // bottom edge, else the origin), and the stored step, in columns and rows,
    // for one pixel right and for one row down on the shown image.
    struct Walk {
        bool right, bottom;
        std::int64_t xColumns, xRows, yColumns, yRows;
    };
    static constexpr Walk walks[] = {
        {true, false, -1, 0, 0, 1},   // 2: mirrored left to right
        {true, true, -1, 0, 0, -1},   // 3: turned half way
        {false, true, 1, 0, 0, -1},   // 4: mirrored top to bottom
        {false, false, 0, 1, 1, 0},   // 5: mirrored across the diagonal
        {false, true, 0, -1, 1, 0},   // 6: turned a quarter clockwise to show
        {true, true, 0, -1, -1, 0},   // 7: mirrored across the other diagonal
        {true, false, 0, 1, -1, 0},   // 8: turned a quarter anticlockwise
    };
    const Walk& walk = walks[orientation - 2];
    const std::int64_t w = image.width;
    const std::int64_t h = image.height;
    const bool swapsSides = orientation >= 5;
    const std::int64_t shownWidth = swapsSides ? h : w;
    const std::int64_t shownHeight = swapsSides ? w : h;
    // Every byte is written below, so the block starts uninitialised.
    Canvas shown(shownWidth, shownHeight, PixelBuffer::uninitialised(image.pixels.size()));
    const std::int64_t alongX = (walk.xRows * w + walk.xColumns) * 4;
    const std::int64_t alongY = (walk.yRows * w + walk.yColumns) * 4;
    const std::uint8_t* stored = image.pixels.data();
    std::uint8_t* out = shown.pixels.data();
    std::int64_t rowStart = ((walk.bottom ? h - 1 : 0) * w + (walk.right ? w - 1 : 0)) * 4;
    for (std::int64_t y = 0; y < shownHeight; ++y, rowStart += alongY) {
        std::int64_t from = rowStart;
        for (std::int64_t x = 0; x < shownWidth; ++x, from += alongX, out += 4) std::memcpy(out, stored + from, 4);
    }
    return shown;
}

}  // namespace plakard
