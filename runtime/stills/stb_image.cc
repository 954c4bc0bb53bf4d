// The implementation of stb_image, for BMP and TGA only. Its functions are declared by
// runtime/stills/stb_image_config.h for those who call them.
#define STB_IMAGE_IMPLEMENTATION
#include "runtime/stills/stb_image_config.h"
