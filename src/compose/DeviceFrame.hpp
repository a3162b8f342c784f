#pragma once

#include "raster/Canvas.hpp"

namespace plakard {

// Draws the phone: soft shadow, dark rounded body, the capture inside the
// bezel b with matching corners, and the pill. Every proportion follows the
// phone width w.
void drawDevice(Canvas& page, const Canvas& capture, double x, double y, double w, double h, double b);

// Where drawDevice puts each part of the phone at (x, y, w, h) with bezel b.
struct RoundedRectangle {
    double x, y, width, height, radius;
};
struct DeviceGeometry {
    RoundedRectangle shadow;  // the body dropped by 2b, before blurring
    double blurAmount;
    RoundedRectangle body;
    RoundedRectangle screen;
    RoundedRectangle pill;
};
DeviceGeometry deviceGeometry(double x, double y, double w, double h, double b);

}  // namespace plakard
