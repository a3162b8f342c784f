#include "compose/Primitives.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <optional>

#include "platform/Require.hpp"

namespace plakard {

namespace {

// A rounded rectangle prepared for many coverage queries. The terms are the
// ones roundedRectCoverage spells out, computed once and in the same order, so
// every query gives the very same double as the free function.
struct RoundedRect {
    double centreX;
    double centreY;
    double halfWidth;
    double halfHeight;
    double radius;

    RoundedRect(double x, double y, double w, double h, double requestedRadius)
        : centreX(x + w * 0.5),
          centreY(y + h * 0.5),
          halfWidth(w * 0.5),
          halfHeight(h * 0.5),
          radius(std::max(0.0, std::min(requestedRadius, std::min(w, h) * 0.5))) {}

    double coverage(std::int64_t px, std::int64_t py) const {
        const double qx = std::abs(static_cast<double>(px) + 0.5 - centreX) + radius - halfWidth;
        const double qy = std::abs(static_cast<double>(py) + 0.5 - centreY) + radius - halfHeight;
        const double outsideX = std::max(qx, 0.0);
        const double outsideY = std::max(qy, 0.0);
        const double distance =
            std::sqrt(outsideX * outsideX + outsideY * outsideY) + std::min(std::max(qx, qy), 0.0) - radius;
        return std::clamp(0.5 - distance, 0.0, 1.0);
    }
};

// Walks the pixels [begin, end) of row py: calls edge(px, coverage) for every
// pixel whose coverage is below 1 and interior(from, to) once for the run of
// pixels with coverage 1. Coverage never grows with a pixel's distance from
// the centre column (every step of the formula is monotonic, and so is
// floating-point arithmetic), so the fully covered pixels of a row form one
// run: the edges are found by walking in from both ends and the run between
// them needs no square root.
template <typename Edge, typename Interior>
void walkRow(const RoundedRect& shape, std::int64_t py, std::int64_t begin, std::int64_t end, Edge edge,
             Interior interior) {
    std::int64_t left = begin;
    for (; left < end; ++left) {
        const double coverage = shape.coverage(left, py);
        if (coverage >= 1) break;
        edge(left, coverage);
    }
    if (left == end) return;
    std::int64_t right = end - 1;
    for (; right > left; --right) {
        const double coverage = shape.coverage(right, py);
        if (coverage >= 1) break;
        edge(right, coverage);
    }
    interior(left, right + 1);
}

// Blends one source pixel over one destination pixel at full coverage. The
// result depends on nothing but those eight bytes, and a page repeats the
// same pairs again and again (a uniform fill, the shadow's gradient on a flat
// background), so results are kept in a small direct-mapped table. An opaque
// source simply replaces the destination: the blend computes exactly that.
class FullCoverageBlend {
public:
    FullCoverageBlend() {
        // Key 0 is a transparent source over a transparent pixel, which the
        // blend leaves as it is: every entry starts out true.
        entries_.fill(Entry{});
    }

    void operator()(std::uint8_t* destination, const std::uint8_t* source) {
        if (source[3] == 255) {
            std::memcpy(destination, source, 4);
            return;
        }
        std::uint32_t below;
        std::uint32_t above;
        std::memcpy(&below, destination, 4);
        std::memcpy(&above, source, 4);
        const std::uint64_t key = (std::uint64_t{above} << 32) | below;
        Entry& entry = entries_[(key * 0x9E3779B97F4A7C15u) >> (64 - tableBits)];
        if (entry.key != key) {
            entry.key = key;
            blendInto(destination, RGBA{source[0], source[1], source[2], source[3]}, 1);
            std::memcpy(&entry.result, destination, 4);
            return;
        }
        std::memcpy(destination, &entry.result, 4);
    }

