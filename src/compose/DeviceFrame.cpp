#include "compose/DeviceFrame.hpp"

#include "compose/BoxBlur.hpp"
#include "compose/Primitives.hpp"
#include "raster/RGBA.hpp"

namespace plakard {

namespace {

constexpr RGBA shadowColour{0, 0, 0, 110};
constexpr RGBA bodyColour{16, 16, 18, 255};
constexpr RGBA pillColour{0, 0, 0, 255};

}  // namespace

void drawDevice(Canvas& page, const Canvas& capture, double x, double y, double w, double h, double b) {
    const double radius = 0.13 * w;

    // The body's own shape, dropped by twice the bezel and blurred on a
    // transparent sheet the size of the page, then laid under everything else.
    {
        Canvas shadow(page.width, page.height, RGBA{0, 0, 0, 0});
        fillRoundedRect(shadow, shadowColour, x, y + 2 * b, w, h, radius);
        blurInPlace(shadow, 0.035 * w);
        compositeOver(page, shadow, 0, 0);
    }

    fillRoundedRect(page, bodyColour, x, y, w, h, radius);
    drawImageRounded(page, capture, x + b, y + b, w - 2 * b, h - 2 * b, radius - b);

    const double pillWidth = 0.3 * w;
    const double pillHeight = 0.085 * w;
    fillRoundedRect(page, pillColour, x + (w - pillWidth) * 0.5, y + b + 0.028 * w, pillWidth, pillHeight,
                    pillHeight * 0.5);
}

}  // namespace plakard
