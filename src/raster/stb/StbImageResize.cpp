// The one instance of stb_image_resize2, used for every sRGB-correct resample.
#define STB_IMAGE_RESIZE_IMPLEMENTATION
// Its working buffers come from the allocator the canvases use.
#define STBIR_MALLOC(size, context) ((void)(context), plakard::imageMemory::allocate(size))
#define STBIR_FREE(block, context) ((void)(context), plakard::imageMemory::release(block))
#include "platform/ImageMemory.hpp"
#include <stb_image_resize2.h>
