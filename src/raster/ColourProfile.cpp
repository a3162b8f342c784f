#include "raster/ColourProfile.hpp"

#include <lcms2.h>

#include <cstdlib>

#include "platform/Owned.hpp"
#include "raster/ImageMetadata.hpp"

namespace plakard {

namespace {

using Profile = Owned<void, cmsCloseProfile>;
using Transform = Owned<void, cmsDeleteTransform>;

// Whether the transform maps a grid over the whole cube to itself, within a
// level: an sRGB profile by another maker (or under another name) does, and
// its pixels are then left exactly as decoded.
bool behavesAsSRGB(cmsHTRANSFORM transform) {
    constexpr int step = 15;
    constexpr int levels = 255 / step + 1;
    std::vector<std::uint8_t> grid;
    grid.reserve(levels * levels * levels * 4);
    for (int r = 0; r < levels; ++r) {
        for (int g = 0; g < levels; ++g) {
            for (int b = 0; b < levels; ++b) {
                grid.insert(grid.end(), {std::uint8_t(r * step), std::uint8_t(g * step), std::uint8_t(b * step), 255});
            }
        }
    }
    std::vector<std::uint8_t> mapped(grid);
    cmsDoTransform(transform, grid.data(), mapped.data(), static_cast<cmsUInt32Number>(grid.size() / 4));
    for (std::size_t i = 0; i < grid.size(); ++i) {
        if (std::abs(grid[i] - mapped[i]) > 1) return false;
    }
    return true;
}

bool describesDeviceRGB(cmsHPROFILE profile) {
    const cmsProfileClassSignature kind = cmsGetDeviceClass(profile);
    return cmsGetColorSpace(profile) == cmsSigRgbData &&
           (kind == cmsSigDisplayClass || kind == cmsSigInputClass || kind == cmsSigOutputClass ||
            kind == cmsSigColorSpaceClass);
}

}  // namespace

void convertToSRGB(Canvas& image, std::span<const std::uint8_t> profile) {
    if (profile.empty() || profile.size() > largestColourProfile) return;
    const Profile source(cmsOpenProfileFromMem(profile.data(), static_cast<cmsUInt32Number>(profile.size())));
    if (!source || !describesDeviceRGB(source.get())) return;
    const Profile sRGB(cmsCreate_sRGBProfile());
    if (!sRGB) return;
    // Relative colorimetric keeps in-gamut colours as they are and clips the
    // rest; black-point compensation keeps shadows from blocking up. Alpha
    // (an extra channel lcms leaves alone) is untouched.
    const Transform transform(cmsCreateTransform(source.get(), TYPE_RGBA_8, sRGB.get(), TYPE_RGBA_8,
                                                 INTENT_RELATIVE_COLORIMETRIC, cmsFLAGS_BLACKPOINTCOMPENSATION));
    if (!transform || behavesAsSRGB(transform.get())) return;
    for (std::int64_t y = 0; y < image.height; ++y) {
        cmsDoTransform(transform.get(), image.pixel(0, y), image.pixel(0, y),
                       static_cast<cmsUInt32Number>(image.width));
    }
}

}  // namespace plakard
