// The one instance of stb_image_write. Output goes through a callback into
// memory, so the file writing stays ours (atomic, with our error messages).
//
// stb keeps its own row filters and compression level; only the deflate step
// is swapped for libdeflate through stb's documented hook, which compresses
// the same filtered rows several times faster and smaller. The decoded pixels
// are the same either way: deflate is lossless.
//
// The level stb passes (8 by default) is a setting of stb's own compressor.
// libdeflate's levels mean something else: from 7 up it switches to its slow
// lazy and near-optimal parsers, which took 2-3x the time of level 6 on our
// pages and captures for files 2-4% smaller. Level 6 is the measured knee and
// still writes every file well below what stb's own deflate would.
#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STBI_WRITE_NO_STDIO
// The filtered image it builds is image-sized: from the canvases' allocator.
#define STBIW_MALLOC(size) plakard::imageMemory::allocate(size)
#define STBIW_REALLOC_SIZED(block, usedSize, newSize) plakard::imageMemory::reallocate(block, usedSize, newSize)
#define STBIW_FREE(block) plakard::imageMemory::release(block)
#include "platform/ImageMemory.hpp"

#ifdef PLAKARD_HAVE_LIBDEFLATE
#include <cstdlib>
#include <memory>

#include <libdeflate.h>

namespace {

constexpr int libdeflateLevel = 6;

// stb's contract: return a zlib stream in memory from STBIW_MALLOC (stb frees
// it with STBIW_FREE), or null on failure, which makes the PNG write fail.
unsigned char* deflateWithLibdeflate(unsigned char* data, int length, int* outLength, int /*stbLevel*/) {
    std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> compressor(
        libdeflate_alloc_compressor(libdeflateLevel), &libdeflate_free_compressor);
    if (!compressor || length < 0) return nullptr;
    const std::size_t bound = libdeflate_zlib_compress_bound(compressor.get(), static_cast<std::size_t>(length));
    if (bound > static_cast<std::size_t>(INT32_MAX)) return nullptr;
    auto* out = static_cast<unsigned char*>(plakard::imageMemory::allocate(bound));
    if (!out) return nullptr;
    const std::size_t written =
        libdeflate_zlib_compress(compressor.get(), data, static_cast<std::size_t>(length), out, bound);
    if (written == 0) {
        plakard::imageMemory::release(out);
        return nullptr;
    }
    *outLength = static_cast<int>(written);
    return out;
}

}  // namespace

#define STBIW_ZLIB_COMPRESS deflateWithLibdeflate
#endif

#include <stb_image_write.h>
