#pragma once
// Golden-image checks for drawing: the canvas is compared pixel for pixel with
// a stored PNG in tests/data/golden. On a mismatch the actual image and a diff
// (differing pixels red, the rest dimmed) are written to the temp folder.
// Run with PLAKARD_UPDATE_GOLDEN=1 to rewrite the stored images after a
// deliberate change, then look at them before committing.

#include <gtest/gtest.h>

#include <string>

#include "raster/Canvas.hpp"

namespace plakard::test {

::testing::AssertionResult matchesGolden(const Canvas& actual, const std::string& name);

}  // namespace plakard::test
