#include "compose/PageLayout.hpp"

#include <algorithm>
#include <cstdint>
#include <string>

#include "platform/PlakardError.hpp"
#include "platform/Require.hpp"
#include "platform/Unicode.hpp"

namespace plakard {

PageMetrics pageMetrics(std::int64_t width, std::int64_t height) {
    const auto w = static_cast<double>(width);
    const auto h = static_cast<double>(height);
    const double phoneWidth = 0.8 * w;
    return PageMetrics{
        .width = w,
        .height = h,
        .textMeasure = 0.7 * w,
        .firstLineCap = 0.19 * w,
        .otherLineCap = 0.095 * w,
        .legibilityFloor = 0.045 * w,
        .lineGap = 0.018 * w,
        .margin = 0.075 * h,
        .phoneGap = 0.045 * h,
        .phoneWidth = phoneWidth,
        .bezel = static_cast<double>(roundToInt64(0.018 * phoneWidth)),
    };
}

double fittedLineSize(const PageMetrics& metrics, std::string_view line, std::size_t index, double advanceUnits,
                      double unitsPerEm) {
    const double cap = index == 0 ? metrics.firstLineCap : metrics.otherLineCap;
    if (advanceUnits <= 0) return cap;
    const double size = metrics.textMeasure / advanceUnits * unitsPerEm;
    if (size < metrics.legibilityFloor) {
        // The character count that would just reach the floor at this line's
        // average character width.
        const double characters = static_cast<double>(graphemeCount(line));
        const std::int64_t suggestion = roundToInt64(characters * size / metrics.legibilityFloor);
        throw PlakardError("headline line '" + std::string(line) +
                           "' is too long to set inside the centre 70% and stay legible at thumbnail size;"
                           " shorten it to about " +
                           std::to_string(suggestion) + " characters or fewer");
    }
    return std::min(size, cap);
}

double headlineBlockHeight(const PageMetrics& metrics, std::span<const InkExtent> lineInks) {
    double blockHeight = 0;
    for (const InkExtent& ink : lineInks) blockHeight += ink.bottom - ink.top;
    const auto gaps = static_cast<double>(std::max<std::ptrdiff_t>(std::ssize(lineInks) - 1, 0));
    blockHeight += metrics.lineGap * gaps;
    return blockHeight;
}

PagePlacement placePage(const PageMetrics& metrics, std::int64_t captureWidth, std::int64_t captureHeight,
                        Layout layout, double blockHeight) {
    const double bezel = metrics.bezel;
    const double screenWidth = metrics.phoneWidth - 2 * bezel;
    const std::int64_t roundedScreenHeight =
        roundToInt64(screenWidth * static_cast<double>(captureHeight) / static_cast<double>(captureWidth));
    // The capture is resampled to the whole screen, and the resampler counts
    // rows in an int: a capture narrow enough to need more cannot be drawn.
    if (roundedScreenHeight > INT32_MAX)
        throw PlakardError("screenshot of " + std::to_string(captureWidth) + "x" + std::to_string(captureHeight) +
                           " pixels is too tall for its width to draw in the phone");
    const auto screenHeight = static_cast<double>(roundedScreenHeight);
    const double phoneHeight = 2 * bezel + screenHeight;

    PagePlacement placement{};
    placement.blockHeight = blockHeight;
    placement.phoneLeft = (metrics.width - metrics.phoneWidth) * 0.5;
    placement.phoneHeight = phoneHeight;
    placement.screenHeight = screenHeight;
    if (layout == Layout::hero) {
        placement.headlineTop = metrics.margin;
        placement.phoneTop = metrics.margin + blockHeight + metrics.phoneGap;
    } else {
        placement.headlineTop = metrics.height - metrics.margin - blockHeight;
        placement.phoneTop = placement.headlineTop - metrics.phoneGap - phoneHeight;
    }
    return placement;
}

}  // namespace plakard
