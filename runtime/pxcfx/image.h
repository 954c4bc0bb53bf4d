// Layouts of pixel descriptions.
#pragma once

#include "platform/pxcfx.h"

namespace kelto::pxcfx {

constexpr const char* kBgra = "BGRA";
constexpr const char* k422 = "Y422";

bool HasLayout(const pxcImage& image, const char* layout);

/// 2 for 4:2:2 rows, else 4.
int BytesPerPixel(const pxcImage& image);

}  // namespace kelto::pxcfx
