#pragma once

#include "compose/ComposeRequest.hpp"
#include "raster/Canvas.hpp"

namespace plakard {

// Paints the finished page: background, phone, then the headline lines fitted
// to the centre 70% of the width. Throws the legibility error or the font's
// missing-glyph error.
Canvas composePage(const ComposeRequest& request);

}  // namespace plakard
