#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/PlakardError.hpp"
#include "support/TestSupport.hpp"
#include "type/FontDiscovery.hpp"
#include "type/TestFonts.hpp"

namespace plakard {
namespace {

using test::TempDir;
namespace fs = std::filesystem;

// Runs the search, returning the loaded face's name or the failure's text,
// and what was written to standard error meanwhile.
struct Outcome {
    std::string result;
    std::string standardError;
};

Outcome find(const FontSearch& search) {
    Outcome outcome;
    testing::internal::CaptureStderr();
    try {
        outcome.result = "loaded " + findFont(search)->name;
    } catch (const PlakardError& error) {
        outcome.result = error.description;
    }
    outcome.standardError = testing::internal::GetCapturedStderr();
    return outcome;
}

// A folder playing the executable's, and faces to put in and around it.
class FontDiscovery : public testing::Test {
protected:
    TempDir dir;
    fs::path binDir = dir / "bin";
    std::string dejaVu = (dir / "DejaVu.ttf").string();
    std::string noto = (dir / "Noto.ttf").string();
    std::string broken = (dir / "Broken.ttf").string();
    std::vector<std::string_view> fallbacks;

    void SetUp() override {
        fs::create_directory(binDir);
        fs::copy_file(test::dejaVuSansBold, dejaVu);
        fs::copy_file(test::notoSansMono, noto);
        test::writeBytes(broken, std::vector<std::uint8_t>(11, 0));
    }

    FontSearch search(std::optional<std::string> option, std::optional<std::string> environment) {
        FontSearch s;
        s.fontOption = std::move(option);
        s.environmentValue = std::move(environment);
        s.executableDirectory = binDir;
        s.fallbacks = fallbacks;
        return s;
    }

    std::string warning(const std::string& fallback) const {
        return "plakard: Inter-Black.ttf is not beside the binary in " + binDir.string() + "; composing with " +
               fallback + ", which will not match the sandbox\n";
    }
};

// The search with the fallbacks under the test's control; the e2e suite
// checks the same rules through the installed program.
TEST_F(FontDiscovery, OptionThenVariableThenCompanionThenFirstExistingFallback) {
    const std::string absent = (dir / "absent.ttf").string();
    const std::string folder = dir.path().string();
    const std::string none = "no usable font: Inter-Black.ttf is missing from " + binDir.string() +
                             " and no system fallback is installed; pass --font PATH";
    const struct {
        const char* what;
        const char* companionName;  // beside the binary, or nullptr
        std::optional<std::string> option, environment;
        std::vector<std::string_view> fallbacks;
        std::string result, standardError;
    } cases[] = {
        {"option wins", "Inter-Black.ttf", dejaVu, noto, {noto}, "loaded DejaVu.ttf", ""},
        {"missing option, as typed", "Inter-Black.ttf", "fonts/../missing.ttf", dejaVu, {noto},
         "font not found: fonts/../missing.ttf", ""},
        {"empty option", "Inter-Black.ttf", "", dejaVu, {noto}, "font not found: ", ""},
        {"option is a folder", nullptr, folder, std::nullopt, {},
         "cannot read font " + folder + ": " + std::strerror(EISDIR), ""},
        {"variable before companion", "Inter-Black.ttf", std::nullopt, noto, {}, "loaded Noto.ttf", ""},
        {"missing variable", "Inter-Black.ttf", std::nullopt, absent, {},
         "font not found: " + absent + " (from PLAKARD_FONT)", ""},
        {"empty variable", "Inter-Black.ttf", std::nullopt, "", {}, "font not found:  (from PLAKARD_FONT)", ""},
        {"companion, silently", "Inter-Black.ttf", std::nullopt, std::nullopt, {dejaVu}, "loaded Inter-Black.ttf", ""},
        {"companion name exact", "Inter-Black.otf", std::nullopt, std::nullopt, {dejaVu}, "loaded DejaVu.ttf",
         warning(dejaVu)},
        {"first existing fallback", nullptr, std::nullopt, std::nullopt, {absent, noto, dejaVu}, "loaded Noto.ttf",
         warning(noto)},
        {"broken fallback, not replaced", nullptr, std::nullopt, std::nullopt, {broken, dejaVu},
         "Broken.ttf is too small to be a font", warning(broken)},
        {"nothing found", nullptr, std::nullopt, std::nullopt, {absent}, none, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        fs::remove_all(binDir);
        fs::create_directory(binDir);
        if (c.companionName) fs::copy_file(test::interBlack, binDir / c.companionName);
        fallbacks = c.fallbacks;
        const Outcome outcome = find(search(c.option, c.environment));
        EXPECT_EQ(outcome.result, c.result);
        EXPECT_EQ(outcome.standardError, c.standardError);
    }
}

TEST(FontDiscoveryFallbacks, AreTheFixedSystemLocationsInOrder) {
    const std::vector<std::string_view> expected = {
        "/usr/share/fonts/inter/Inter-Black.otf",
        "/usr/share/fonts/inter/Inter-ExtraBold.otf",
        "/System/Library/Fonts/Supplemental/Arial Black.ttf",
        "/usr/share/fonts/dejavu/DejaVuSans-Bold.ttf",
        "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf",
    };
    EXPECT_EQ(std::vector<std::string_view>(systemFallbackFonts.begin(), systemFallbackFonts.end()), expected);
}

}  // namespace
}  // namespace plakard
