#pragma once
// A store listing is seen as a row of pages, so the pages of one set
// (compose --match) share their headline geometry: line i has the same size
// on every page, every page reserves the same block, and line 1's baseline
// lies on the same row. Each page works it out from the whole set, its own
// headline included, so every page of the set gets the very same numbers.

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "compose/PageLayout.hpp"
#include "type/Font.hpp"
#include "type/LineLayout.hpp"

namespace plakard {

// The headline block every page of a set reserves: each headline's lines
// stacked as on its own page (ink to ink, a line gap between), all of them
// hung from one baseline for line 1.
struct SetBlock {
    double height;          // from the highest ink above line 1's baseline to the lowest below it, in any headline
    double baselineOffset;  // line 1's baseline below the block's top
};

// Line i of every page: the smallest size that line i of any headline gets
// when fitted alone (a headline with fewer lines has no say), and lines 2
// onwards never larger than line 1. `fittedSizes` holds each headline's own
// sizes, top line first.
std::vector<double> setLineSizes(std::span<const std::vector<double>> fittedSizes);

// The block of a set, from each headline's line inks at the set's sizes (at
// least one headline, none without lines).
SetBlock setBlock(std::span<const std::vector<InkExtent>> headlineInks, double lineGap);

struct HeadlineSetGeometry {
    std::vector<double> lineSizes;  // em size in pixels of line i on every page
    SetBlock block;
};

// Fits every line of every headline of the set alone, the page's own headline
// first, then the others in their order, each top line first; the first line
// that cannot be set stops it with the page's usual error for that line (a
// missing glyph, or the legibility error naming the line).
HeadlineSetGeometry headlineSetGeometry(const Font& font, const PageMetrics& metrics,
                                        std::span<const std::string> ownLines,
                                        std::span<const std::vector<std::string>> otherHeadlines,
                                        std::string_view language, FallbackFaces* fallback = nullptr);

}  // namespace plakard
