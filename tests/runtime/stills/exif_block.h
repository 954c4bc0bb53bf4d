// EXIF blocks with nothing but an orientation.
#pragma once

#include "tests/runtime/stills/still_test.h"

namespace kelto::stills {

/// With its "Exif\0\0", unless `headless`.
Bytes ExifBlock(uint16_t orientation, bool big_endian = false, bool headless = false);

/// The picture as it is stored when its upright form is `upright` and it is marked with
/// `orientation`.
Picture StoredFor(const Picture& upright, int orientation);

}  // namespace kelto::stills
