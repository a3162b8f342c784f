#include "compose/HeadlineSet.hpp"

#include <algorithm>
#include <limits>

namespace plakard {

std::vector<double> setLineSizes(std::span<const std::vector<double>> fittedSizes) {
    std::vector<double> sizes;
    for (const std::vector<double>& headline : fittedSizes) {
        for (std::size_t i = 0; i < headline.size(); ++i) {
            if (i == sizes.size()) sizes.push_back(headline[i]);
            else sizes[i] = std::min(sizes[i], headline[i]);
        }
    }
    // A short line 1 and a long line 2 elsewhere in the set must not leave a
    // page whose second line outshouts its first.
    for (std::size_t i = 1; i < sizes.size(); ++i) sizes[i] = std::min(sizes[i], sizes[0]);
    return sizes;
}

SetBlock setBlock(std::span<const std::vector<InkExtent>> headlineInks, double lineGap) {
    // Line 1's baseline is one row on every page, so the block must hold the
    // tallest ink above it and the deepest stack of lines below it, which may
    // come from different headlines.
    // Ink may lie wholly below the baseline (a line of commas) or above it.
    double above = -std::numeric_limits<double>::infinity();
    double below = -std::numeric_limits<double>::infinity();
    for (const std::vector<InkExtent>& inks : headlineInks) {
        if (inks.empty()) continue;
        double depth = inks[0].bottom;
        for (std::size_t i = 1; i < inks.size(); ++i) depth += lineGap + (inks[i].bottom - inks[i].top);
        above = std::max(above, -inks[0].top);
        below = std::max(below, depth);
    }
    return SetBlock{.height = above + below, .baselineOffset = above};
}

HeadlineSetGeometry headlineSetGeometry(const Font& font, const PageMetrics& metrics,
                                        std::span<const std::string> ownLines,
                                        std::span<const std::vector<std::string>> otherHeadlines,
                                        std::string_view language, FallbackFaces* fallback) {
    std::vector<std::span<const std::string>> headlines{ownLines};
    headlines.insert(headlines.end(), otherHeadlines.begin(), otherHeadlines.end());

    std::vector<std::vector<LineLayout>> layouts;
    std::vector<std::vector<double>> fitted;
    for (std::span<const std::string> lines : headlines) {
        std::vector<LineLayout>& laidOut = layouts.emplace_back();
        std::vector<double>& sizes = fitted.emplace_back();
        for (std::size_t i = 0; i < lines.size(); ++i) {
            laidOut.push_back(layOutLine(font, lines[i], language, fallback));
            sizes.push_back(fittedLineSize(metrics, lines[i], i, laidOut[i].advanceUnits(), font.unitsPerEm));
        }
    }
    HeadlineSetGeometry geometry;
    geometry.lineSizes = setLineSizes(fitted);

    std::vector<std::vector<InkExtent>> inks;
    for (const std::vector<LineLayout>& laidOut : layouts) {
        std::vector<InkExtent>& extents = inks.emplace_back();
        for (std::size_t i = 0; i < laidOut.size(); ++i)
            extents.push_back(laidOut[i].inkExtent(geometry.lineSizes[i] / font.unitsPerEm));
    }
    geometry.block = setBlock(inks, metrics.lineGap);
    return geometry;
}

}  // namespace plakard
