// stb_image, cut down to what is used of it.
#pragma once

#include "runtime/stills/limits.h"

#define STBI_ONLY_BMP
#define STBI_ONLY_TGA
#define STBI_NO_STDIO
#define STBI_NO_LINEAR
#define STBI_NO_HDR
#define STBI_MAX_DIMENSIONS static_cast<int>(kelto::stills::kMaxSide)

#include <stb/stb_image.h>
