#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>

#include "compose/Primitives.hpp"
#include "compose/Pixels.hpp"

namespace plakard {
namespace {

using test::describe;
using test::firstDifference;
using test::randomCanvas;

RGBA blendedOnto(RGBA destination, RGBA colour, double coverage) {
    Canvas canvas(1, 1, destination);
    blendPixel(canvas, 0, 0, colour, coverage);
    return canvas.colour(0, 0);
}

struct BlendCase {
    const char* what;
    RGBA destination;
    RGBA colour;
    double coverage;
    RGBA expected;
};

TEST(BlendPixel, StraightAlphaSourceOver) {
    const BlendCase cases[] = {
        // a = 0.5 onto nothing: the colour itself at alpha 127.5, rounded up.
        {"half onto transparent", {9, 9, 9, 0}, {200, 100, 50, 255}, 0.5, {200, 100, 50, 128}},
        {"colour alpha onto transparent", {0, 0, 0, 0}, {200, 100, 50, 110}, 1, {200, 100, 50, 110}},
        // 0.5 x 255 + 0.5 x 0 = 127.5 rounds away from zero.
        {"half white onto opaque black", {0, 0, 0, 255}, {255, 255, 255, 255}, 0.5, {128, 128, 128, 255}},
        // a = 128/255: red 50.196 -> 50, blue 127/255 x 200 = 99.6 -> 100.
        {"half-alpha colour onto opaque", {0, 0, 200, 255}, {100, 0, 0, 128}, 1, {50, 0, 100, 255}},
        // a = 0.6, da = 128/255: A = 0.8008 (alpha 204.2); red (153 + 0.4 da 100) / A = 216.1.
        {"partial onto partial", {100, 0, 0, 128}, {255, 0, 0, 255}, 0.6, {216, 0, 0, 204}},
        // red 50.196 + 0.498 = 50.69, green 0.996, blue 1.494.
        {"coverage above 1 counts as 1", {1, 2, 3, 255}, {100, 0, 0, 128}, 2, {51, 1, 1, 255}},
        {"opaque at full coverage replaces", {1, 2, 3, 4}, {7, 8, 9, 255}, 1, {7, 8, 9, 255}},
        {"coverage 0 leaves the pixel", {1, 2, 3, 4}, {7, 8, 9, 255}, 0, {1, 2, 3, 4}},
        {"negative coverage leaves the pixel", {1, 2, 3, 4}, {7, 8, 9, 255}, -0.5, {1, 2, 3, 4}},
        {"NaN coverage leaves the pixel", {1, 2, 3, 4}, {7, 8, 9, 255}, std::nan(""), {1, 2, 3, 4}},
        {"alpha 0 leaves the pixel", {1, 2, 3, 4}, {7, 8, 9, 0}, 1, {1, 2, 3, 4}},
    };
    for (const BlendCase& c : cases)
        EXPECT_EQ(blendedOnto(c.destination, c.colour, c.coverage), c.expected)
            << c.what << ": got " << describe(blendedOnto(c.destination, c.colour, c.coverage));
}

TEST(BlendPixel, OutsideTheCanvasIsSkipped) {
    Canvas canvas(2, 2, RGBA{1, 2, 3, 4});
    const Canvas before = canvas;
    for (auto [x, y] : {std::pair{-1, 0}, {0, -1}, {2, 0}, {0, 2}}) blendPixel(canvas, x, y, RGBA{9, 9, 9, 255}, 1);
    EXPECT_EQ(canvas, before);
}

struct CoverageCase {
    const char* what;
    std::int64_t px, py;
    double x, y, w, h, radius;
    double expected;
};

TEST(RoundedRectCoverage, HandComputedPixels) {
    const CoverageCase cases[] = {
        // Integer edges are crisp: centres lie 0.5 inside or outside.
        {"just inside left", 10, 30, 10, 20, 30, 40, 0, 1},
        {"just outside left", 9, 30, 10, 20, 30, 40, 0, 0},
        {"just inside right", 39, 30, 10, 20, 30, 40, 0, 1},
        {"just outside right", 40, 30, 10, 20, 30, 40, 0, 0},
        {"just inside top", 20, 20, 10, 20, 30, 40, 0, 1},
        {"just outside top", 20, 19, 10, 20, 30, 40, 0, 0},
        {"just inside bottom", 20, 59, 10, 20, 30, 40, 0, 1},
        {"just outside bottom", 20, 60, 10, 20, 30, 40, 0, 0},
        // Edges through pixel centres cover those pixels by half.
        {"left edge on centre", 10, 5, 10.5, 0, 5, 10, 0, 0.5},
        {"right edge on centre", 15, 5, 10.5, 0, 5, 10, 0, 0.5},
        {"a quarter pixel in", 10, 5, 10.25, 0, 5, 10, 0, 0.75},
        // A huge radius on a 20 x 20 square is a disc of radius 10 about
        // (10, 10): (10.5, 0.5) lies sqrt(90.5) from the centre.
        {"disc near the top", 10, 0, 0, 0, 20, 20, 1000, 10.5 - std::sqrt(90.5)},
        {"disc corner pixel", 0, 0, 0, 0, 20, 20, 1000, 0},
        // 40 x 10 with a huge radius is a pill with end circles of radius 5
        // about (5, 5) and (35, 5).
        {"pill end", 0, 4, 0, 0, 40, 10, 99, 5.5 - std::sqrt(20.5)},
        {"pill corner pixel", 0, 0, 0, 0, 40, 10, 99, 0},
        {"pill middle", 20, 0, 0, 0, 40, 10, 99, 1},
        // A negative radius is a square corner.
        {"negative radius", 0, 0, 0, 0, 40, 10, -3, 1},
        // A quarter-circle corner of radius 4: (1.5, 1.5) to (4, 4) is 2.5 sqrt 2.
        {"rounded corner", 1, 1, 0, 0, 20, 20, 4, 0.5 - (2.5 * std::sqrt(2.0) - 4)},
    };
    for (const CoverageCase& c : cases)
        EXPECT_NEAR(roundedRectCoverage(c.px, c.py, c.x, c.y, c.w, c.h, c.radius), c.expected, 1e-12) << c.what;
}

// The plain definition: every pixel of the bounding box plus one, blended
// one by one at its coverage.
void referenceFill(Canvas& canvas, RGBA colour, double x, double y, double w, double h, double radius) {
    const auto left = static_cast<std::int64_t>(std::floor(x)) - 1;
    const auto right = static_cast<std::int64_t>(std::ceil(x + w)) + 1;
    const auto top = static_cast<std::int64_t>(std::floor(y)) - 1;
    const auto bottom = static_cast<std::int64_t>(std::ceil(y + h)) + 1;
    for (std::int64_t py = top; py <= bottom; ++py)
        for (std::int64_t px = left; px <= right; ++px)
            blendPixel(canvas, px, py, colour, roundedRectCoverage(px, py, x, y, w, h, radius));
}

void referenceImage(Canvas& canvas, const Canvas& image, double x, double y, double w, double h, double radius) {
    const auto ox = static_cast<std::int64_t>(std::round(x));
    const auto oy = static_cast<std::int64_t>(std::round(y));
    for (std::int64_t j = 0; j < image.height; ++j)
        for (std::int64_t i = 0; i < image.width; ++i) {
            const double coverage = roundedRectCoverage(ox + i, oy + j, x, y, w, h, radius);
            if (coverage > 0) blendPixel(canvas, ox + i, oy + j, image.colour(i, j), coverage);
        }
}

void referenceComposite(Canvas& canvas, const Canvas& image, std::int64_t x, std::int64_t y) {
    for (std::int64_t j = 0; j < image.height; ++j)
        for (std::int64_t i = 0; i < image.width; ++i)
            if (image.colour(i, j).a != 0) blendPixel(canvas, x + i, y + j, image.colour(i, j), 1);
}

// A background with runs of repeated pixels, so the blend's reuse of a
// previous result is exercised as well as fresh blends.
Canvas patchyCanvas(std::int64_t width, std::int64_t height, std::mt19937& random) {
    Canvas canvas = randomCanvas(width, height, random);
    const RGBA flat(random(), random(), random(), random());
    for (std::int64_t y = 0; y < height; ++y)
        for (std::int64_t x = 0; x < width; ++x)
            if ((x / 5 + y / 3) % 2 == 0) {
                std::uint8_t* p = canvas.pixel(x, y);
                p[0] = flat.r, p[1] = flat.g, p[2] = flat.b, p[3] = flat.a;
            }
    return canvas;
}

RGBA randomColour(std::mt19937& random) {
    const std::uint8_t alphas[] = {0, 1, 110, 254, 255, 255};
    return RGBA(random(), random(), random(), alphas[random() % 6]);
}

double randomReal(std::mt19937& random, double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
}

TEST(FillRoundedRect, EqualsBlendingEveryPixelAtItsCoverage) {
    std::mt19937 random(11);
    for (int round = 0; round < 400; ++round) {
        Canvas canvas = patchyCanvas(1 + random() % 40, 1 + random() % 40, random);
        const RGBA colour = randomColour(random);
        // Half-pixel and integer positions too, where the edges are exact.
        const double x = round % 4 == 0 ? std::round(randomReal(random, -10, 40)) * 0.5 : randomReal(random, -10, 40);
        const double y = randomReal(random, -10, 40);
        const double w = randomReal(random, 0, 45);
        const double h = round % 4 == 1 ? w : randomReal(random, 0, 45);
        const double radius = randomReal(random, -2, 25);
        Canvas expected = canvas;
        referenceFill(expected, colour, x, y, w, h, radius);
        fillRoundedRect(canvas, colour, x, y, w, h, radius);
        ASSERT_EQ(canvas, expected) << "rect " << x << ", " << y << ", " << w << ", " << h << " radius " << radius
                                    << " colour " << describe(colour) << ": " << firstDifference(expected, canvas);
    }
}

TEST(DrawImageRounded, AtTargetSizeEqualsBlendingEveryPixel) {
    std::mt19937 random(12);
    for (int round = 0; round < 300; ++round) {
        Canvas canvas = patchyCanvas(1 + random() % 40, 1 + random() % 40, random);
        const double x = randomReal(random, -15, 40);
        const double y = randomReal(random, -15, 40);
        const double w = randomReal(random, 0, 40);
        const double h = randomReal(random, 0, 40);
        const double radius = randomReal(random, -2, 25);
        const std::int64_t width = std::max<std::int64_t>(1, std::llround(w));
        Canvas image = randomCanvas(width, std::max<std::int64_t>(1, std::llround(h)), random);
        // Opaque and repeated pixels take the shortcuts; the rest blend.
        for (std::size_t i = 3; i < image.pixels.size(); i += 4)
            if (random() % 2 == 0) image.pixels[i] = 255;
        for (std::size_t i = 4; i < image.pixels.size(); i += 4)
            if (random() % 3 == 0) std::memcpy(image.pixels.data() + i, image.pixels.data() + i - 4, 4);
        Canvas expected = canvas;
        referenceImage(expected, image, x, y, w, h, radius);
        drawImageRounded(canvas, image, x, y, w, h, radius);
        ASSERT_EQ(canvas, expected) << "rect " << x << ", " << y << ", " << w << ", " << h << " radius " << radius
                                    << ": " << firstDifference(expected, canvas);
    }
}

TEST(CompositeOver, EqualsBlendingEveryVisiblePixelAtFullCoverage) {
    std::mt19937 random(13);
    for (int round = 0; round < 200; ++round) {
        Canvas canvas = patchyCanvas(1 + random() % 30, 1 + random() % 30, random);
        Canvas image = patchyCanvas(1 + random() % 30, 1 + random() % 30, random);
        for (std::size_t i = 3; i < image.pixels.size(); i += 4) {
            const unsigned pick = random() % 4;
            if (pick == 0) image.pixels[i] = 0;
            if (pick == 1) image.pixels[i] = 255;
        }
        const std::int64_t x = static_cast<std::int64_t>(random() % 60) - 30;
        const std::int64_t y = static_cast<std::int64_t>(random() % 60) - 30;
        Canvas expected = canvas;
        referenceComposite(expected, image, x, y);
        compositeOver(canvas, image, x, y);
        ASSERT_EQ(canvas, expected) << "at " << x << ", " << y << ": " << firstDifference(expected, canvas);
    }
}

}  // namespace
}  // namespace plakard
