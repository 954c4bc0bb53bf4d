// Picture files for tests, made by the system's own encoders.
#pragma once

#include <windows.h>

#include "tests/runtime/stills/still_test.h"

namespace kelto::stills {

/// `picture` as a file of a container format of WIC; with its alpha where `alpha` is set.
Bytes EncodeByWic(const GUID& container, const Picture& picture, bool alpha = false);

}  // namespace kelto::stills
