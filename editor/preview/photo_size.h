// The sizes of photos, as the process that draws finds them: a fault in a codec then reaches
// neither the editor nor its files.
#pragma once

#include <QString>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "framing/pixel_size.h"

namespace kelto::editor {

/// A photo's size, upright, or the sentence that says why there is none.
struct FoundSize {
  PixelSize size{};
  std::string fault{};  ///< names the photo; empty where there is a size
};

/// By the photos' paths.
using FoundSizes = std::map<std::string, FoundSize>;

/// Called with the number of photos that are done, several times a second; false to leave out the
/// rest.
using SizesProgress = std::function<bool(size_t done)>;

/// The sizes of `photos`, which one run of `program` (kelto-preview, with the effect's module)
/// reads in the sandbox, each for half a minute at the most; another run goes on behind a photo
/// that ends the first. May be called from any thread. Throws Error where the program cannot be
/// started.
FoundSizes FindPhotoSizes(const QString& program, const QString& module,
                          const std::vector<std::string>& photos,
                          const SizesProgress& progress = {});

/// The size of one. Throws Error that names the photo where there is no such picture or the process
/// fails.
PixelSize FindPhotoSize(const QString& program, const QString& module, const std::string& photo);

}  // namespace kelto::editor
