// Where image files are: asking the user, finding files that moved, and folders known to hold
// images.
//
// Paths are 8-bit texts in which both slash and backslash separate folders; texts made here use the
// system's own separator. Path buffers belong to the caller and every result in one ends with a
// zero byte. Nothing is locked.
#pragma once

#include <cstdint>

// Saved paths take this form: whoever deals with paths wants both.
#include "image/network_path.h"

namespace kelto {

/// Runs the open-file dialog on `buffer`, whose text is the name offered. True when the user picked
/// a file; the buffer then holds its full path. A null `title` means "Please choose an image:".
bool ChooseImageFile(char* buffer, uint32_t capacity, const char* title);

/// Finds the file that `buffer` names in a known folder, or else asks the user for it and remembers
/// the folder of the pick. False when the path is empty or the user cancelled; after cancelling the
/// buffer holds the bare file name.
bool LocateImageFile(char* buffer, uint32_t capacity);

/// Looks for the file name of `buffer`, a path record of 2048 bytes, in the known folders in order.
/// True when one holds it; the buffer then holds that file's path. Asks nobody.
bool FindInKnownFolders(char* buffer);

/// Adds the parent folder of `path` to the known folders.
void RememberImageFolder(const char* path);

}  // namespace kelto
