#pragma once
// What each store accepts as a screenshot: the data `plakard check` holds
// pages to. The App Store's sizes change with every new device, so they are
// kept here as one table with the date they were taken; StoreRules.cpp says how
// to refresh them.

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace plakard {

enum class Store { appStore, play };

// "app-store" or "play"; nothing for any other word.
std::optional<Store> storeNamed(std::string_view name);

// The store's name in a sentence: "the App Store", "Google Play".
std::string_view storeTitle(Store store);

struct SlotSize {
    std::string_view slot;  // the display a page of this size fills, e.g. iPhone 6.9"
    std::int64_t width;     // as the store lists it; the page may also be turned
    std::int64_t height;
};

// Every size App Store Connect takes, in the order of its list.
std::span<const SlotSize> appStoreSizes();

// The day the table was taken from App Store Connect's screenshot specifications.
extern const std::string_view appStoreSizesDate;

// Pages of one slot in one localisation.
constexpr int appStorePagesPerSlot = 10;

// Google Play's phone screenshots.
struct PlayLimits {
    static constexpr std::int64_t shortestSide = 320;
    static constexpr std::int64_t longestSide = 3840;
    static constexpr std::int64_t longSideTimesShort = 2;  // the long side at most this many times the short
    static constexpr std::int64_t largestFile = 8 * 1024 * 1024;  // bytes
    static constexpr int fewestPages = 2;
    static constexpr int mostPages = 8;
};

}  // namespace plakard
