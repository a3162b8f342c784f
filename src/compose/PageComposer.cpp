#include "compose/PageComposer.hpp"

#include <vector>

#include "compose/DeviceFrame.hpp"
#include "compose/PageLayout.hpp"
#include "type/LineLayout.hpp"

namespace plakard {

Canvas composePage(const ComposeRequest& request) {
    Canvas page(request.width, request.height, request.background);
    const Font& font = *request.font;
    const PageMetrics metrics = pageMetrics(request.width, request.height);

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
        layouts.push_back(layOutLine(font, line, request.language));
        advances.push_back(layouts[i].advanceUnits());
        scales.push_back(fittedLineSize(metrics, line, i, advances[i], font.unitsPerEm) / font.unitsPerEm);
    }
    std::vector<InkExtent> inks;
    inks.reserve(request.lines.size());
    for (std::size_t i = 0; i < request.lines.size(); ++i)
        inks.push_back(layouts[i].inkExtent(scales[i]));

    const PagePlacement placement =
        placePage(metrics, request.screenshot.width, request.screenshot.height, request.layout, inks);
    drawDevice(page, request.screenshot, placement.phoneLeft, placement.phoneTop, metrics.phoneWidth,
               placement.phoneHeight, metrics.bezel);

    // The headline goes on last, over the phone where they meet; each line's
    // ink starts where the previous line's gap ends.
    double cursor = placement.headlineTop;
    for (std::size_t i = 0; i < request.lines.size(); ++i) {
        const double width = advances[i] * scales[i];
        layouts[i].draw(page, request.foreground, (metrics.width - width) * 0.5, cursor - inks[i].top, scales[i]);
        cursor = cursor + metrics.lineGap + (inks[i].bottom - inks[i].top);
    }
    return page;
}

}  // namespace plakard
