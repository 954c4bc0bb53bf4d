// Frames of one plan with 16 bits a channel and transparency, drawn by the command itself.
//
// The effect's frames have eight bits and no alpha. Where a film can hold more, its frames come
// from the engine in deep/, and the effect says what each of them shows: the view, the filter and
// the background, as for every other host that asks (host/facts/motion.h).
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "deep/picture.h"
#include "host/base/film_format.h"
#include "host/effect/photo.h"
#include "host/facts/motion.h"
#include "host/frames/backdrop.h"
#include "host/plan/render_plan.h"

namespace kelto::host {

/// Why a plan's frames can come from the effect alone, with the setting's name; empty where these
/// can be drawn here.
std::string WhyNotDeep(const RenderPlan& plan);

/// Operations throw Error.
class DeepSession {
 public:
  /// `photo` is the plan's, opened.
  DeepSession(const std::string& modulePath, const RenderPlan& plan, const Photo& photo);

  /// Renders frame `number`, 0-based, in PixelLayout::kRgba16; both its fields when the film is
  /// interlaced.
  void RenderInto(uint8_t* pixels, ptrdiff_t rowBytes, int32_t number);
  /// The same into memory of its own. The view holds until the next call.
  FrameView Render(int32_t number);

 private:
  void RenderField(const DeepTarget& whole, int32_t number, int32_t field);
  /// What lies behind frame `number`, into `backdropRows_`.
  void FillBackdrop(int32_t number);

  RenderPlan plan_;
  PixelSize size_;
  Motion motion_;
  DeepPicture picture_;
  std::optional<Backdrop> backdrop_;  ///< of plans with a video
  std::optional<hfx::ImageBuffer> video_;
  DeepPicture backdropRows_, frame_;
};

}  // namespace kelto::host
