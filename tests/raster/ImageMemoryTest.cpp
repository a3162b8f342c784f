#include <gtest/gtest.h>

// stb's own deflate, unhooked and private to this file: the size every file we write must beat.
#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#define STBI_WRITE_NO_STDIO
#include <stb_image_write.h>

#include <cstdlib>
#include <cstring>
#include <random>

#include "platform/ImageMemory.hpp"
#include "platform/Require.hpp"
#include "raster/Canvas.hpp"
#include "support/Support.hpp"

namespace plakard {
namespace {

TEST(ImageMemory, GrowingKeepsTheBytesAndZeroedBlocksAreZeroEvenWhenReused) {
    for (std::size_t size : {std::size_t{1000}, std::size_t{3} << 20, std::size_t{5} << 20}) {
        auto* block = static_cast<std::uint8_t*>(std::memset(imageMemory::allocate(size), 0xA5, size));
        block = static_cast<std::uint8_t*>(imageMemory::reallocate(block, size, 2 * size + (1 << 20)));
        EXPECT_TRUE(block[0] == 0xA5 && block[size - 1] == 0xA5) << size;
        imageMemory::release(block);
        auto* zeroed = static_cast<std::uint8_t*>(imageMemory::allocateZeroed(2 * size));
        EXPECT_TRUE(zeroed[0] == 0 && std::memcmp(zeroed, zeroed + 1, 2 * size - 1) == 0) << size;
        imageMemory::release(zeroed);
    }
}

TEST(ImageMemory, CoverReadInPlaceEqualsTheCroppedCopyResampled) {
    std::mt19937 random(11);
    std::vector<std::uint8_t> bytes(40 * 30 * 4);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
    const Canvas image(40, 30, PixelBuffer(bytes));
    const struct { std::int64_t width, height, cropX, cropWidth, cropHeight; } cases[] = {
        {10, 15, 10, 20, 30}, {7, 21, 15, 10, 30}, {80, 20, 0, 40, 10}, {40, 10, 0, 40, 10}, {20, 30, 10, 20, 30}};
    for (const auto& c : cases)
        EXPECT_TRUE(image.fitted(c.width, c.height, Fit::cover) ==
                    image.cropped(c.cropX, 0, c.cropWidth, c.cropHeight).resized(c.width, c.height)) << c.width;
}

TEST(ImageMemory, OpaquePNGsAreSmallerThanStbsOwnDeflateWrites) {
    for (const char* name : {"../../samples/capture-1.png", "golden/page-hero.png", "images/capture.jpg"}) {
        const Canvas canvas(test::dataPath(name));
        std::vector<std::uint8_t> rgb = canvas.flattenedRGB();
        int size = 0;
        void* own = stbi_write_png_to_mem(rgb.data(), 0, toInt32(canvas.width), toInt32(canvas.height), 3, &size);
        EXPECT_LT(canvas.pngData(true).size(), static_cast<std::size_t>(size)) << name;
        std::free(own);
    }
}

}  // namespace
}  // namespace plakard
