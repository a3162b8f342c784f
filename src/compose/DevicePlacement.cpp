#include "compose/DevicePlacement.hpp"

#include <algorithm>
#include <cmath>
#include <string>

#include "compose/BoxBlur.hpp"
#include "compose/DeviceModel.hpp"
#include "platform/PlakardError.hpp"
#include "platform/Require.hpp"

namespace plakard {

namespace {

// The device's share of the page's height that a headline must leave.
constexpr double leastDeviceShare = 0.5;

std::string linesText(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " line" : " lines");
}

std::string sizeText(const PageMetrics& metrics) {
    return std::to_string(roundToInt64(metrics.width)) + "x" + std::to_string(roundToInt64(metrics.height));
}

// The room a headline block of height T leaves between it, with its gap, and
// the far edge of the page.
double roomLeft(const PageMetrics& metrics, double blockHeight) {
    return metrics.height - metrics.margin - blockHeight - metrics.phoneGap;
}

// The page's own lines that would fit; when all of them would, the block is
// the taller one of a --match set.
PlakardError headlineTooTall(const PageMetrics& metrics, std::span<const InkExtent> lineInks) {
    std::size_t fitting = 0;
    while (fitting < lineInks.size() &&
           roomLeft(metrics, headlineBlockHeight(metrics, lineInks.first(fitting + 1))) >=
               leastDeviceShare * metrics.height)
        ++fitting;
    const std::string tooTall = " leaves the device less than half the page's height";
    if (fitting == lineInks.size())
        return PlakardError("the --match set's headline block" + tooTall + " at " + sizeText(metrics) +
                            "; shorten its tallest headline");
    return PlakardError("headline of " + linesText(lineInks.size()) + tooTall + "; " +
                        (fitting > 0 ? "keep it to " + linesText(fitting) + " or fewer at " + sizeText(metrics)
                                     : "even its first line is too tall for a " + sizeText(metrics) + " page"));
}

const RoundedRectangle& outlineOf(const DeviceDrawing& device) { return device.body ? *device.body : device.screen; }

// How far the shadow reaches past the device's outline on each side: the
// dropped body spread by the blur's three box passes.
struct Spill {
    double left, above, right, below;
};

Spill shadowSpill(const DeviceDrawing& device) {
    const RoundedRectangle& outline = outlineOf(device);
    const RoundedRectangle& shadow = device.shadow;
    const auto reach = static_cast<double>(3 * blurHalfWidth(device.blurAmount));
    return {std::max(0.0, outline.x - (shadow.x - reach)), std::max(0.0, outline.y - (shadow.y - reach)),
            std::max(0.0, shadow.x + shadow.width + reach - outline.x - outline.width),
            std::max(0.0, shadow.y + shadow.height + reach - outline.y - outline.height)};
}

}  // namespace

bool showsDeviceWhole(Device device, std::int64_t pageWidth, std::int64_t pageHeight) {
    return device != Device::phone || pageWidth > pageHeight;
}

PageMetrics devicePageMetrics(std::int64_t width, std::int64_t height) {
    PageMetrics metrics = pageMetrics(width, height);
    const PageMetrics square = pageMetrics(std::min(width, height), std::min(width, height));
    metrics.firstLineCap = square.firstLineCap;
    metrics.otherLineCap = square.otherLineCap;
    metrics.legibilityFloor = square.legibilityFloor;
    metrics.lineGap = square.lineGap;
    return metrics;
}

WholeDevicePlacement placeWholeDevice(const PageMetrics& metrics, Device device, std::int64_t captureWidth,
                                      std::int64_t captureHeight, Layout layout, double blockHeight,
                                      std::span<const InkExtent> lineInks) {
    const double room = roomLeft(metrics, blockHeight);
    if (room < leastDeviceShare * metrics.height) throw headlineTooTall(metrics, lineInks);

    // The largest whole-pixel short side whose device fits the room, no wider
    // than today's phone, with its shadow on the page: the shadow may spread
    // under the headline's side of the room, as today's phone's does, but not
    // past the page's edges.
    const bool hero = layout == Layout::hero;
    const auto fits = [&](std::int64_t shortSide) {
        const DeviceDrawing drawn =
            deviceDrawing(device, 0, 0, static_cast<double>(shortSide), captureWidth, captureHeight);
        const RoundedRectangle& outline = outlineOf(drawn);
        const Spill spill = shadowSpill(drawn);
        return outline.width <= metrics.phoneWidth && outline.width + spill.left + spill.right <= metrics.width &&
               outline.height + (hero ? spill.below : spill.above) <= room;
    };
    std::int64_t fitting = 0;
    std::int64_t tooLarge = static_cast<std::int64_t>(std::floor(std::min(metrics.phoneWidth, room))) + 1;
    while (tooLarge - fitting > 1) {
        const std::int64_t middle = fitting + (tooLarge - fitting) / 2;
        if (fits(middle))
            fitting = middle;
        else
            tooLarge = middle;
    }
    if (fitting == 0)
        throw PlakardError("screenshot of " + std::to_string(captureWidth) + "x" + std::to_string(captureHeight) +
                           " pixels is too narrow for its length to show whole on a " + sizeText(metrics) + " page");

    // Centred across, and against the headline's side of the room, as today's
    // phone is. Whole pixels, so the screen's edges fall between pixels as its
    // size does.
    const auto shortSide = static_cast<double>(fitting);
    const RoundedRectangle outline =
        outlineOf(deviceDrawing(device, 0, 0, shortSide, captureWidth, captureHeight));
    const double headlineTop = hero ? metrics.margin : metrics.height - metrics.margin - blockHeight;
    const auto x = static_cast<double>(roundToInt64((metrics.width - outline.width) * 0.5));
    const auto y = static_cast<double>(roundToInt64(hero ? metrics.height - room : room - outline.height));
    return {blockHeight, headlineTop, deviceDrawing(device, x, y, shortSide, captureWidth, captureHeight)};
}

}  // namespace plakard
