#include "compose/Golden.hpp"

#include <cstdlib>
#include <filesystem>

#include "support/TestSupport.hpp"

namespace plakard::test {

namespace {

Canvas diffImage(const Canvas& expected, const Canvas& actual, std::int64_t& differing) {
    Canvas diff(actual.width, actual.height, RGBA{0, 0, 0, 255});
    differing = 0;
    for (std::int64_t y = 0; y < actual.height; ++y)
        for (std::int64_t x = 0; x < actual.width; ++x) {
            std::uint8_t* out = diff.pixel(x, y);
            if (expected.colour(x, y) == actual.colour(x, y)) {
                const std::uint8_t* p = actual.pixel(x, y);
                const auto grey = static_cast<std::uint8_t>((p[0] + p[1] + p[2]) / 12);
                out[0] = out[1] = out[2] = grey;
            } else {
                ++differing;
                out[0] = 255;
            }
        }
    return diff;
}

}  // namespace

::testing::AssertionResult matchesGolden(const Canvas& actual, const std::string& name) {
    const std::filesystem::path golden = dataPath("golden") / (name + ".png");
    if (const char* update = std::getenv("PLAKARD_UPDATE_GOLDEN"); update && std::string(update) == "1") {
        writePNG(actual, golden, false);
        return ::testing::AssertionSuccess() << "rewrote " << golden;
    }
    const Canvas expected(golden);
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "plakard-golden";
    const std::filesystem::path actualPath = folder / (name + "-actual.png");
    if (expected.width != actual.width || expected.height != actual.height) {
        writePNG(actual, actualPath, false);
        return ::testing::AssertionFailure() << name << ": expected " << expected.width << "x" << expected.height
                                             << ", got " << actual.width << "x" << actual.height << " (written to "
                                             << actualPath << ")";
    }
    if (expected == actual) return ::testing::AssertionSuccess();
    std::int64_t differing = 0;
    const Canvas diff = diffImage(expected, actual, differing);
    const std::filesystem::path diffPath = folder / (name + "-diff.png");
    writePNG(actual, actualPath, false);
    writePNG(diff, diffPath, false);
    return ::testing::AssertionFailure() << name << ": " << differing << " pixels differ from " << golden
                                         << "; actual " << actualPath << ", diff " << diffPath;
}

}  // namespace plakard::test
