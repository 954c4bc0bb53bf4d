// Shows of pictures, and changes to which pictures they have and for how long each is seen.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "editor/document/document.h"
#include "framing/pixel_size.h"
#include "host/project/show_project.h"

namespace kelto::editor {

/// A picture of a show as a list has it.
struct PictureEntry {
  std::string photo;           ///< its path
  double seconds = 0.0;        ///< for which it is seen
  std::optional<double> fade;  ///< seconds of the fade to the next, where something is said
  double begin = 0.0;          ///< seconds of the show before it appears
  bool operator==(const PictureEntry&) const = default;
};

bool IsShow(const Document& document);

/// What the document of a show means; null for a film of one picture. Throws Error.
std::shared_ptr<const host::ShowProject> ShowOf(const Document& document);

/// The pictures of a show, in order; empty for a film of one. Throws Error.
std::vector<PictureEntry> PicturesOf(const Document& document);

/// Finds out the size of a photo; throws Error.
using PhotoSizes = std::function<PixelSize(const std::string& photo)>;

/// A show of these photos that lies in `path` once it is saved; they move gently in, across and
/// out in turns. Throws what `sizes` throws.
Document NewShow(const std::vector<std::string>& photos, const std::string& path,
                 const PhotoSizes& sizes);

/// The photos whose sizes WithMovesAsViews needs.
std::vector<std::string> PhotosWithoutViews(const Document& document);

/// The document with views for every picture of which only a move is said, so that they can be
/// seen and changed. A picture whose move has to be looked for in it gets one that goes in.
Document WithMovesAsViews(const Document& document, const PhotoSizes& sizes);

/// With these photos ahead of picture `at`, the first of which is edited then. A film of one
/// picture becomes a show of it and these. Throws Error.
Document WithPhotosAdded(const Document& document, size_t at,
                         const std::vector<std::string>& photos, const PhotoSizes& sizes);

/// Without picture `at`; the last one cannot be removed.
Document WithoutPicture(const Document& document, size_t at);

/// Picture `from` becomes picture `to`, and is edited.
Document WithPictureMoved(const Document& document, size_t from, size_t to);

/// How long picture `at` is seen, fades included, and fades into the next one, in seconds.
Document WithEach(const Document& document, size_t at, double seconds);
Document WithFade(const Document& document, size_t at, double seconds);

/// With these words on a card ahead of the first picture of a show; empty for none.
Document WithTitle(const Document& document, const std::string& text);

/// The picture being edited as a project of its own; of a film of one picture, the document.
Document PictureAlone(const Document& document);

}  // namespace kelto::editor
