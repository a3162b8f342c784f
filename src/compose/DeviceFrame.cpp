#include "compose/DeviceFrame.hpp"

#include "compose/BoxBlur.hpp"
#include "compose/Primitives.hpp"

namespace plakard {

namespace {

constexpr RGBA shadowColour{0, 0, 0, 110};
constexpr RGBA pillColour{0, 0, 0, 255};

void fill(Canvas& canvas, RGBA colour, const RoundedRectangle& r) {
    fillRoundedRect(canvas, colour, r.x, r.y, r.width, r.height, r.radius);
}

}  // namespace

DeviceDrawing phoneDrawing(double x, double y, double w, double h, double b) {
    const double radius = 0.13 * w;
    const double pillWidth = 0.3 * w;
    const double pillHeight = 0.085 * w;
    return DeviceDrawing{
        .shadow = {x, y + 2 * b, w, h, radius},
        .blurAmount = 0.035 * w,
        .body = RoundedRectangle{x, y, w, h, radius},
        .screen = {x + b, y + b, w - 2 * b, h - 2 * b, radius - b},
        .details = {{pillColour,
                     {x + (w - pillWidth) * 0.5, y + b + 0.028 * w, pillWidth, pillHeight, pillHeight * 0.5}}},
    };
}

void drawDevice(Canvas& page, const Canvas& capture, const DeviceDrawing& device) {
    // The body's own shape, dropped and blurred on a transparent sheet the
    // size of the page, then laid under everything else.
    {
        Canvas shadow(page.width, page.height, RGBA{0, 0, 0, 0});
        fill(shadow, shadowColour, device.shadow);
        blurInPlace(shadow, device.blurAmount);
        compositeOver(page, shadow, 0, 0);
    }

    if (device.body) fill(page, deviceBodyColour, *device.body);
    const RoundedRectangle& screen = device.screen;
    drawImageRounded(page, capture, screen.x, screen.y, screen.width, screen.height, screen.radius);
    for (const DeviceDetail& detail : device.details) fill(page, detail.colour, detail.shape);
}

void drawDevice(Canvas& page, const Canvas& capture, double x, double y, double w, double h, double b) {
    drawDevice(page, capture, phoneDrawing(x, y, w, h, b));
}

}  // namespace plakard
