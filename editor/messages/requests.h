// What the editor asks of the process that draws. Texts of a message's body.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/film_format.h"

namespace kelto::editor {

/// A frame of the film, drawn in `size` instead of the film's own.
struct DrawRequest {
  int32_t frame = 0;
  host::FrameSize size;
  double quality = 1.0;  ///< of what the effect draws, 0.5 in a hurry
};

/// What there is to be seen of a photo.
struct PhotoRequest {
  int32_t quickly = 0;  ///< 1: a smaller picture will do, where it takes less time
};

std::string BodyOf(const DrawRequest& request);
/// Throws Error.
DrawRequest DrawRequestOf(std::string_view body);

/// A film, and of a picture of a show what fades show beside it: FadesAround, with projects' texts
/// for plans, empty where there is none.
struct PlanRequest {
  std::string film{}, before{}, after{}, title{};
  struct Numbers {
    int32_t in = 0, out = 0, dip = 0, titleFrames = 0;
    int32_t deep = -1;  ///< whether a show's film is drawn deep: 0 or 1; -1 for a film of its own
  } numbers{};
};

std::string BodyOf(const PlanRequest& request);
/// Throws Error.
PlanRequest PlanRequestOf(std::string_view body);

struct ThumbnailRequest {
  host::FrameSize size;
  std::string photo;
};

std::string BodyOf(const ThumbnailRequest& request);
/// Throws Error.
ThumbnailRequest ThumbnailRequestOf(std::string_view body);

/// Paths of files, or other texts without zeros.
using Texts = std::vector<std::string>;
std::string BodyOf(const Texts& texts);
Texts TextsOf(std::string_view body);

}  // namespace kelto::editor
