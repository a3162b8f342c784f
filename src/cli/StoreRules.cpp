#include "cli/StoreRules.hpp"

namespace plakard {

namespace {

// App Store Connect's screenshot specifications as they stood on the date
// below. To refresh: compare each display's accepted sizes with the store's
// current list, add or remove rows here (a row per size, a display's newest
// size first), update the date, and update the table in docs/plakard.1 and
// README.md to match.
constexpr SlotSize sizes[] = {
    {"iPhone 6.9\"", 1320, 2868},   {"iPhone 6.9\"", 1290, 2796},  {"iPhone 6.9\"", 1260, 2736},
    {"iPhone 6.5\"", 1284, 2778},   {"iPhone 6.5\"", 1242, 2688},  {"iPhone 6.3\"", 1206, 2622},
    {"iPhone 6.3\"", 1179, 2556},   {"iPhone 6.1\"", 1170, 2532},  {"iPhone 6.1\"", 1125, 2436},
    {"iPhone 6.1\"", 1080, 2340},   {"iPhone 5.5\"", 1242, 2208},  {"iPad 13\"", 2064, 2752},
    {"iPad 13\"", 2048, 2732},      {"iPad 11\"", 1668, 2420},     {"iPad 11\"", 1668, 2388},
    {"iPad 11\"", 1640, 2360},      {"iPad 11\"", 1488, 2266},     {"Mac", 2880, 1800},
    {"Mac", 2560, 1600},            {"Mac", 1440, 900},            {"Mac", 1280, 800},
    {"Apple TV", 3840, 2160},       {"Apple TV", 1920, 1080},      {"Vision Pro", 3840, 2160},
    {"Apple Watch", 422, 514},      {"Apple Watch", 410, 502},     {"Apple Watch", 416, 496},
    {"Apple Watch", 396, 484},      {"Apple Watch", 368, 448},     {"Apple Watch", 312, 390},
};

}  // namespace

const std::string_view appStoreSizesDate = "2026-11-24";

std::span<const SlotSize> appStoreSizes() { return sizes; }

std::optional<Store> storeNamed(std::string_view name) {
    if (name == "app-store") return Store::appStore;
    if (name == "play") return Store::play;
    return std::nullopt;
}

std::string_view storeTitle(Store store) { return store == Store::appStore ? "the App Store" : "Google Play"; }

}  // namespace plakard
