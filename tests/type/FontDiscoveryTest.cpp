#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/PlakardError.hpp"
#include "support/TestSupport.hpp"
#include "type/FontDiscovery.hpp"
#include "type/TestFonts.hpp"

extern "C" char* program_invocation_short_name;

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

template <typename Search>
Outcome run(Search search) {
    Outcome outcome;
    testing::internal::CaptureStderr();
    try {
        outcome.result = "loaded " + search()->name;
    } catch (const PlakardError& error) {
        outcome.result = error.description;
    }
    outcome.standardError = testing::internal::GetCapturedStderr();
    return outcome;
}

Outcome find(const FontSearch& search) {
    return run([&] { return findFont(search); });
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

    void placeCompanion() { fs::copy_file(test::interBlack, binDir / "Inter-Black.ttf"); }

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

TEST_F(FontDiscovery, FontOptionWinsOverEverythingElse) {
    placeCompanion();
    fallbacks = {noto};
    const Outcome outcome = find(search(dejaVu, noto));
    EXPECT_EQ(outcome.result, "loaded DejaVu.ttf");
    EXPECT_EQ(outcome.standardError, "");
}

TEST_F(FontDiscovery, AMissingFontOptionFailsWithoutTryingAnythingElse) {
    placeCompanion();
    fallbacks = {noto};
    struct {
        std::string option;
        std::string message;
    } cases[] = {
        {"fonts/../missing.ttf", "font not found: fonts/../missing.ttf"},  // as the user wrote it
        {"", "font not found: "},
    };
    for (const auto& c : cases) {
        const Outcome outcome = find(search(c.option, dejaVu));
        EXPECT_EQ(outcome.result, c.message);
        EXPECT_EQ(outcome.standardError, "");
    }
}

TEST_F(FontDiscovery, AFontOptionNamingAFolderFailsToRead) {
    EXPECT_EQ(find(search(dir.path().string(), std::nullopt)).result,
              "cannot read font " + dir.path().string() + ": " + std::strerror(EISDIR));
}

TEST_F(FontDiscovery, EnvironmentValueComesBeforeTheCompanionFace) {
    placeCompanion();
    EXPECT_EQ(find(search(std::nullopt, noto)).result, "loaded Noto.ttf");
    // Missing or empty, it fails even though a face lies beside the binary.
    EXPECT_EQ(find(search(std::nullopt, dir / "gone.otf")).result,
              "font not found: " + (dir / "gone.otf").string() + " (from PLAKARD_FONT)");
    EXPECT_EQ(find(search(std::nullopt, "")).result, "font not found:  (from PLAKARD_FONT)");
}

TEST_F(FontDiscovery, CompanionFaceBesideTheBinaryIsUsedSilently) {
    placeCompanion();
    fallbacks = {dejaVu};
    const Outcome outcome = find(search(std::nullopt, std::nullopt));
    EXPECT_EQ(outcome.result, "loaded Inter-Black.ttf");
    EXPECT_EQ(outcome.standardError, "");
}

TEST_F(FontDiscovery, CompanionFaceNameIsMatchedExactly) {
    fs::copy_file(test::interBlack, binDir / "Inter-Black.otf");
    fallbacks = {dejaVu};
    const Outcome outcome = find(search(std::nullopt, std::nullopt));
    EXPECT_EQ(outcome.result, "loaded DejaVu.ttf");
    EXPECT_EQ(outcome.standardError, warning(dejaVu));
}

TEST_F(FontDiscovery, FirstExistingFallbackIsUsedWithAWarning) {
    const std::string absent = (dir / "absent.ttf").string();
    fallbacks = {absent, noto, dejaVu};
    const Outcome outcome = find(search(std::nullopt, std::nullopt));
    EXPECT_EQ(outcome.result, "loaded Noto.ttf");
    EXPECT_EQ(outcome.standardError, warning(noto));
}

TEST_F(FontDiscovery, BrokenFallbackIsReportedAfterItsWarningAndNotReplaced) {
    fallbacks = {broken, dejaVu};
    const Outcome outcome = find(search(std::nullopt, std::nullopt));
    EXPECT_EQ(outcome.result, "Broken.ttf is too small to be a font");
    EXPECT_EQ(outcome.standardError, warning(broken));
}

TEST_F(FontDiscovery, NothingFoundAsksForAFontOption) {
    const std::string absent = (dir / "absent.ttf").string();
    fallbacks = {absent};
    const Outcome outcome = find(search(std::nullopt, std::nullopt));
    EXPECT_EQ(outcome.result, "no usable font: Inter-Black.ttf is missing from " + binDir.string() +
                                  " and no system fallback is installed; pass --font PATH");
    EXPECT_EQ(outcome.standardError, "");
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

TEST(ExecutableDirectory, IsTheFolderHoldingTheRunningProgram) {
    const fs::path directory = executableDirectory();
    EXPECT_TRUE(directory.is_absolute());
    EXPECT_TRUE(fs::is_regular_file(directory / program_invocation_short_name)) << directory;
    EXPECT_NE(directory.string().back(), '/');
}

// Sets or clears PLAKARD_FONT for one test and puts the old value back.
class PlakardFontVariable {
public:
    explicit PlakardFontVariable(const char* value) {
        if (const char* old = std::getenv("PLAKARD_FONT")) saved_ = old;
        if (value) setenv("PLAKARD_FONT", value, 1);
        else unsetenv("PLAKARD_FONT");
    }
    ~PlakardFontVariable() {
        if (saved_) setenv("PLAKARD_FONT", saved_->c_str(), 1);
        else unsetenv("PLAKARD_FONT");
    }

private:
    std::optional<std::string> saved_;
};

TEST(FontDiscover, ReadsPlakardFontOnlyWithoutAFontOption) {
    {
        PlakardFontVariable variable(test::notoSansMono.c_str());
        EXPECT_EQ(run([] { return Font::discover(std::nullopt); }).result, "loaded NotoSansMono-Regular.ttf");
        EXPECT_EQ(run([] { return Font::discover(test::dejaVuSansBold.string()); }).result,
                  "loaded DejaVuSans-Bold.ttf");
        EXPECT_EQ(run([] { return Font::discover("missing.ttf"); }).result, "font not found: missing.ttf");
    }
    {
        PlakardFontVariable variable("");
        EXPECT_EQ(run([] { return Font::discover(std::nullopt); }).result, "font not found:  (from PLAKARD_FONT)");
    }
}

TEST(FontDiscover, WithoutEitherLooksBesideThisProgramThenAtTheSystemFallbacks) {
    PlakardFontVariable variable(nullptr);
    const fs::path directory = executableDirectory();
    ASSERT_FALSE(fs::exists(directory / "Inter-Black.ttf"));
    std::optional<std::string> fallback;
    for (std::string_view candidate : systemFallbackFonts) {
        if (fs::exists(candidate)) {
            fallback = std::string(candidate);
            break;
        }
    }
    const Outcome outcome = run([] { return Font::discover(std::nullopt); });
    if (fallback) {
        EXPECT_EQ(outcome.result, "loaded " + fs::path(*fallback).filename().string());
        EXPECT_EQ(outcome.standardError, "plakard: Inter-Black.ttf is not beside the binary in " +
                                             directory.string() + "; composing with " + *fallback +
                                             ", which will not match the sandbox\n");
    } else {
        EXPECT_EQ(outcome.result, "no usable font: Inter-Black.ttf is missing from " + directory.string() +
                                      " and no system fallback is installed; pass --font PATH");
    }
}

}  // namespace
}  // namespace plakard
