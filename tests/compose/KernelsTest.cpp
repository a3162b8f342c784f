// Every kernel with a fast path gives exactly the bytes of its plain
// definition, on random canvases with runs of repeated pixels (which the
// fast paths reuse) and every kind of alpha.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

#include "compose/BoxBlur.hpp"
#include "compose/Primitives.hpp"
#include "raster/Blend.hpp"
#include "raster/Canvas.hpp"

namespace plakard {
namespace {

std::mt19937 random(7);
double real(double low, double high) { return std::uniform_real_distribution<double>(low, high)(random); }

const std::uint8_t alphas[] = {0, 1, 110, 254, 255};

Canvas patchy(std::int64_t width, std::int64_t height) {
    Canvas canvas(width, height, RGBA{0, 0, 0, 0});
    const std::uint8_t flat[4] = {std::uint8_t(random()), std::uint8_t(random()), 40, alphas[random() % 5]};
    for (std::int64_t i = 0; i < width * height; ++i) {
        std::uint8_t* p = canvas.pixels.data() + i * 4;
        for (int c = 0; c < 4; ++c) p[c] = (i / 5 + i / width / 3) % 2 ? flat[c] : std::uint8_t(random());
        if (random() % 3 == 0) p[3] = alphas[random() % 5];
    }
    return canvas;
}

// Three box passes each way, every output byte its whole clamped window's
// rounded mean.
Canvas plainBlur(Canvas image, double amount) {
    const std::int64_t k = std::max<std::int64_t>(1, std::llround(amount * 1.2));
    for (int pass = 0; pass < 6; ++pass) {
        Canvas out = image;
        for (std::int64_t y = 0; y < image.height; ++y)
            for (std::int64_t x = 0; x < image.width; ++x)
                for (int c = 0; c < 4; ++c) {
                    std::int64_t sum = 0;
                    for (std::int64_t d = -k; d <= k; ++d)
                        sum += pass % 2 ? image.pixel(x, std::clamp<std::int64_t>(y + d, 0, image.height - 1))[c]
                                        : image.pixel(std::clamp<std::int64_t>(x + d, 0, image.width - 1), y)[c];
                    out.pixel(x, y)[c] = static_cast<std::uint8_t>(std::lround(double(sum) / double(2 * k + 1)));
                }
        image = out;
    }
    return image;
}

TEST(Kernels, EqualTheirPlainDefinitions) {
    for (int round = 0; round < 600; ++round) {
        const Canvas before = patchy(1 + random() % 40, 1 + random() % 40);
        Canvas fast = before, plain = before;
        const RGBA colour(random(), random(), random(), alphas[random() % 5]);
        const double x = round % 4 ? real(-15, 40) : std::round(real(-15, 40)) * 0.5, y = real(-15, 40);
        const double w = real(0, 45), h = round % 5 ? real(0, 45) : w, radius = real(-2, 25);
        const auto cover = [&](std::int64_t px, std::int64_t py) { return roundedRectCoverage(px, py, x, y, w, h, radius); };
        switch (round % 4) {
        case 0:
            fillRoundedRect(fast, colour, x, y, w, h, radius);
            for (std::int64_t py = std::llround(std::floor(y)) - 1; py <= std::llround(std::ceil(y + h)) + 1; ++py)
                for (std::int64_t px = std::llround(std::floor(x)) - 1; px <= std::llround(std::ceil(x + w)) + 1; ++px)
                    blendPixel(plain, px, py, colour, cover(px, py));
            break;
        case 1: {
            const Canvas image = patchy(std::max<std::int64_t>(1, std::llround(w)), std::max<std::int64_t>(1, std::llround(h)));
            drawImageRounded(fast, image, x, y, w, h, radius);
            for (std::int64_t j = 0; j < image.height; ++j)
                for (std::int64_t i = 0; i < image.width; ++i) {
                    const std::int64_t px = std::llround(x) + i, py = std::llround(y) + j;
                    if (cover(px, py) > 0) blendPixel(plain, px, py, image.colour(i, j), cover(px, py));
                }
            break;
        }
        case 2: {
            const Canvas image = patchy(1 + random() % 30, 1 + random() % 30);
            const std::int64_t left = std::llround(x), top = std::llround(y);
            compositeOver(fast, image, left, top);
            for (std::int64_t j = 0; j < image.height; ++j)
                for (std::int64_t i = 0; i < image.width; ++i)
                    if (image.colour(i, j).a != 0) blendPixel(plain, left + i, top + j, image.colour(i, j), 1);
            break;
        }
        default: {
            // Patches on a uniform sheet, as the shadow is, and noise.
            if (round % 8 == 3) {
                fast = plain = Canvas(before.width, before.height, RGBA{0, 0, 0, 0});
                fillRoundedRect(fast, colour, x, y, w, h, radius);
                plain = fast;
            }
            const double amount = std::array{0.4, 0.5, 1.3, 2.9, 7.0, 36.12}[random() % 6];
            blurInPlace(fast, amount);
            if (amount >= 0.5) plain = plainBlur(plain, amount);
        }
        }
        ASSERT_TRUE(fast == plain) << "round " << round;
    }
}

TEST(Kernels, FlattenedRGBIsTheExactBlendOverBlackForEveryByteAndAlpha) {
    Canvas canvas(256, 256, RGBA{0, 0, 0, 0});
    for (int a = 0; a < 256; ++a)
        for (int c = 0; c < 256; ++c) std::ranges::copy(std::array{c, 255 - c, c ^ 0x5A, a}, canvas.pixel(c, a));
    const std::vector<std::uint8_t> rgb = canvas.flattenedRGB();
    for (std::size_t i = 0; i < rgb.size(); ++i) {
        const std::uint8_t* p = canvas.pixels.data() + i / 3 * 4;
        ASSERT_EQ(rgb[i], std::lround(p[i % 3] * (p[3] / 255.0))) << i;
    }
}

}  // namespace
}  // namespace plakard
