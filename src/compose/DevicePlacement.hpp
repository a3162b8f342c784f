#pragma once
// Pages that show the device whole, shadow and all: every page given a
// device, except the phone on a page taller than wide, which stays today's
// phone exactly (0.8 of the width, running off the page when it is taller
// than the room left).

#include <cstdint>
#include <span>

#include "compose/Device.hpp"
#include "compose/DeviceFrame.hpp"
#include "compose/Layout.hpp"
#include "compose/PageLayout.hpp"
#include "type/Font.hpp"

namespace plakard {

bool showsDeviceWhole(Device device, std::int64_t pageWidth, std::int64_t pageHeight);

// pageMetrics, with the headline's sizes (caps, floor, line gap) following
// the page's short side: a landscape page sets its lines as the same device's
// portrait page does, not twice as large.
PageMetrics devicePageMetrics(std::int64_t width, std::int64_t height);

struct WholeDevicePlacement {
    double blockHeight;  // T
    double headlineTop;  // Y, where the headline's layout puts it
    DeviceDrawing device;
};

// A headline block of height T in its layout's place and the device,
// centred across, as large as fits the rest of the page but no wider than 0.8
// of it. Throws when the block leaves the device less than half the page's
// height (naming how many of the page's own lines, `lineInks`, would fit), or
// when the capture is too narrow for any device to fit.
WholeDevicePlacement placeWholeDevice(const PageMetrics& metrics, Device device, std::int64_t captureWidth,
                                      std::int64_t captureHeight, Layout layout, double blockHeight,
                                      std::span<const InkExtent> lineInks);

}  // namespace plakard
