#include "compose/PageComposer.hpp"

#include <optional>
#include <vector>

#include "compose/DeviceFrame.hpp"
#include "compose/DevicePlacement.hpp"
#include "compose/HeadlineSet.hpp"
#include "compose/PageLayout.hpp"
#include "type/LineLayout.hpp"

namespace plakard {

Canvas composePage(const ComposeRequest& request) {
    Canvas page(request.width, request.height, request.background);
    const Font& font = *request.font;
    const PageMetrics metrics =
        request.device ? devicePageMetrics(request.width, request.height) : pageMetrics(request.width, request.height);

    // Every line is laid out once, then sized (and refused) before anything
    // is measured for ink, so the first illegible or unmeasurable line in
    // headline order is the one reported.
    std::vector<LineLayout> layouts;
    std::vector<double> advances;
    std::vector<double> scales;
    layouts.reserve(request.lines.size());
    advances.reserve(request.lines.size());
    scales.reserve(request.lines.size());
    for (std::size_t i = 0; i < request.lines.size(); ++i) {
        const std::string& line = request.lines[i];
        layouts.push_back(layOutLine(font, line, request.language, request.fallback.get()));
        advances.push_back(layouts[i].advanceUnits());
        scales.push_back(fittedLineSize(metrics, line, i, advances[i], font.unitsPerEm) / font.unitsPerEm);
    }
    // A page of a set takes the set's sizes, which never exceed its own.
    std::optional<SetBlock> set;
    if (!request.setHeadlines.empty()) {
        const HeadlineSetGeometry geometry =
            headlineSetGeometry(font, metrics, request.lines, request.setHeadlines, request.language,
                                request.fallback.get());
        for (std::size_t i = 0; i < scales.size(); ++i) scales[i] = geometry.lineSizes[i] / font.unitsPerEm;
        set = geometry.block;
    }
    std::vector<InkExtent> inks;
    inks.reserve(request.lines.size());
    for (std::size_t i = 0; i < request.lines.size(); ++i)
        inks.push_back(layouts[i].inkExtent(scales[i]));

    const double blockHeight = set ? set->height : headlineBlockHeight(metrics, inks);
    double headlineTop = 0;
    if (request.device && showsDeviceWhole(*request.device, request.width, request.height)) {
        const WholeDevicePlacement placement = placeWholeDevice(metrics, *request.device, request.screenshot.width,
                                                                request.screenshot.height, request.layout,
                                                                blockHeight, inks);
        drawDevice(page, request.screenshot, placement.device);
        headlineTop = placement.headlineTop;
    } else {
        const PagePlacement placement = placePage(metrics, request.screenshot.width, request.screenshot.height,
                                                  request.layout, blockHeight);
        drawDevice(page, request.screenshot, placement.phoneLeft, placement.phoneTop, metrics.phoneWidth,
                   placement.phoneHeight, metrics.bezel);
        headlineTop = placement.headlineTop;
    }

    // The headline goes on last, over the device where they meet; each line's
    // ink starts where the previous line's gap ends. In a set, line 1 sits on
    // the set's baseline row instead, whatever its own ink.
    double cursor = headlineTop;
    for (std::size_t i = 0; i < request.lines.size(); ++i) {
        const double width = advances[i] * scales[i];
        double baseline = cursor - inks[i].top;
        if (set && i == 0) {
            baseline = headlineTop + set->baselineOffset;
            cursor = baseline + inks[i].top;
        }
        layouts[i].draw(page, request.foreground, (metrics.width - width) * 0.5, baseline, scales[i]);
        cursor = cursor + metrics.lineGap + (inks[i].bottom - inks[i].top);
    }
    return page;
}

}  // namespace plakard
