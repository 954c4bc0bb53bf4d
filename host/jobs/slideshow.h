// One film of many pictures.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/film/formats.h"
#include "host/jobs/cross_fade.h"
#include "host/jobs/end_fades.h"
#include "host/jobs/frame_source.h"
#include "host/plan/render_plan.h"

namespace kelto::host {

/// A text on the colour of the film's ends, before the pictures.
struct TitleCard {
  std::string text{};
  int32_t frames = 0;  ///< for which it is seen, the fade included; 0 for no card
  int32_t fade = 0;    ///< frames of the fade into the first picture, half of `frames` at the most

  /// Frames before the first picture begins.
  int32_t Lead() const { return frames - fade; }
};

struct Slideshow {
  std::string module;  ///< path of the effect's module
  /// Of one film format; each as long as its picture is seen, fades included.
  std::vector<RenderPlan> plans;
  /// Frames of the fade from each picture to the next one. Of a picture's frames, no two fades take
  /// the same.
  std::vector<int32_t> fades;
  FadeKind fadeKind = FadeKind::kCross;  ///< a dip goes through the colour of `ends`
  const FilmKind* kind = nullptr;
  FilmRequest request;  ///< of SlideshowFrames frames, with its depth as ChooseDepth has it
  EndFadeLengths ends{};
  TitleCard title{};
  int32_t workers = 2;  ///< processes that render, two at the least
};

/// Length of the film: neighbours overlap while they fade. Throws UsageError for one too long.
int32_t SlideshowFrames(const Slideshow& show);

/// Has each picture's caption seen while no other picture is: two would cover each other. `fades`
/// are as in Slideshow, `titleFade` is that of a card before the first picture, 0 without.
void PlaceCaptions(std::vector<RenderPlan>& plans, const std::vector<int32_t>& fades,
                   int32_t titleFade);

/// Makes the film. Two pictures are in memory at a time, however many there are. Throws Error.
void MakeSlideshow(const Slideshow& show, const FrameDone& shown);

}  // namespace kelto::host
