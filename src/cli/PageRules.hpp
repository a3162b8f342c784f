#pragma once
// The rules `plakard check` holds a listing to, as plain functions of what is
// known about a page or a folder. Each problem is one text, "what is wrong;
// what to do", for the caller to put after the page's or folder's path.

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/StoreRules.hpp"
#include "raster/ImageHeader.hpp"

namespace plakard {

struct PageFacts {
    ImageHeader header;
    std::int64_t width;   // decoded and turned upright, as a viewer shows it
    std::int64_t height;
    std::string extension;  // of the file's name, lower-case with its dot, or empty
    std::int64_t fileBytes;
};

// Problems of a page that decoded, in a fixed order: size, alpha, colour,
// file size, name.
std::vector<std::string> pageProblems(const PageFacts& page, Store store);

// The App Store slots a page of this size can fill, in either orientation:
// one, two for a size two displays share (3840x2160: Apple TV and Vision
// Pro), none when the store takes no page of this size.
std::vector<std::string_view> appStoreSlots(std::int64_t width, std::int64_t height);

// A folder's pages by the slots they can fill, in the order first seen.
using SlotCounts = std::vector<std::pair<std::vector<std::string_view>, int>>;

// Problems of one folder (one localisation) holding `pages` images.
std::vector<std::string> folderProblems(const SlotCounts& slots, int pages, Store store);

// "1 phone page", "3 phone pages".
std::string counted(std::int64_t count, std::string_view noun);

}  // namespace plakard
