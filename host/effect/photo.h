// The photograph, looked at before the effect gets it.
//
// The effect renders nothing but background when it cannot load its picture, and reports nothing.
// So the command opens the file itself first, which costs no decoding, and learns from the session
// whether the effect got a picture; only when it did not is the photo decoded here, to say why.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/plan/render_plan.h"

namespace kelto::host {

struct Photo {
  std::string given;   ///< the path as the user wrote it, for messages
  std::string path;    ///< a name of the same picture that the effect can open, in its letters
  int32_t rotate = 0;  ///< degrees by which it is turned clockwise beyond what its file says
  int32_t width = 0;   ///< pixels, upright
  int32_t height = 0;
  uint64_t memory = 0;  ///< bytes that loading it takes of a process at the most
  int32_t bits = 8;  ///< of a sample, 32 for floating-point ones; as FindDepth and LookAtPhoto find
  uint64_t deepMemory = 0;   ///< bytes that loading it with all its bits takes; found likewise
  bool transparent = false;  ///< whether anything behind it shows; as LookThroughPhoto finds
  std::shared_ptr<const void> file = {};  ///< what has to stay while `path` is in use
};

/// The name by which OpenPhoto and those that call it know a plan's photo: its path, and how it is
/// turned.
std::string PhotoName(const RenderPlan& plan);

/// Such a name's two parts; a path alone has no turn.
struct PhotoNameParts {
  std::string path;
  int32_t rotate = 0;
};
PhotoNameParts PartsOfPhotoName(const std::string& name);

/// What the effect opens as this photo where the file has another path, too.
std::string NameAt(const std::string& path, const Photo& photo);

/// Opens the photo of this name as far as its size. Throws Error when there is no such picture.
Photo OpenPhoto(const std::string& name);

/// The photo's pixels, B, G, R, A without padding, upright. Throws Error when it cannot be decoded.
std::vector<uint8_t> DecodePhoto(const Photo& photo);

/// Decodes the photo to find out why it could not be drawn; nothing when it could.
std::optional<std::string> FindFault(const Photo& photo);

/// What of the file the picture is shown without, such as a damaged colour profile; nothing when it
/// is shown as it is meant.
std::optional<std::string> FindFlaw(const Photo& photo);
}  // namespace kelto::host
