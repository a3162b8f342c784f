// Drawings compared pixel for pixel with the stored images in data/golden
// (PLAKARD_UPDATE_GOLDEN=1 rewrites them after a deliberate change: look at
// them before committing). The captures are stored beside them.
#include <gtest/gtest.h>

#include <cstdlib>

#include "compose/DeviceFrame.hpp"
#include "compose/PageComposer.hpp"
#include "support/Support.hpp"
#include "type/Font.hpp"

namespace plakard::test {
namespace {

void expectGolden(const Canvas& drawn, const std::string& name) {
    const fs::path golden = dataPath("golden/" + name + ".png");
    if (std::getenv("PLAKARD_UPDATE_GOLDEN")) writePNG(drawn, golden, false);
    if (Canvas(golden) == drawn) return;
    writePNG(drawn, fs::temp_directory_path() / (name + "-actual.png"), false);
    ADD_FAILURE() << name << " differs; see " << fs::temp_directory_path() / (name + "-actual.png");
}

TEST(Golden, DevicesAndPages) {
    const RGBA background{200, 220, 240, 255};
    Canvas phone(200, 400, background), resampled(120, 200, background);
    drawDevice(phone, Canvas(dataPath("golden/capture-148x288.png")), 20, 30, 160, 300, 6);
    drawDevice(resampled, Canvas(dataPath("golden/capture-59x128.png")), 12, 40, 96, 210, 4);
    expectGolden(phone, "device-frame");
    expectGolden(resampled, "device-frame-resampled");
    const auto request = [](std::vector<std::string> lines, Layout layout) {
        return ComposeRequest{260, 560, RGBA{0x1E, 0x90, 0xFF, 255}, RGBA{255, 255, 255, 255}, std::move(lines),
                              Canvas(dataPath("golden/capture-200x420.png")), layout,
                              Font::load("/usr/share/fonts/opentype/inter/Inter-Black.otf")};
    };
    expectGolden(composePage(request({"PLAN YOUR DAY", "IN SECONDS"}, Layout::hero)), "page-hero");
    // Four lines push the phone's top above the page.
    expectGolden(composePage(request({"TRACK IT ALL", "EVERY HABIT", "EVERY DAY", "FOR FREE"}, Layout::deviceTop)),
                 "page-device-top");
}

}  // namespace
}  // namespace plakard::test
