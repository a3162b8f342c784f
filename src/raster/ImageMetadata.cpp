#include "raster/ImageMetadata.hpp"

#include <algorithm>
#include <bitset>
#include <string_view>

#include "platform/Owned.hpp"
#include "raster/ImageChunks.hpp"
#include "raster/Orientation.hpp"

#ifdef PLAKARD_HAVE_LIBDEFLATE
#include <libdeflate.h>
#else
#include <stb_image.h>
#endif

namespace plakard {

namespace {

// The zlib stream of an iCCP chunk, inflated into a buffer that grows only
// up to the largest profile taken: a stream that would inflate beyond it is
// dropped, never inflated in full.
std::optional<std::vector<std::uint8_t>> inflated(Bytes compressed) {
#ifdef PLAKARD_HAVE_LIBDEFLATE
    const Owned<libdeflate_decompressor, libdeflate_free_decompressor> decompressor(libdeflate_alloc_decompressor());
    if (!decompressor) return std::nullopt;
    for (std::size_t capacity = 64 * 1024; capacity <= largestColourProfile; capacity *= 4) {
        std::vector<std::uint8_t> profile(capacity);
        std::size_t size = 0;
        const libdeflate_result result = libdeflate_zlib_decompress(
            decompressor.get(), compressed.data(), compressed.size(), profile.data(), capacity, &size);
        if (result == LIBDEFLATE_SUCCESS) {
            profile.resize(size);
            return profile;
        }
        if (result != LIBDEFLATE_INSUFFICIENT_SPACE) return std::nullopt;
    }
    return std::nullopt;
#else
    std::vector<std::uint8_t> profile(largestColourProfile);
    const int size = stbi_zlib_decode_buffer(reinterpret_cast<char*>(profile.data()), int{largestColourProfile},
                                             reinterpret_cast<const char*>(compressed.data()),
                                             static_cast<int>(std::min<std::size_t>(compressed.size(), INT32_MAX)));
    if (size < 0) return std::nullopt;
    profile.resize(static_cast<std::size_t>(size));
    return profile;
#endif
}

// iCCP: a name of 1 to 79 bytes, a zero byte, compression method 0, zlib data.
std::optional<std::vector<std::uint8_t>> pngProfile(Bytes chunk) {
    const std::size_t nameEnd = std::string_view(reinterpret_cast<const char*>(chunk.data()),
                                                 std::min<std::size_t>(chunk.size(), 81)).find('\0');
    if (nameEnd == 0 || nameEnd > 79 || nameEnd + 2 > chunk.size() || chunk[nameEnd + 1] != 0) return std::nullopt;
    return inflated(chunk.subspan(nameEnd + 2));
}

ImageMetadata pngMetadata(Bytes file) {
    ImageMetadata metadata;
    std::optional<std::vector<std::uint8_t>> profile;
    bool colour = false;
    bool declaredSRGB = false;
    for (const auto& [type, data] : pngChunks(file)) {
        // Colour types 2, 3 and 6 (RGB, palette, RGBA) store colour.
        if (startsWith(type, "IHDR") && data.size() >= 13) colour = (data[9] & 2) != 0;
        if (startsWith(type, "iCCP") && !profile) profile = pngProfile(data);
        if (startsWith(type, "sRGB")) declaredSRGB = true;
        if (startsWith(type, "eXIf")) metadata.orientation = exifOrientation(data);
    }
    if (colour && !declaredSRGB) metadata.colourProfile = std::move(profile);
    return metadata;
}

// A profile split over APP2 segments, each numbered n of m: taken only when
// every segment from 1 to m is there exactly once.
class SplitProfile {
public:
    void add(Bytes segment) {
        const int number = segment[12];
        const int count = segment[13];
        if (number == 0 || number > count || (count_ != 0 && count != count_) || seen_[number]) broken_ = true;
        if (broken_) return;
        count_ = count;
        seen_[number] = true;
        parts_[number] = segment.subspan(14);
    }

    std::optional<std::vector<std::uint8_t>> whole() const {
        if (broken_ || count_ == 0 || static_cast<int>(seen_.count()) != count_) return std::nullopt;
        std::vector<std::uint8_t> profile;
        for (int number = 1; number <= count_; ++number) {
            if (profile.size() + parts_[number].size() > largestColourProfile) return std::nullopt;
            profile.insert(profile.end(), parts_[number].begin(), parts_[number].end());
        }
        return profile;
    }

private:
    int count_ = 0;
    bool broken_ = false;
    std::bitset<256> seen_;
    Bytes parts_[256];
};

ImageMetadata jpegMetadata(Bytes file) {
    ImageMetadata metadata;
    SplitProfile profile;
    bool colour = false;
    bool sawExif = false;
    // Everything wanted comes before the first scan.
    for (const auto& [marker, data] : jpegSegments(file)) {
        if (marker == 0xE1 && !sawExif && startsWith(data, std::string_view("Exif\0\0", 6))) {
            sawExif = true;
            metadata.orientation = exifOrientation(data.subspan(6));
        }
        if (marker == 0xE2 && data.size() >= 14 && startsWith(data, std::string_view("ICC_PROFILE\0", 12))) {
            profile.add(data);
        }
        if (isFrameHeader(marker) && data.size() >= 6) colour = data[5] == 3;
    }
    if (colour) metadata.colourProfile = profile.whole();
    return metadata;
}

}  // namespace

ImageMetadata imageMetadata(std::span<const std::uint8_t> file) {
    if (isPNG(file)) return pngMetadata(file);
    if (isJPEG(file)) return jpegMetadata(file);
    return {};
}

}  // namespace plakard
