// Picture files for tests, made by the system's own encoders.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "tests/runtime/stills/still_test.h"

namespace kelto::stills {

/// `picture` as a file of a container format of WIC; with its alpha where `alpha` is set.
Bytes EncodeByWic(const GUID& container, const Picture& picture, bool alpha = false);

/// Writes a JPEG file of `width` x `height` pixels, `pixel(x, y)` giving each, without ever holding
/// the whole picture.
void WriteJpegByWic(const std::string& path, int width, int height,
                    const std::function<Pixel(int, int)>& pixel);

}  // namespace kelto::stills
