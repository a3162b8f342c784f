// The one instance of stb_image_resize2, used for every sRGB-correct resample.
#define STB_IMAGE_RESIZE_IMPLEMENTATION
#include <stb_image_resize2.h>
