// One film of many pictures.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "host/film/formats.h"
#include "host/plan/render_plan.h"

namespace kelto::host {

struct Slideshow {
  std::string module;  ///< path of the effect's module
  /// Of one film format, all of `each` frames.
  std::vector<RenderPlan> plans;
  const FilmKind* kind = nullptr;
  FilmRequest request;  ///< of SlideshowFrames frames
  int32_t each = 1;     ///< frames for which a picture is seen, fades included
  int32_t fade = 0;     ///< frames of a fade, at most half of `each`
  int32_t workers = 2;  ///< processes that render, two at the least
};

/// Length of the film: neighbours overlap while they fade.
int32_t SlideshowFrames(size_t pictures, int32_t each, int32_t fade);

/// Makes the film; `shown` is told how many frames are done. Two pictures are in memory at a time,
/// however many there are. Throws Error.
void MakeSlideshow(const Slideshow& show, const std::function<void(int32_t done)>& shown);

}  // namespace kelto::host
