// The shadow's blur: three box passes each way with running integer sums.
// It runs over a whole page for every composed screenshot, so it is the
// hottest loop of the program; it is kept exact (every byte equals the plain
// per-pixel definition) and proven so by the tests.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "compose/Primitives.hpp"
#include "platform/Require.hpp"

namespace plakard {

namespace {

// Sums are 32-bit: 255 x span, and 2 x sum + span for the rounding, must stay
// below 2^31. A half-width of a million pixels is far beyond any page.
constexpr std::int64_t maxHalfWidth = 1 << 20;

// round(sum / n) for a window of n (odd) bytes, halves up, is
// floor((2 sum + n) / 2n). The numerator is odd and the divisor even, so the
// exact quotient (at most 255.5) lies at least 1/2n away from every integer.
// Its product with the rounded reciprocal carries two roundings, a relative
// error below 2^-23 in float: less than 2^-15 absolute, which is below 1/2n
// while n < 2^14 (double has room far beyond), so truncating the product gives
// the exact floor. Unlike a division this vectorises.
template <typename Real>
void divideSums(const std::int32_t* sums, std::uint8_t* out, std::size_t count, std::int32_t n) {
    const Real inverse = Real(1) / static_cast<Real>(2 * n);
    for (std::size_t i = 0; i < count; ++i)
        out[i] = static_cast<std::uint8_t>(static_cast<std::int32_t>(static_cast<Real>(2 * sums[i] + n) * inverse));
}

void divide(const std::int32_t* sums, std::uint8_t* out, std::size_t count, std::int32_t n) {
    if (n < (1 << 14))
        divideSums<float>(sums, out, count, n);
    else
        divideSums<double>(sums, out, count, n);
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

// One horizontal pass over the rows [top, bottom), writing columns [left, right).
void horizontalPass(const std::uint8_t* in, std::uint8_t* out, std::int64_t width, const Region& region,
                    std::int64_t k, std::vector<std::int32_t>& sums) {
    const auto n = static_cast<std::int32_t>(2 * k + 1);
    const std::int64_t last = width - 1;
    const std::int64_t count = region.right - region.left;
    sums.resize(static_cast<std::size_t>(count * 4));
    for (std::int64_t y = region.top; y < region.bottom; ++y) {
        const std::uint8_t* row = in + y * width * 4;
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
        divide(sums.data(), out + (y * width + region.left) * 4, sums.size(), n);
    }
}

// One vertical pass over the columns [left, right), writing rows [top, bottom);
// a whole row of running sums moves down the image, so memory is read in rows.
void verticalPass(const std::uint8_t* in, std::uint8_t* out, std::int64_t width, std::int64_t height,
                  const Region& region, std::int64_t k, std::vector<std::int32_t>& sums) {
    const auto n = static_cast<std::int32_t>(2 * k + 1);
    const std::int64_t last = height - 1;
    const std::size_t count = static_cast<std::size_t>((region.right - region.left) * 4);
    const std::int64_t stride = width * 4;
    const std::int64_t offset = region.left * 4;
    sums.assign(count, 0);
    std::int32_t* sum = sums.data();
    for (std::int64_t i = region.top - k; i <= region.top + k; ++i) {
        const std::uint8_t* row = in + std::clamp<std::int64_t>(i, 0, last) * stride + offset;
        for (std::size_t c = 0; c < count; ++c) sum[c] += row[c];
    }
    for (std::int64_t t = region.top; t < region.bottom; ++t) {
        divide(sum, out + t * stride + offset, count, n);
        const std::uint8_t* add = in + std::min(t + k + 1, last) * stride + offset;
        const std::uint8_t* drop = in + std::max<std::int64_t>(t - k, 0) * stride + offset;
        for (std::size_t c = 0; c < count; ++c) sum[c] += add[c] - drop[c];
    }
}

}  // namespace

Canvas boxBlurred(const Canvas& canvas, double amount) {
    Canvas image = canvas;
    if (!(amount >= 0.5)) return image;
    const std::int64_t k = std::max<std::int64_t>(1, roundToInt64(amount * 1.2));
    require(k <= maxHalfWidth);

    Region region;
    if (!differingRegion(image, region)) return image;
    // Both buffers hold the background outside every region written so far.
    std::vector<std::uint8_t> scratch = image.pixels;
    std::vector<std::int32_t> sums;
    for (int iteration = 0; iteration < 3; ++iteration) {
        region.left = std::max<std::int64_t>(region.left - k, 0);
        region.right = std::min(region.right + k, image.width);
        horizontalPass(image.pixels.data(), scratch.data(), image.width, region, k, sums);
        region.top = std::max<std::int64_t>(region.top - k, 0);
        region.bottom = std::min(region.bottom + k, image.height);
        verticalPass(scratch.data(), image.pixels.data(), image.width, image.height, region, k, sums);
    }
    return image;
}

}  // namespace plakard
