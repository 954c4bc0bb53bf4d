// The user's choice of an instance's image.
#pragma once

#include "state/PanZoomState.h"

namespace kelto {

/// Asks for an image when none is known or one is loaded, else asks where the known one is; loads
/// it and saves its path in network form. False when the user cancels. A failed load is reported in
/// a message box and leaves the saved path as it was.
bool ChooseImageOf(PanZoomState& state);

}  // namespace kelto
