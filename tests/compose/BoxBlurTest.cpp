#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "compose/Pixels.hpp"
#include "compose/Primitives.hpp"

namespace plakard {
namespace {

using test::firstDifference;
using test::randomCanvas;

// The blur as plainly as it can be said: every output byte sums its whole
// clamped window afresh and rounds the mean.
template <typename Bytes, typename OutBytes>
void referencePass(const Bytes& in, OutBytes& out, std::int64_t width, std::int64_t height, std::int64_t k,
                   bool horizontal) {
    const std::int64_t n = 2 * k + 1;
    for (std::int64_t y = 0; y < height; ++y)
        for (std::int64_t x = 0; x < width; ++x)
            for (std::int64_t channel = 0; channel < 4; ++channel) {
                std::int64_t sum = 0;
                for (std::int64_t d = -k; d <= k; ++d) {
                    const std::int64_t sx = horizontal ? std::clamp<std::int64_t>(x + d, 0, width - 1) : x;
                    const std::int64_t sy = horizontal ? y : std::clamp<std::int64_t>(y + d, 0, height - 1);
                    sum += in[static_cast<std::size_t>((sy * width + sx) * 4 + channel)];
                }
                out[static_cast<std::size_t>((y * width + x) * 4 + channel)] =
                    static_cast<std::uint8_t>(std::round(static_cast<double>(sum) / static_cast<double>(n)));
            }
}

Canvas referenceBlur(const Canvas& canvas, std::int64_t k) {
    Canvas image = canvas;
    std::vector<std::uint8_t> scratch(image.pixels.size());
    for (int iteration = 0; iteration < 3; ++iteration) {
        referencePass(image.pixels, scratch, image.width, image.height, k, true);
        referencePass(scratch, image.pixels, image.width, image.height, k, false);
    }
    return image;
}

std::int64_t halfWidth(double amount) { return std::max<std::int64_t>(1, std::llround(amount * 1.2)); }

::testing::AssertionResult blursLikeTheReference(const Canvas& image, double amount) {
    const Canvas expected = referenceBlur(image, halfWidth(amount));
    const Canvas blurred = boxBlurred(image, amount);
    if (blurred == expected) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << image.width << "x" << image.height << " amount " << amount << ": "
                                         << firstDifference(expected, blurred);
}

struct Size {
    std::int64_t width, height;
};

TEST(BoxBlurred, EqualsTheReferenceOnRandomImages) {
    // Odd sizes, single rows and columns, and images narrower than the span.
    const Size sizes[] = {{1, 1}, {1, 9}, {9, 1}, {3, 5}, {13, 7}, {31, 17}, {64, 3}, {5, 64}, {97, 41}};
    const double amounts[] = {0.5, 1.3, 2.9, 7.0, 36.12};
    std::mt19937 random(21);
    for (Size size : sizes)
        for (double amount : amounts) {
            ASSERT_TRUE(blursLikeTheReference(randomCanvas(size.width, size.height, random), amount));
        }
}

TEST(BoxBlurred, EqualsTheReferenceAroundPatchesOnAUniformBackground) {
    // Only the part that differs from the background needs blurring; patches
    // in the middle, on every edge and corner, and single pixels check that
    // nothing outside it changes.
    std::mt19937 random(22);
    for (int round = 0; round < 120; ++round) {
        const std::int64_t width = 1 + random() % 70;
        const std::int64_t height = 1 + random() % 70;
        const RGBA background(random(), random(), random(), random() % 2 ? 0 : random());
        Canvas image(width, height, background);
        const std::int64_t patches = 1 + random() % 3;
        for (std::int64_t p = 0; p < patches; ++p) {
            const std::int64_t x0 = random() % width, y0 = random() % height;
            const std::int64_t x1 = std::min(width, x0 + 1 + static_cast<std::int64_t>(random() % 12));
            const std::int64_t y1 =
                round % 5 == 0 ? height : std::min(height, y0 + 1 + static_cast<std::int64_t>(random() % 12));
            for (std::int64_t y = y0; y < y1; ++y)
                for (std::int64_t x = x0; x < x1; ++x)
                    for (int c = 0; c < 4; ++c) image.pixel(x, y)[c] = static_cast<std::uint8_t>(random());
        }
        ASSERT_TRUE(blursLikeTheReference(image, std::uniform_real_distribution<double>(0.5, 12)(random)));
    }
}

TEST(BoxBlurred, EqualsTheReferenceOnRunsOfRepeatedRows) {
    // Repeated rows are copied instead of blurred again, and uniform windows
    // of rows are copied in the vertical passes; runs shorter and longer than
    // the span, at the edges and in the middle, exercise every switch between
    // copying and summing.
    std::mt19937 random(26);
    for (int round = 0; round < 60; ++round) {
        const std::int64_t width = 1 + random() % 40;
        const std::int64_t height = 1 + random() % 90;
        const double amount = std::uniform_real_distribution<double>(0.5, 9)(random);
        const std::int64_t k = halfWidth(amount);
        const Canvas rows = randomCanvas(width, 3, random);
        Canvas image(width, height, RGBA{0, 0, 0, 0});
        for (std::int64_t y = 0; y < height;) {
            const std::int64_t source = random() % 3;
            const std::int64_t run = 1 + static_cast<std::int64_t>(random() % static_cast<unsigned>(3 * k + 2));
            for (std::int64_t end = std::min(height, y + run); y < end; ++y)
                std::copy_n(rows.pixel(0, source), width * 4, image.pixel(0, y));
        }
        ASSERT_TRUE(blursLikeTheReference(image, amount));
    }
}

TEST(BoxBlurred, EqualsTheReferenceOnAShadowShape) {
    Canvas shadow(90, 160, RGBA{0, 0, 0, 0});
    fillRoundedRect(shadow, RGBA{0, 0, 0, 110}, 10, 24, 70, 150, 9.1);
    EXPECT_TRUE(blursLikeTheReference(shadow, 2.45));
}

TEST(BoxBlurred, EqualsTheReferenceForVeryWideSpans) {
    // Spans of 16383 and 16385: the widest with the float division and the
    // narrowest with the double one.
    std::mt19937 random(23);
    for (double amount : {6826.0, 6827.0, 20000.0})
        ASSERT_TRUE(blursLikeTheReference(randomCanvas(5, 3, random), amount));
}

TEST(BoxBlurred, AmountSelectsTheHalfWidth) {
    struct Case {
        double amount;
        std::int64_t k;  // span 2k + 1
    };
    // 0.5 x 1.2 = 0.6 rounds to 1 (span 3); 36.12 x 1.2 = 43.344 gives 43 (span 87).
    const Case cases[] = {{0.5, 1}, {1.25, 2}, {36.12, 43}};
    std::mt19937 random(24);
    const Canvas image = randomCanvas(101, 97, random);
    for (const Case& c : cases) {
        const Canvas blurred = boxBlurred(image, c.amount);
        EXPECT_EQ(blurred, referenceBlur(image, c.k)) << c.amount;
        EXPECT_NE(blurred, referenceBlur(image, c.k + 1)) << c.amount;
        if (c.k > 1) {
            EXPECT_NE(blurred, referenceBlur(image, c.k - 1)) << c.amount;
        }
    }
}

TEST(BoxBlurred, BelowHalfReturnsTheInputUnchanged) {
    std::mt19937 random(25);
    const Canvas image = randomCanvas(9, 7, random);
    for (double amount : {0.49, 0.0, -3.0, std::nan("")}) EXPECT_EQ(boxBlurred(image, amount), image) << amount;
}

TEST(BoxBlurred, HandComputedSpanOfThree) {
    // One row: the vertical passes see the same row repeated and change
    // nothing. Rows: [0 0 90 0 0] -> [0 30 30 30 0] -> [10 20 30 20 10]
    // -> [13.3 20 23.3 20 13.3].
    Canvas image(5, 1, RGBA{0, 0, 0, 0});
    std::fill_n(image.pixel(2, 0), 4, std::uint8_t{90});
    const Canvas blurred = boxBlurred(image, 0.5);
    const std::uint8_t expected[] = {13, 20, 23, 20, 13};
    for (std::int64_t x = 0; x < 5; ++x)
        EXPECT_EQ(blurred.colour(x, 0), RGBA(expected[x], expected[x], expected[x], expected[x])) << x;
    EXPECT_EQ(image.colour(2, 0), RGBA(90, 90, 90, 90));  // the input is left alone
}

TEST(BoxBlurred, UniformImageStaysUniform) {
    const Canvas image(40, 30, RGBA{12, 200, 7, 99});
    EXPECT_EQ(boxBlurred(image, 5), image);
}

}  // namespace
}  // namespace plakard
