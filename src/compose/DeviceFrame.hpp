#pragma once

#include "raster/Canvas.hpp"

namespace plakard {

// Draws the phone: soft shadow, dark rounded body, the capture inside the
// bezel b with matching corners, and the pill. Every proportion follows the
// phone width w.
void drawDevice(Canvas& page, const Canvas& capture, double x, double y, double w, double h, double b);

}  // namespace plakard
