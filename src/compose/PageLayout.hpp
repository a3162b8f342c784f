#pragma once
// The page's geometry, apart from any drawing: how large each headline line
// is set, where the headline block and the phone go. Every quantity is a
// fraction of the page width W or height H, so the page scales as a whole.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "compose/Layout.hpp"
#include "type/LineLayout.hpp"

namespace plakard {

struct PageMetrics {
    double width;            // W
    double height;           // H
    double textMeasure;      // 0.7 W: every line is fitted to this width unless capped
    double firstLineCap;     // 0.19 W: largest size of line 1
    double otherLineCap;     // 0.095 W: largest size of the other lines
    double legibilityFloor;  // 0.045 W: smallest size still legible at thumbnail size
    double lineGap;          // 0.018 W: between the ink of consecutive lines
    double margin;           // 0.075 H: above (hero) or below (device-top) the headline
    double phoneGap;         // 0.045 H: between headline block and phone
    double phoneWidth;       // P = 0.8 W
    double bezel;            // round(0.018 P)
};

PageMetrics pageMetrics(std::int64_t width, std::int64_t height);

// The em size in pixels of headline line number `index` (0 is the large
// first line) whose advance is `advanceUnits`: 70% of the page wide, capped,
// the cap for a line that advances nothing. Throws "headline line '...' is too
// long to set inside the centre 70% ..." when that size is below the floor.
double fittedLineSize(const PageMetrics& metrics, std::string_view line, std::size_t index, double advanceUnits,
                      double unitsPerEm);

struct PagePlacement {
    double blockHeight;   // T: the height reserved for the headline
    double headlineTop;   // Y: the block's top, where line 1's ink starts on a page fitted alone
    double phoneLeft;
    double phoneTop;      // may lie above the page (device-top) ...
    double phoneHeight;   // ... or run past its bottom (hero)
    double screenHeight;  // s: the capture's shape at the screen's width
};

// T of a page fitted alone: the lines' ink heights (their extents at their
// scales, top first) and a line gap between each two.
double headlineBlockHeight(const PageMetrics& metrics, std::span<const InkExtent> lineInks);

// Places a headline block of height T and a phone showing a capture of
// captureWidth x captureHeight. Throws "screenshot of WxH pixels is too tall
// ..." for a capture whose screen would have more rows than the resampler can
// make.
PagePlacement placePage(const PageMetrics& metrics, std::int64_t captureWidth, std::int64_t captureHeight,
                        Layout layout, double blockHeight);

}  // namespace plakard
