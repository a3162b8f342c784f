#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "raster/Canvas.hpp"

namespace plakard {

// Decodes PNG or JPEG bytes; a failure names `fileName` in
// "cannot decode <fileName>: <reason> (PNG and JPEG only)".
Canvas decodedImage(std::span<const std::uint8_t> bytes, const std::string& fileName);

}  // namespace plakard
