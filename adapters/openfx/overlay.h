// What the viewer shows above a frame, where the host can draw there.
#pragma once

#include "platform/openfx.h"

namespace kelto::openfx {

/// The entry of the overlay: draws the outline of the view within the frame that zoom 1 shows.
/// Nothing depends on it.
ofx::Status OverlayMain(const char* action, const void* handle, ofx::Properties inArgs,
                        ofx::Properties outArgs);

}  // namespace kelto::openfx
