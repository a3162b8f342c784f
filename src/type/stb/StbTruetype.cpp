// The one instance of stb_truetype, used for font parsing and rasterising.
#define STB_TRUETYPE_IMPLEMENTATION
#include <stb_truetype.h>
