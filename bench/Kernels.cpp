// Kernel benchmarks at the size of a 6.9-inch store page (1290 x 2796).
// Run: make bench   (numbers are for comparing builds on one machine)

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <random>

#include "compose/DeviceFrame.hpp"
#include "compose/PageComposer.hpp"
#include "compose/Primitives.hpp"
#include "raster/Blend.hpp"
#include "raster/Canvas.hpp"
#include "type/Font.hpp"
#include "type/LineLayout.hpp"

namespace plakard {
namespace {

constexpr std::int64_t pageWidth = 1290;
constexpr std::int64_t pageHeight = 2796;

Canvas noiseCanvas(std::int64_t width, std::int64_t height, bool opaque) {
    Canvas canvas(width, height, RGBA{0, 0, 0, 0});
    std::mt19937 random(42);
    for (std::size_t i = 0; i < canvas.pixels.size(); ++i) {
        canvas.pixels[i] = static_cast<std::uint8_t>(random());
        if (opaque && i % 4 == 3) canvas.pixels[i] = 255;
    }
    return canvas;
}

const Canvas& sampleCapture() {
    static const Canvas capture(std::filesystem::path(PLAKARD_SAMPLES) / "capture-1.png");
    return capture;
}

std::shared_ptr<const Font> face() {
    static std::shared_ptr<const Font> font = Font::load(PLAKARD_FACE);
    return font;
}

void BM_Fill(benchmark::State& state) {
    for (auto _ : state) {
        Canvas page(pageWidth, pageHeight, RGBA{31, 31, 35, 255});
        benchmark::DoNotOptimize(page.pixels.data());
    }
}
BENCHMARK(BM_Fill)->Unit(benchmark::kMillisecond);

void BM_BlendPixel(benchmark::State& state) {
    Canvas page(pageWidth, pageHeight, RGBA{31, 31, 35, 255});
    for (auto _ : state) {
        for (std::int64_t y = 0; y < pageHeight; ++y)
            for (std::int64_t x = 0; x < pageWidth; ++x) blendPixel(page, x, y, RGBA{16, 16, 18, 255}, 0.5);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_BlendPixel)->Unit(benchmark::kMillisecond);

void BM_FillRoundedRectBody(benchmark::State& state) {
    Canvas page(pageWidth, pageHeight, RGBA{31, 31, 35, 255});
    for (auto _ : state) {
        fillRoundedRect(page, RGBA{16, 16, 18, 255}, 129, 600, 1032, 2192, 134.16);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_FillRoundedRectBody)->Unit(benchmark::kMillisecond);

void BM_DrawImageRounded(benchmark::State& state) {
    Canvas page(pageWidth, pageHeight, RGBA{31, 31, 35, 255});
    const Canvas& capture = sampleCapture();
    for (auto _ : state) {
        drawImageRounded(page, capture, 148, 619, 994, 2154, 115.16);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_DrawImageRounded)->Unit(benchmark::kMillisecond);

void BM_BoxBlurredShadow(benchmark::State& state) {
    Canvas scratch(pageWidth, pageHeight, RGBA{0, 0, 0, 0});
    fillRoundedRect(scratch, RGBA{0, 0, 0, 110}, 129, 638, 1032, 2192, 134.16);
    for (auto _ : state) benchmark::DoNotOptimize(boxBlurred(scratch, 36.12));
}
BENCHMARK(BM_BoxBlurredShadow)->Unit(benchmark::kMillisecond);

void BM_BoxBlurredNoise(benchmark::State& state) {
    Canvas noise = noiseCanvas(pageWidth, pageHeight, false);
    for (auto _ : state) benchmark::DoNotOptimize(boxBlurred(noise, 36.12));
}
BENCHMARK(BM_BoxBlurredNoise)->Unit(benchmark::kMillisecond);

void BM_CompositeOver(benchmark::State& state) {
    Canvas page(pageWidth, pageHeight, RGBA{31, 31, 35, 255});
    Canvas shadow(pageWidth, pageHeight, RGBA{0, 0, 0, 0});
    fillRoundedRect(shadow, RGBA{0, 0, 0, 110}, 129, 638, 1032, 2192, 134.16);
    shadow = boxBlurred(shadow, 36.12);
    for (auto _ : state) {
        compositeOver(page, shadow, 0, 0);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_CompositeOver)->Unit(benchmark::kMillisecond);

void BM_DrawDevice(benchmark::State& state) {
    const Canvas& capture = sampleCapture();
    for (auto _ : state) {
        state.PauseTiming();
        Canvas page(pageWidth, pageHeight, RGBA{31, 31, 35, 255});
        state.ResumeTiming();
        drawDevice(page, capture, 129, 600, 1032, 2192, 19);
        benchmark::DoNotOptimize(page.pixels.data());
    }
}
BENCHMARK(BM_DrawDevice)->Unit(benchmark::kMillisecond);

void BM_FlattenedRGB(benchmark::State& state) {
    Canvas page = noiseCanvas(pageWidth, pageHeight, false);
    for (auto _ : state) benchmark::DoNotOptimize(page.flattenedRGB());
}
BENCHMARK(BM_FlattenedRGB)->Unit(benchmark::kMillisecond);

void BM_PngDataComposedPage(benchmark::State& state) {
    Canvas page(pageWidth, pageHeight, RGBA{31, 31, 35, 255});
    drawDevice(page, sampleCapture(), 129, 600, 1032, 2192, 19);
    for (auto _ : state) benchmark::DoNotOptimize(page.pngData(true));
}
BENCHMARK(BM_PngDataComposedPage)->Unit(benchmark::kMillisecond);

void BM_ResizedCaptureToPage(benchmark::State& state) {
    const Canvas& capture = sampleCapture();
    for (auto _ : state) benchmark::DoNotOptimize(capture.resized(pageWidth, pageHeight));
}
BENCHMARK(BM_ResizedCaptureToPage)->Unit(benchmark::kMillisecond);

void BM_FittedCover(benchmark::State& state) {
    const Canvas& capture = sampleCapture();
    for (auto _ : state) benchmark::DoNotOptimize(capture.fitted(pageWidth, pageHeight, Fit::cover));
}
BENCHMARK(BM_FittedCover)->Unit(benchmark::kMillisecond);

// Both lines laid out, measured, their ink found and drawn, as a page sets its
// headline. The Arabic pair goes through the bidi and shaping path; the Latin
// one does not.
void BM_HeadlineMeasureAndDraw(benchmark::State& state, const char* facePath, const char* firstLine,
                               const char* secondLine) {
    auto font = Font::load(facePath);
    Canvas page(pageWidth, pageHeight, RGBA{31, 31, 35, 255});
    for (auto _ : state) {
        const LineLayout firstLayout = layOutLine(*font, firstLine);
        const LineLayout secondLayout = layOutLine(*font, secondLine);
        double first = firstLayout.advanceUnits();
        double second = secondLayout.advanceUnits();
        double scale1 = std::min(0.7 * pageWidth / first, 0.19 * pageWidth / font->unitsPerEm);
        double scale2 = std::min(0.7 * pageWidth / second, 0.095 * pageWidth / font->unitsPerEm);
        InkExtent ink1 = firstLayout.inkExtent(scale1);
        InkExtent ink2 = secondLayout.inkExtent(scale2);
        firstLayout.draw(page, RGBA{255, 255, 255, 255}, (pageWidth - first * scale1) / 2, 210 - ink1.top, scale1);
        secondLayout.draw(page, RGBA{255, 255, 255, 255}, (pageWidth - second * scale2) / 2, 500 - ink2.top,
                          scale2);
        benchmark::ClobberMemory();
    }
}
BENCHMARK_CAPTURE(BM_HeadlineMeasureAndDraw, latin, PLAKARD_FACE, "TRACK", "EVERY SUBSCRIPTION")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_HeadlineMeasureAndDraw, arabic, "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf",
                  "تتبع", "كل اشتراكاتك")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_HeadlineMeasureAndDraw, latinInDejaVu, "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf",
                  "TRACK", "EVERY SUBSCRIPTION")
    ->Unit(benchmark::kMillisecond);

void BM_ComposePage(benchmark::State& state) {
    ComposeRequest request{pageWidth,
                           pageHeight,
                           RGBA{31, 31, 35, 255},
                           RGBA{255, 255, 255, 255},
                           {"TRACK", "EVERY SUBSCRIPTION"},
                           sampleCapture(),
                           Layout::hero,
                           face()};
    for (auto _ : state) benchmark::DoNotOptimize(composePage(request));
}
BENCHMARK(BM_ComposePage)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace plakard

BENCHMARK_MAIN();
