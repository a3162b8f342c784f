#pragma once

namespace plakard {

// How `fitted` brings an image to an exact size: `cover` cuts the overhanging
// axis (centred horizontally, anchored at the top) and then resamples;
// `stretch` resamples straight to the size.
enum class Fit { cover, stretch };

}  // namespace plakard
