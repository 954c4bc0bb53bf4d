// From an image file to working image 0 of an instance.
#pragma once

#include <array>
#include <cstdint>

#include "state/PanZoomState.h"

namespace kelto {

/// Full range to studio range: i · 0.859375 + 16.5, cut to an integer, so 0 to 16 and 255 to 235.
constexpr std::array<uint8_t, 256> MakeStudioLevelTable() {
  std::array<uint8_t, 256> table{};
  for (size_t i = 0; i < table.size(); ++i) {
    table[i] = static_cast<uint8_t>(static_cast<double>(i) * 0.859375 + 16.5);
  }
  return table;
}

inline constexpr std::array<uint8_t, 256> studioLevelTable = MakeStudioLevelTable();

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
