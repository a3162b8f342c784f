// The one instance of stb_image_write. Output goes through a callback into
// memory, so the file writing stays ours (atomic, with our error messages).
#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STBI_WRITE_NO_STDIO
#include <stb_image_write.h>
