// The shadow's blur: three box passes each way with running integer sums.
// It runs over a whole page for every composed screenshot, so it is the
// hottest loop of the program; it is kept exact (every byte equals the plain
// per-pixel definition) and proven so by the tests.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "compose/BoxBlur.hpp"
#include "compose/Primitives.hpp"
#include "platform/Require.hpp"

namespace plakard {

namespace {

// Spans stay below 2^14, which keeps the float division below exact. The
// widest a page asks for (a 20000-pixel page's shadow) is 672.
constexpr std::int64_t maxHalfWidth = (1 << 13) - 1;

// round(sum / n) for a window of n (odd) bytes, halves up, is
// floor((2 sum + n) / 2n). The numerator is odd and the divisor even, so the
// exact quotient (at most 255.5) lies at least 1/2n away from every integer.
// While n < 2^14 the numerator (below 2^23) is exact in float, and its product
// with the rounded reciprocal carries two roundings: a relative error below
// 2^-23, so less than 2^-15 absolute, which is below 1/2n. Truncating the
// product therefore gives the exact floor. Unlike an integer division this
// vectorises.
void divide(const std::int32_t* sums, std::uint8_t* out, std::size_t count, std::int32_t n) {
    const float inverse = 1.0f / static_cast<float>(2 * n);
    for (std::size_t i = 0; i < count; ++i)
        out[i] = static_cast<std::uint8_t>(static_cast<std::int32_t>(static_cast<float>(2 * sums[i] + n) * inverse));
}

// The part of the image that is not one uniform value. A box pass leaves a
// uniform stretch uniform (n equal bytes average to themselves), so outside
// the region widened by k along the pass direction the output equals the
// background: only the region needs computing, and it grows by k per pass.
struct Region {
    std::int64_t left, top, right, bottom;  // half-open
};

bool differingRegion(const Canvas& image, Region& region) {
    std::uint32_t background;
    std::memcpy(&background, image.pixels.data(), 4);
    region = {image.width, image.height, 0, 0};
    for (std::int64_t y = 0; y < image.height; ++y) {
        const std::uint8_t* row = image.pixel(0, y);
        std::int64_t first = 0;
        for (; first < image.width; ++first) {
            std::uint32_t value;
            std::memcpy(&value, row + first * 4, 4);
            if (value != background) break;
        }
        if (first == image.width) continue;
        std::int64_t last = image.width - 1;
        for (;; --last) {
            std::uint32_t value;
            std::memcpy(&value, row + last * 4, 4);
            if (value != background) break;
        }
        region.left = std::min(region.left, first);
        region.right = std::max(region.right, last + 1);
        region.top = std::min(region.top, y);
        region.bottom = y + 1;
    }
    return region.left < region.right;
}

// One horizontal pass, in place, over the rows [top, bottom), writing columns
// [left, right). A row equal to the one above blurs to the same bytes, so it
// is copied: inside the shadow nearly every row repeats its neighbour.
void horizontalPass(Canvas& image, const Region& region, std::int64_t k, std::vector<std::int32_t>& sums) {
    const auto n = static_cast<std::int32_t>(2 * k + 1);
    const std::int64_t last = image.width - 1;
    const auto rowBytes = static_cast<std::size_t>(image.width * 4);
    const auto count = static_cast<std::size_t>((region.right - region.left) * 4);
    std::vector<std::uint8_t> previous(rowBytes);  // the unblurred row above
    std::vector<std::uint8_t> blurred(count);
    sums.resize(count);
    for (std::int64_t y = region.top; y < region.bottom; ++y) {
        std::uint8_t* row = image.pixel(0, y);
        std::uint8_t* target = row + region.left * 4;
        if (y > region.top && std::memcmp(row, previous.data(), rowBytes) == 0) {
            std::memcpy(target, target - rowBytes, count);
            continue;
        }
        std::int32_t s0 = 0, s1 = 0, s2 = 0, s3 = 0;
        for (std::int64_t i = region.left - k; i <= region.left + k; ++i) {
            const std::uint8_t* p = row + std::clamp<std::int64_t>(i, 0, last) * 4;
            s0 += p[0];
            s1 += p[1];
            s2 += p[2];
            s3 += p[3];
        }
        std::int32_t* sum = sums.data();
        for (std::int64_t t = region.left; t < region.right; ++t, sum += 4) {
            sum[0] = s0;
            sum[1] = s1;
            sum[2] = s2;
            sum[3] = s3;
            const std::uint8_t* add = row + std::min(t + k + 1, last) * 4;
            const std::uint8_t* drop = row + std::max<std::int64_t>(t - k, 0) * 4;
            s0 += add[0] - drop[0];
            s1 += add[1] - drop[1];
            s2 += add[2] - drop[2];
            s3 += add[3] - drop[3];
        }
        divide(sums.data(), blurred.data(), count, n);
        std::memcpy(previous.data(), row, rowBytes);
        std::memcpy(target, blurred.data(), count);
    }
}

// One vertical pass, in place, over the columns [left, right), writing rows
// [top, bottom). A whole row of running sums moves down the image, so memory
// is read in rows; the unblurred rows that are still needed once their place
// has been written (the k + 1 above the current one) wait in a ring.
// Where every row of a window is the same, the output row is that row and is
// copied; the sums are rebuilt from it when the window stops being uniform.
void verticalPass(Canvas& image, const Region& region, std::int64_t k, std::vector<std::int32_t>& sums) {
    const auto n = static_cast<std::int32_t>(2 * k + 1);
    const std::int64_t last = image.height - 1;
    const auto count = static_cast<std::size_t>((region.right - region.left) * 4);
    const std::int64_t ringRows = k + 2;
    std::vector<std::uint8_t> ring(static_cast<std::size_t>(ringRows) * count);
    std::int64_t written = region.top;  // rows [top, written) hold their output
    const auto row = [&](std::int64_t y) -> const std::uint8_t* {
        y = std::clamp<std::int64_t>(y, 0, last);
        if (y >= region.top && y < written) return ring.data() + static_cast<std::size_t>(y % ringRows) * count;
        return image.pixel(region.left, y);
    };
    sums.resize(count);
    std::int32_t* sum = sums.data();

    // Each row after the first window's top, up to `compared`, has been
    // compared with the row above it; the last that differed is `change`. So
    // a window [low, high] with high <= compared is uniform exactly when
    // change <= low.
    std::int64_t compared = std::clamp<std::int64_t>(region.top - k, 0, last);
    std::int64_t change = compared;
    bool summed = false;  // whether `sum` holds the window of row t
    for (std::int64_t t = region.top; t < region.bottom; ++t) {
        const std::int64_t low = std::clamp<std::int64_t>(t - k, 0, last);
        const std::int64_t high = std::clamp<std::int64_t>(t + k, 0, last);
        for (; compared < high; ++compared)
            if (std::memcmp(row(compared + 1), row(compared), count) != 0) change = compared + 1;

        std::uint8_t* target = image.pixel(region.left, t);
        std::memcpy(ring.data() + static_cast<std::size_t>(t % ringRows) * count, target, count);
        ++written;
        if (change <= low) {
            std::memcpy(target, row(low), count);
            summed = false;
            continue;
        }
        if (!summed) {
            if (t == region.top) {
                std::fill(sum, sum + count, 0);
                for (std::int64_t i = t - k; i <= t + k; ++i) {
                    const std::uint8_t* r = row(i);
                    for (std::size_t c = 0; c < count; ++c) sum[c] += r[c];
                }
            } else {
                // The window of row t - 1 was uniform: n copies of one row.
                const std::uint8_t* uniform = row(t - 1 - k);
                const std::uint8_t* add = row(t + k);
                for (std::size_t c = 0; c < count; ++c) sum[c] = n * uniform[c] + add[c] - uniform[c];
            }
            summed = true;
        }
        divide(sum, target, count, n);
        const std::uint8_t* add = row(t + k + 1);
        const std::uint8_t* drop = row(t - k);
        for (std::size_t c = 0; c < count; ++c) sum[c] += add[c] - drop[c];
    }
}

}  // namespace

std::int64_t blurHalfWidth(double amount) {
    if (!(amount >= 0.5)) return 0;
    return std::max<std::int64_t>(1, roundToInt64(amount * 1.2));
}

void blurInPlace(Canvas& image, double amount) {
    const std::int64_t k = blurHalfWidth(amount);
    if (k == 0) return;
    require(k <= maxHalfWidth);

    Region region;
    if (!differingRegion(image, region)) return;
    std::vector<std::int32_t> sums;
    for (int iteration = 0; iteration < 3; ++iteration) {
        region.left = std::max<std::int64_t>(region.left - k, 0);
        region.right = std::min(region.right + k, image.width);
        horizontalPass(image, region, k, sums);
        region.top = std::max<std::int64_t>(region.top - k, 0);
        region.bottom = std::min(region.bottom + k, image.height);
        verticalPass(image, region, k, sums);
    }
}

Canvas boxBlurred(const Canvas& canvas, double amount) {
    Canvas image = canvas;
    blurInPlace(image, amount);
    return image;
}

}  // namespace plakard