    void operator()(std::uint8_t* destination, RGBA colour) {
        const std::uint8_t source[4] = {colour.r, colour.g, colour.b, colour.a};
        (*this)(destination, source);
    }

private:
    static constexpr int tableBits = 10;
    struct Entry {
        std::uint64_t key = 0;
        std::uint32_t result = 0;
    };
    std::array<Entry, std::size_t{1} << tableBits> entries_;
};

std::int64_t floorToInt64(double value) { return roundToInt64(std::floor(value)); }
std::int64_t ceilToInt64(double value) { return roundToInt64(std::ceil(value)); }

}  // namespace

double roundedRectCoverage(std::int64_t px, std::int64_t py, double x, double y, double w, double h,
                           double radius) {
    return RoundedRect(x, y, w, h, radius).coverage(px, py);
}

void fillRoundedRect(Canvas& canvas, RGBA colour, double x, double y, double w, double h, double radius) {
    // Bounding box plus one pixel each side, so the soft edge reaches the
    // neighbouring pixels.
    const std::int64_t left = std::max<std::int64_t>(floorToInt64(x) - 1, 0);
    const std::int64_t right = std::min(ceilToInt64(x + w) + 1, canvas.width - 1);
    const std::int64_t top = std::max<std::int64_t>(floorToInt64(y) - 1, 0);
    const std::int64_t bottom = std::min(ceilToInt64(y + h) + 1, canvas.height - 1);
    if (left > right || top > bottom) return;

    const RoundedRect shape(x, y, w, h, radius);
    FullCoverageBlend full;
    for (std::int64_t py = top; py <= bottom; ++py) {
        std::uint8_t* row = canvas.pixel(0, py);
        walkRow(
            shape, py, left, right + 1,
            [&](std::int64_t px, double coverage) { blendInto(row + px * 4, colour, coverage); },
            [&](std::int64_t from, std::int64_t to) {
                for (std::int64_t px = from; px < to; ++px) full(row + px * 4, colour);
            });
    }
}

void drawImageRounded(Canvas& canvas, const Canvas& image, double x, double y, double w, double h,
                      double radius) {
    const std::int64_t targetWidth = std::max<std::int64_t>(1, roundToInt64(w));
    const std::int64_t targetHeight = std::max<std::int64_t>(1, roundToInt64(h));
    // An image already at the target size is drawn as it is, without a copy.
    std::optional<Canvas> resampled;
    if (image.width != targetWidth || image.height != targetHeight)
        resampled.emplace(image.resized(targetWidth, targetHeight));
    const Canvas& source = resampled ? *resampled : image;

    const std::int64_t originX = roundToInt64(x);
    const std::int64_t originY = roundToInt64(y);
    // Columns i and rows j of the resampled image that land inside the canvas.
    const std::int64_t firstColumn = std::max<std::int64_t>(0, -originX);
    const std::int64_t endColumn = std::min(targetWidth, canvas.width - originX);
    const std::int64_t firstRow = std::max<std::int64_t>(0, -originY);
    const std::int64_t endRow = std::min(targetHeight, canvas.height - originY);
    if (firstColumn >= endColumn || firstRow >= endRow) return;

    const RoundedRect shape(x, y, w, h, radius);
    FullCoverageBlend over;
    for (std::int64_t j = firstRow; j < endRow; ++j) {
        const std::int64_t py = originY + j;
        std::uint8_t* row = canvas.pixel(0, py);
        const std::uint8_t* sourceRow = source.pixel(0, j);
        walkRow(
            shape, py, originX + firstColumn, originX + endColumn,
            [&](std::int64_t px, double coverage) {
                if (!(coverage > 0)) return;
                const std::uint8_t* s = sourceRow + (px - originX) * 4;
                blendInto(row + px * 4, RGBA{s[0], s[1], s[2], s[3]}, coverage);
            },
            [&](std::int64_t from, std::int64_t to) {
                for (std::int64_t px = from; px < to; ++px) over(row + px * 4, sourceRow + (px - originX) * 4);
            });
    }
}

void compositeOver(Canvas& canvas, const Canvas& image, std::int64_t x, std::int64_t y) {
    const std::int64_t firstColumn = std::max<std::int64_t>(0, -x);
    const std::int64_t endColumn = std::min(image.width, canvas.width - x);
    const std::int64_t firstRow = std::max<std::int64_t>(0, -y);
    const std::int64_t endRow = std::min(image.height, canvas.height - y);
    if (firstColumn >= endColumn || firstRow >= endRow) return;

    FullCoverageBlend over;
    for (std::int64_t j = firstRow; j < endRow; ++j) {
        std::uint8_t* row = canvas.pixel(0, y + j);
        const std::uint8_t* sourceRow = image.pixel(0, j);
        for (std::int64_t i = firstColumn; i < endColumn; ++i) {
            const std::uint8_t* s = sourceRow + i * 4;
            if (s[3] != 0) over(row + (x + i) * 4, s);
        }
    }
}

}  // namespace plakard
