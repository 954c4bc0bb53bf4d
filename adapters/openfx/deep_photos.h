// Photographs with all their bits, decoded once in a process.
#pragma once

#include <memory>
#include <string>

#include "deep/picture.h"

namespace kelto::openfx {

/// The photograph of a file, from memory while it is kept there. Null where it cannot be read with
/// all its bits. Photographs keep to 512 MiB together, but for one that is larger itself; those
/// that were asked for last stay. Throws std::bad_alloc.
std::shared_ptr<const DeepPicture> DeepPhoto(const std::string& file);

/// Lets go of all that nobody is drawing.
void ForgetDeepPhotos();

}  // namespace kelto::openfx
