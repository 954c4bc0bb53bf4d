// The size of a photo, as the process that draws finds it: a fault in a codec then reaches neither
// the editor nor its files.
#pragma once

#include <QString>
#include <string>

#include "framing/pixel_size.h"

namespace kelto::editor {

/// The size of `photo`, upright. A run of `program` (kelto-preview, with the effect's module) reads
/// it in the sandbox, for half a minute at the most. Throws Error that names the photo where there
/// is no such picture or the process fails.
PixelSize FindPhotoSize(const QString& program, const QString& module, const std::string& photo);

}  // namespace kelto::editor
