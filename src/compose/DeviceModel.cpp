#include "compose/DeviceModel.hpp"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "platform/Require.hpp"

namespace plakard {

namespace {

constexpr RGBA buttonRingColour{58, 58, 64, 255};
constexpr RGBA speakerColour{44, 44, 50, 255};
constexpr RGBA lensColour{40, 42, 54, 255};

// The shape every device starts from, drawn upright (short side across),
// origin at the body's top-left corner.
struct Upright {
    double width;  // the short side
    double height;
    std::optional<RoundedRectangle> body;
    RoundedRectangle screen;
    std::vector<DeviceDetail> details;
};

// The screen's long side for a short side of `across`: the capture's shape,
// whole pixels.
double screenLength(double across, std::int64_t captureWidth, std::int64_t captureHeight) {
    const auto longSide = static_cast<double>(std::max(captureWidth, captureHeight));
    const auto shortSide = static_cast<double>(std::min(captureWidth, captureHeight));
    return static_cast<double>(roundToInt64(across * longSide / shortSide));
}

RoundedRectangle circle(double centreX, double centreY, double diameter) {
    return {centreX - diameter * 0.5, centreY - diameter * 0.5, diameter, diameter, diameter * 0.5};
}

// Today's phone: a bezel of 0.018 S all round and the pill at the top.
Upright phone(double s, std::int64_t cw, std::int64_t ch) {
    const auto bezel = static_cast<double>(roundToInt64(0.018 * s));
    const double height = screenLength(s - 2 * bezel, cw, ch) + 2 * bezel;
    DeviceDrawing drawn = phoneDrawing(0, 0, s, height, bezel);
    return {s, height, drawn.body, drawn.screen, std::move(drawn.details)};
}

// A phone from before the island: narrow sides, a deep band above and below
// a square-cornered screen, the speaker and camera on top and a round button
// below, so nothing sits over the capture.
Upright homeButtonPhone(double s, std::int64_t cw, std::int64_t ch) {
    const auto side = static_cast<double>(roundToInt64(0.05 * s));
    const auto band = static_cast<double>(roundToInt64(0.2 * s));
    const double screenWidth = s - 2 * side;
    const double height = screenLength(screenWidth, cw, ch) + 2 * band;
    const double button = 0.135 * s;
    const double speakerWidth = 0.16 * s;
    const double speakerHeight = 0.022 * s;
    return {s,
            height,
            RoundedRectangle{0, 0, s, height, 0.13 * s},
            {side, band, screenWidth, height - 2 * band, 0},
            {{buttonRingColour, circle(s * 0.5, height - band * 0.5, button)},
             {deviceBodyColour, circle(s * 0.5, height - band * 0.5, button - 0.016 * s)},
             {speakerColour, {(s - speakerWidth) * 0.5, (band - speakerHeight) * 0.5, speakerWidth, speakerHeight,
                              speakerHeight * 0.5}},
             {lensColour, circle(s * 0.5 - 0.15 * s, band * 0.5, 0.03 * s)}}};
}

// A tablet: one even bezel, gently rounded corners, a camera dot on the bezel
// (placed by the caller, on whichever edge is on top).
Upright tablet(double s, std::int64_t cw, std::int64_t ch) {
    const auto bezel = static_cast<double>(roundToInt64(0.04 * s));
    const double height = screenLength(s - 2 * bezel, cw, ch) + 2 * bezel;
    const double radius = 0.06 * s;
    return {s,
            height,
            RoundedRectangle{0, 0, s, height, radius},
            {bezel, bezel, s - 2 * bezel, height - 2 * bezel, radius - bezel},
            {}};
}

// The bare screen: a phone's screen corners for a capture of a phone with
// curved corners (at least 1.9 times as long as wide), a tablet's for the
// squarer rest, whose corner content a deep curve would cut.
Upright bareScreen(double s, std::int64_t cw, std::int64_t ch) {
    const double height = screenLength(s, cw, ch);
    const bool curvedPhone = height >= 1.9 * s;
    return {s, height, std::nullopt, {0, 0, s, height, (curvedPhone ? 0.116 : 0.022) * s}, {}};
}

// Moves a rectangle of the upright device onto the page; lying on its side,
// the device's top becomes its left.
RoundedRectangle placed(const RoundedRectangle& r, double x, double y, bool onSide) {
    if (onSide) return {x + r.y, y + r.x, r.height, r.width, r.radius};
    return {x + r.x, y + r.y, r.width, r.height, r.radius};
}

}  // namespace

DeviceDrawing deviceDrawing(Device device, double x, double y, double shortSide, std::int64_t captureWidth,
                            std::int64_t captureHeight) {
    Upright upright = device == Device::phone        ? phone(shortSide, captureWidth, captureHeight)
                      : device == Device::homeButton ? homeButtonPhone(shortSide, captureWidth, captureHeight)
                      : device == Device::tablet     ? tablet(shortSide, captureWidth, captureHeight)
                                                     : bareScreen(shortSide, captureWidth, captureHeight);
    const bool onSide = captureWidth > captureHeight;
    DeviceDrawing drawing{};
    drawing.screen = placed(upright.screen, x, y, onSide);
    const RoundedRectangle outline = upright.body ? placed(*upright.body, x, y, onSide) : drawing.screen;
    if (upright.body) drawing.body = outline;
    for (const DeviceDetail& detail : upright.details)
        drawing.details.push_back({detail.colour, placed(detail.shape, x, y, onSide)});
    if (device == Device::tablet) {
        // Centred on the top edge as it lies on the page.
        const double bezel = drawing.screen.y - outline.y;
        drawing.details.push_back(
            {lensColour, circle(outline.x + outline.width * 0.5, outline.y + bezel * 0.5, 0.012 * shortSide)});
    }
    // Light from above whichever way the device lies; today's phone drops its
    // shadow by twice its bezel, about the same.
    const double drop = device == Device::phone ? 2 * (drawing.screen.x - outline.x) : 0.036 * shortSide;
    drawing.shadow = outline;
    drawing.shadow.y += drop;
    drawing.blurAmount = 0.035 * shortSide;
    return drawing;
}

}  // namespace plakard
