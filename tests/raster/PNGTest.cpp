#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "platform/PlakardError.hpp"
#include "raster/Canvas.hpp"
#include "support/TestSupport.hpp"

namespace plakard {
namespace {

// The flattening rule written out plainly: f = a / 255 first, then f * c.
std::uint8_t flattenedReference(std::uint8_t colour, std::uint8_t alpha) {
    const double f = alpha / 255.0;
    return static_cast<std::uint8_t>(std::round(f * colour));
}

std::string writeFailure(const Canvas& canvas, const std::filesystem::path& path) {
    try {
        writePNG(canvas, path, true);
        return "written";
    } catch (const PlakardError& error) {
        return error.description;
    }
}

std::string textOf(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// A small canvas with every kind of alpha, including colour hidden under 0.
Canvas translucentCanvas() {
    Canvas canvas(5, 3, RGBA{0, 0, 0, 0});
    for (std::int64_t y = 0; y < 3; ++y)
        for (std::int64_t x = 0; x < 5; ++x) {
            std::uint8_t* p = canvas.pixel(x, y);
            p[0] = static_cast<std::uint8_t>(x * 60);
            p[1] = static_cast<std::uint8_t>(y * 120);
            p[2] = static_cast<std::uint8_t>(200 - x * 10);
            p[3] = static_cast<std::uint8_t>((x + 5 * y) * 18);
        }
    return canvas;
}

TEST(FlattenedRGB, MatchesThePlainRuleForEveryColourAndAlpha) {
    // Pixel (c, a) carries colour byte c in red and its mirror in green and blue.
    Canvas canvas(256, 256, RGBA{0, 0, 0, 0});
    for (int a = 0; a < 256; ++a)
        for (int c = 0; c < 256; ++c) {
            std::uint8_t* p = canvas.pixel(c, a);
            p[0] = static_cast<std::uint8_t>(c);
            p[1] = static_cast<std::uint8_t>(255 - c);
            p[2] = static_cast<std::uint8_t>(c ^ 0x5A);
            p[3] = static_cast<std::uint8_t>(a);
        }
    const std::vector<std::uint8_t> rgb = canvas.flattenedRGB();
    ASSERT_EQ(rgb.size(), std::size_t{256 * 256 * 3});
    for (int a = 0; a < 256; ++a)
        for (int c = 0; c < 256; ++c) {
            const std::uint8_t* p = canvas.pixel(c, a);
            const std::uint8_t* out = rgb.data() + (a * 256 + c) * 3;
            const auto alpha = static_cast<std::uint8_t>(a);
            ASSERT_EQ(out[0], flattenedReference(p[0], alpha)) << "c=" << c << " a=" << a;
            ASSERT_EQ(out[1], flattenedReference(p[1], alpha)) << "c=" << c << " a=" << a;
            ASSERT_EQ(out[2], flattenedReference(p[2], alpha)) << "c=" << c << " a=" << a;
        }
}

TEST(FlattenedRGB, ComposesOverBlack) {
    const struct {
        RGBA pixel;
        std::uint8_t r, g, b;
    } cases[] = {
        {{200, 100, 50, 0}, 0, 0, 0},         {{200, 100, 50, 255}, 200, 100, 50},
        {{255, 255, 255, 128}, 128, 128, 128}, {{200, 100, 50, 128}, 100, 50, 25},
        {{1, 3, 255, 1}, 0, 0, 1},             {{255, 127, 1, 127}, 127, 63, 0},
    };
    for (const auto& c : cases) {
        const std::vector<std::uint8_t> rgb = Canvas(1, 1, c.pixel).flattenedRGB();
        EXPECT_EQ(rgb, (std::vector<std::uint8_t>{c.r, c.g, c.b}))
            << int(c.pixel.r) << "," << int(c.pixel.g) << "," << int(c.pixel.b) << "," << int(c.pixel.a);
    }
}

// Writes the canvas and gives back the file's bit depth and colour type
// from its header.
std::pair<int, int> writeAndReadHeader(const Canvas& canvas, const std::filesystem::path& path, bool opaque) {
    writePNG(canvas, path, opaque);
    const std::string bytes = textOf(path);
    EXPECT_EQ(bytes.substr(0, 8), "\x89PNG\r\n\x1a\n");
    return bytes.size() > 25 ? std::pair{int(bytes[24]), int(bytes[25])} : std::pair{-1, -1};
}

TEST(PNGData, KeepsAlphaThroughARoundTrip) {
    test::TempDir dir;
    const Canvas canvas = translucentCanvas();
    EXPECT_EQ(writeAndReadHeader(canvas, dir / "rgba.png", false), (std::pair{8, 6}));  // 8-bit RGBA
    const std::string bytes = textOf(dir / "rgba.png");
    EXPECT_EQ(Canvas(dir / "rgba.png"), canvas);
    EXPECT_EQ(canvas.pngData(false), std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
}

TEST(PNGData, OpaqueOutputIsRGBFlattenedOverBlack) {
    test::TempDir dir;
    const Canvas canvas = translucentCanvas();
    EXPECT_EQ(writeAndReadHeader(canvas, dir / "rgb.png", true), (std::pair{8, 2}));  // 8-bit RGB, no alpha
    const Canvas decoded(dir / "rgb.png");
    ASSERT_EQ(decoded.width, canvas.width);
    ASSERT_EQ(decoded.height, canvas.height);
    const std::vector<std::uint8_t> rgb = canvas.flattenedRGB();
    for (std::size_t i = 0; i < rgb.size() / 3; ++i) {
        const RGBA expected{rgb[i * 3], rgb[i * 3 + 1], rgb[i * 3 + 2], 255};
        EXPECT_EQ(decoded.colour(static_cast<std::int64_t>(i) % 5, static_cast<std::int64_t>(i) / 5), expected);
    }
}

TEST(WritePNG, WritesExactlyThePNGDataOfTheCanvas) {
    // The write flattens inside the canvas it was handed; pngData flattens
    // into a buffer of its own. Random pixels cover every alpha.
    test::TempDir dir;
    std::mt19937 random(7);
    Canvas canvas(61, 37, RGBA{0, 0, 0, 0});
    for (std::uint8_t& byte : canvas.pixels) byte = static_cast<std::uint8_t>(random());
    for (const bool opaque : {true, false}) {
        writePNG(canvas, dir / "out.png", opaque);
        const std::string bytes = textOf(dir / "out.png");
        EXPECT_EQ(std::vector<std::uint8_t>(bytes.begin(), bytes.end()), canvas.pngData(opaque)) << opaque;
    }
}

TEST(WritePNG, CreatesMissingFoldersAndReplacesWhatIsThere) {
    test::TempDir dir;
    const std::filesystem::path destination = dir / "final" / "iphone" / "01.png";
    writePNG(Canvas(2, 2, RGBA{1, 2, 3, 255}), destination, true);
    EXPECT_EQ(Canvas(destination), Canvas(2, 2, RGBA{1, 2, 3, 255}));
    writePNG(Canvas(3, 1, RGBA{9, 8, 7, 255}), destination, true);
    EXPECT_EQ(Canvas(destination), Canvas(3, 1, RGBA{9, 8, 7, 255}));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(destination.parent_path()), {}), 1);
}

TEST(WritePNG, NamesTheFullPathAndLeavesThingsAsTheyWere) {
    test::TempDir dir;
    std::ofstream(dir / "file") << "keep";
    std::filesystem::create_directory(dir / "folder");
    const Canvas canvas(2, 2, RGBA{1, 2, 3, 255});
    EXPECT_EQ(writeFailure(canvas, dir / "file" / "out.png"),
              "cannot write " + (dir / "file" / "out.png").string() + ": Not a directory");
    EXPECT_EQ(writeFailure(canvas, dir / "folder"), "cannot write " + (dir / "folder").string() + ": Is a directory");
    EXPECT_EQ(textOf(dir / "file"), "keep");
    EXPECT_TRUE(std::filesystem::is_empty(dir / "folder"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 2);

    if (::geteuid() != 0) {  // root writes anywhere
        std::filesystem::create_directory(dir / "locked");
        std::filesystem::permissions(dir / "locked", std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
        EXPECT_EQ(writeFailure(canvas, dir / "locked" / "out.png"),
                  "cannot write " + (dir / "locked" / "out.png").string() + ": Permission denied");
        std::filesystem::permissions(dir / "locked", std::filesystem::perms::owner_all);
    }
}

TEST(WritePNG, MakesARelativeDestinationAbsoluteInItsMessage) {
    test::TempDir dir;
    std::ofstream(dir / "file") << "keep";
    const std::filesystem::path previous = std::filesystem::current_path();
    std::filesystem::current_path(dir.path());
    const std::string message = writeFailure(Canvas(1, 1, RGBA{}), "file/out.png");
    std::filesystem::current_path(previous);
    EXPECT_EQ(message,
              "cannot write " + std::filesystem::canonical(dir.path()).string() + "/file/out.png: Not a directory");
}

}  // namespace
}  // namespace plakard
