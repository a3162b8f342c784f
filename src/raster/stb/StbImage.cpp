// The one instance of stb_image: PNG and JPEG only, which keeps every other
// decoder (and its attack surface) out of the binary. Reading from files is
// ours to do; the decoder only ever sees bytes in memory.
#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_NO_STDIO
#define STBI_NO_LINEAR
#define STBI_NO_HDR
// Decoded images become canvases without a copy, so they come from the
// canvas's own allocator.
#define STBI_MALLOC(size) plakard::imageMemory::allocate(size)
#define STBI_REALLOC_SIZED(block, usedSize, newSize) plakard::imageMemory::reallocate(block, usedSize, newSize)
#define STBI_FREE(block) plakard::imageMemory::release(block)
#include "platform/ImageMemory.hpp"
#include <stb_image.h>

#include "raster/stb/StbImage.hpp"

// stb keeps its last failure reason until another failure overwrites it, and
// a few failures (inside the zlib stream) set none at all.
void plakard::clearDecoderFailureReason() { stbi__g_failure_reason = nullptr; }
