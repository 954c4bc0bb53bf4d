// How a file wants its picture turned. Read here, since not every version of the imaging component
// gives.
#pragma once

#include "runtime/stills/still_file.h"

namespace kelto::stills {

/// Orientation 1 to 8 that a JPEG (its EXIF block), PNG (its "eXIf" chunk) or TIFF file states
/// before its pixels; 1 for files of other formats and where nothing sensible is found. Leaves the
/// file at its beginning.
int OrientationOf(StillFile& file);

}  // namespace kelto::stills
