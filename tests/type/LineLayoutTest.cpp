// Every run of a line is set at the line's size, whatever em its face has: a
// run in the units of a face with twice the em, started part way along the
// line, gives the same pixels and ink as the line's own face.
#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "raster/Canvas.hpp"
#include "type/LineLayout.hpp"

namespace plakard {
namespace {

TEST(LineLayout, ARunOfAFaceWithTwiceTheEmIsSetAtTheLinesSize) {
    const auto font = Font::load("/usr/share/fonts/opentype/inter/Inter-Black.otf");
    const LineLayout line = layOutLine(*font, "AVATAR Tj");
    std::vector<GlyphRun> runs(line.runs().begin(), line.runs().end());
    runs[0].toLineUnits = 0.5;
    runs[0].start = 100;
    const LineLayout halved(*font, runs, line.advanceUnits() * 2 + 100, std::nullopt);
    const double scale = 40 / font->unitsPerEm;
    const Canvas blank(400, 80, RGBA{20, 40, 60, 255});
    Canvas expected = blank;
    Canvas got = blank;
    line.draw(expected, {255, 255, 255, 255}, 3 + 200 * scale, 60, scale);
    halved.draw(got, {255, 255, 255, 255}, 3, 60, scale * 2);
    EXPECT_FALSE(expected == blank);
    EXPECT_TRUE(got == expected);
    EXPECT_EQ(halved.inkExtent(scale * 2).top, line.inkExtent(scale).top);
}

}  // namespace
}  // namespace plakard
