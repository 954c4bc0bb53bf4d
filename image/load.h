// From an image file to working image 0 of an instance.
#pragma once

#include "state/PanZoomState.h"

namespace kelto {

/// Decodes the file that `imagePath` names and makes it working image 0 (Y, Cr, Cb), with
/// `imageWidth` and `imageHeight`. False, with the three left as they were, when that fails for any
/// reason; no exception escapes.
///
/// The path is first brought into its network form and saved in the instance data, and stays saved
/// even when the load then fails. A file that cannot be opened is looked for in the known folders
/// and, when `interactive`, asked for in a dialog; where it was found is saved as well.
bool LoadImage(PanZoomState& state, bool interactive);

/// Releases the working images, loads the image anew, and reduces it and enforces the budget,
/// whatever came of the load. The result is LoadImage's.
bool ReloadImage(PanZoomState& state, bool interactive);

/// Saves `imagePath` as the instance data: 2048 bytes, zero-terminated and zero-padded, cut to 2047
/// characters; and marks the data modified.
void SaveImagePath(PanZoomState& state);

}  // namespace kelto
