#include "cli/PageRules.hpp"

#include <algorithm>
#include <cmath>
#include <map>

namespace plakard {

namespace {

std::string sizeText(std::int64_t width, std::int64_t height) {
    return std::to_string(width) + "x" + std::to_string(height);
}

// A store size turned to the page's orientation: every size is taken either way.
SlotSize turnedLike(SlotSize size, std::int64_t width, std::int64_t height) {
    if ((width > height) != (size.width > size.height)) std::swap(size.width, size.height);
    return size;
}

// The accepted size nearest to the page, in the page's orientation. A change
// of shape needs a crop and weighs twenty times a change of scale, which needs
// only a resample: so 1290x2797 is nearest 1290x2796, and a capture in points
// such as 390x844 is nearest an iPhone size of its shape, not a watch's.
SlotSize nearestSize(std::int64_t width, std::int64_t height) {
    const double aspect = static_cast<double>(width) / static_cast<double>(height);
    const double area = static_cast<double>(width) * static_cast<double>(height);
    SlotSize best{};
    double bestDistance = INFINITY;
    for (const SlotSize& row : appStoreSizes()) {
        const SlotSize size = turnedLike(row, width, height);
        const double w = static_cast<double>(size.width);
        const double h = static_cast<double>(size.height);
        const double distance = 20 * std::abs(std::log(aspect / (w / h))) + std::abs(std::log(area / (w * h)));
        if (distance < bestDistance) {
            bestDistance = distance;
            best = size;
        }
    }
    return best;
}

std::string sizeProblem(const PageFacts& page) {
    if (!appStoreSlots(page.width, page.height).empty()) return {};
    const SlotSize nearest = nearestSize(page.width, page.height);
    return sizeText(page.width, page.height) + " is no App Store size; the nearest is " +
           sizeText(nearest.width, nearest.height) + " (" + std::string(nearest.slot) + ")";
}

std::string playSizeProblem(const PageFacts& page) {
    const std::int64_t shortSide = std::min(page.width, page.height);
    const std::int64_t longSide = std::max(page.width, page.height);
    if (shortSide < PlayLimits::shortestSide || longSide > PlayLimits::longestSide) {
        return sizeText(page.width, page.height) + " has a side outside " + std::to_string(PlayLimits::shortestSide) +
               " to " + std::to_string(PlayLimits::longestSide) + " pixels; resize it to fit";
    }
    return {};
}

std::string playShapeProblem(const PageFacts& page) {
    const std::int64_t shortSide = std::min(page.width, page.height);
    const std::int64_t longSide = std::max(page.width, page.height);
    if (longSide > shortSide * PlayLimits::longSideTimesShort) {
        return sizeText(page.width, page.height) + " has a long side more than twice the short; crop it to 2:1";
    }
    return {};
}

std::string alphaProblem(const PageFacts& page) {
    return page.header.alpha ? "has an alpha channel; save it as RGB without alpha" : "";
}

// The App Store takes RGB colour; a palette of RGB colours is RGB colour too.
std::string colourProblem(const PageFacts& page) {
    if (page.header.colour == ColourModel::grey) return "is grey, not RGB; save it in RGB colour";
    if (page.header.colour == ColourModel::cmyk) return "is CMYK, not RGB; save it in RGB colour";
    return {};
}

// Google Play takes any JPEG, but of PNGs only 24-bit RGB: 8 bits for each
// of red, green and blue (an alpha channel is a problem of its own).
std::string playFormatProblem(const PageFacts& page) {
    const ImageHeader& header = page.header;
    if (header.format != ImageFormat::png) return {};
    std::string kind;
    if (header.colour == ColourModel::grey) kind = "grey";
    if (header.colour == ColourModel::palette) kind = "palette";
    if (header.colour == ColourModel::rgb && header.bitDepth != 8) kind = std::to_string(3 * header.bitDepth) + "-bit";
    if (kind.empty()) return {};
    return "is a " + kind + " PNG; save it as 24-bit PNG or as JPEG";
}

std::string playFileSizeProblem(const PageFacts& page) {
    if (page.fileBytes <= PlayLimits::largestFile) return {};
    return "is " + std::to_string(page.fileBytes) + " bytes, more than " +
           std::to_string(PlayLimits::largestFile / 1024 / 1024) + " MB; save it smaller, such as a JPEG";
}

std::string nameProblem(const PageFacts& page) {
    const bool png = page.header.format == ImageFormat::png;
    const std::string& extension = page.extension;
    if (png ? extension == ".png" : extension == ".jpg" || extension == ".jpeg") return {};
    const std::string kind = png ? "a PNG" : "a JPEG";
    const std::string right = png ? ".png" : ".jpg";
    if (extension.empty()) return "is " + kind + " without an extension; add " + right + " to its name";
    return "is " + kind + " named " + extension + "; rename it to " + right;
}

}  // namespace

std::string counted(std::int64_t count, std::string_view noun) {
    return std::to_string(count) + " " + std::string(noun) + (count == 1 ? "" : "s");
}

std::vector<std::string_view> appStoreSlots(std::int64_t width, std::int64_t height) {
    std::vector<std::string_view> slots;
    for (const SlotSize& row : appStoreSizes()) {
        const SlotSize size = turnedLike(row, width, height);
        if (size.width == width && size.height == height && std::ranges::find(slots, row.slot) == slots.end()) {
            slots.push_back(row.slot);
        }
    }
    return slots;
}

std::vector<std::string> pageProblems(const PageFacts& page, Store store) {
    std::vector<std::string> found;
    if (store == Store::appStore) {
        found = {sizeProblem(page), alphaProblem(page), colourProblem(page), nameProblem(page)};
    } else {
        found = {playSizeProblem(page), playShapeProblem(page), alphaProblem(page), playFormatProblem(page),
                 playFileSizeProblem(page), nameProblem(page)};
    }
    std::erase(found, std::string());
    return found;
}

std::vector<std::string> folderProblems(const SlotCounts& slots, int pages, Store store) {
    std::vector<std::string> found;
    if (store == Store::appStore) {
        // Pages that fit one slot fill it first; pages of a size two slots
        // share then go where there is room, so a folder fails only when no
        // way of placing its pages keeps every slot within the limit.
        std::map<std::string_view, int> filled;
        for (const auto& [fits, count] : slots) {
            if (fits.size() == 1) filled[fits.front()] += count;
        }
        for (const auto& [fits, count] : slots) {
            int left = count;
            if (fits.size() == 1) {
                left = std::max(0, count - appStorePagesPerSlot);
            } else {
                for (const std::string_view slot : fits) {
                    const int placed = std::min(left, std::max(0, appStorePagesPerSlot - filled[slot]));
                    filled[slot] += placed;
                    left -= placed;
                }
            }
            if (left == 0) continue;
            std::string names;
            for (const std::string_view name : fits) names += (names.empty() ? "" : " or ") + std::string(name);
            found.push_back(std::to_string(count) + " " + names + " pages; the App Store takes at most " +
                            std::to_string(appStorePagesPerSlot) + " a slot, so remove " + std::to_string(left));
        }
        return found;
    }
    const std::string range = "; Google Play takes " + std::to_string(PlayLimits::fewestPages) + " to " +
                              std::to_string(PlayLimits::mostPages) + " a folder, so ";
    if (pages < PlayLimits::fewestPages) {
        found.push_back(counted(pages, "phone page") + range + "add " + std::to_string(PlayLimits::fewestPages - pages));
    }
    if (pages > PlayLimits::mostPages) {
        found.push_back(counted(pages, "phone page") + range + "remove " + std::to_string(pages - PlayLimits::mostPages));
    }
    return found;
}

}  // namespace plakard
