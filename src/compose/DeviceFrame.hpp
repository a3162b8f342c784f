#pragma once

#include <optional>
#include <vector>

#include "raster/Canvas.hpp"
#include "raster/RGBA.hpp"

namespace plakard {

inline constexpr RGBA deviceBodyColour{16, 16, 18, 255};

struct RoundedRectangle {
    double x, y, width, height, radius;
};

// A small filled part drawn over the device: the pill, a camera, a speaker,
// a button.
struct DeviceDetail {
    RGBA colour;
    RoundedRectangle shape;
};

// Everything drawDevice paints, in page coordinates, in this order.
struct DeviceDrawing {
    RoundedRectangle shadow;  // the body's own shape dropped down, before blurring
    double blurAmount;
    std::optional<RoundedRectangle> body;  // none for a bare screen
    RoundedRectangle screen;               // the capture, stretched to it
    std::vector<DeviceDetail> details;
};

void drawDevice(Canvas& page, const Canvas& capture, const DeviceDrawing& device);

// The phone at (x, y, w, h) with bezel b: every proportion follows the phone
// width w, the shadow drops by 2b, the pill sits at the top of the screen.
DeviceDrawing phoneDrawing(double x, double y, double w, double h, double b);

// Draws the phone: soft shadow, dark rounded body, the capture inside the
// bezel b with matching corners, and the pill.
void drawDevice(Canvas& page, const Canvas& capture, double x, double y, double w, double h, double b);

}  // namespace plakard
