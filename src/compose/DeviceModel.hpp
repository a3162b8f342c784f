#pragma once
// How each device is proportioned around a capture. Every length is a
// fraction of the body's short side, so a device scales as a whole; the
// screen takes the capture's shape, and a capture wider than tall lies the
// device on its side.

#include <cstdint>

#include "compose/Device.hpp"
#include "compose/DeviceFrame.hpp"

namespace plakard {

// The device with its body's top-left corner at (x, y) and a short side of
// shortSide pixels, showing a capture of captureWidth x captureHeight.
DeviceDrawing deviceDrawing(Device device, double x, double y, double shortSide, std::int64_t captureWidth,
                            std::int64_t captureHeight);

}  // namespace plakard
