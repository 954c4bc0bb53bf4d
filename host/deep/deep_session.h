// Frames of one plan with 16 bits a channel and transparency, drawn by the command itself.
//
// The effect's frames have eight bits and no alpha. Where a film can hold more, its frames come
// from the engine in deep/, and the effect says what each of them shows: the view, the filter and
// the background, as for every other host that asks (host/facts/motion.h).
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "deep/picture.h"
#include "host/base/film_format.h"
#include "host/effect/photo.h"
#include "host/facts/motion.h"
#include "host/frames/backdrop_video.h"
#include "host/frames/blurred_photo.h"
#include "host/frames/caption_letters.h"
#include "host/frames/plan_session.h"
#include "host/plan/render_plan.h"

namespace kelto::host {

/// Draws in PixelLayout::kRgba16 what WhyNotDeep has nothing against. Operations throw Error.
class DeepSession : public PlanSession {
 public:
  /// `photo` is the plan's, opened.
  DeepSession(std::string modulePath, const RenderPlan& plan, const Photo& photo);

  /// Asked before each field.
  void SetAbortQuery(std::function<bool()> query) override { aborted_ = std::move(query); }

  /// Renders frame `number`, 0-based; both its fields when the film is interlaced. A quality below
  /// 1 takes the quickest filter that is smooth. The view holds until the next call.
  FrameView Render(int32_t number, double quality = 1.0) override;
  void RenderInto(uint8_t* pixels, ptrdiff_t rowBytes, int32_t number,
                  double quality = 1.0) override;

  /// The plan has to remain one that can be drawn here.
  void Change(const Setting& setting) override;

  /// Another session is needed for another photo or video, and for what cannot be drawn here.
  bool Adopt(const RenderPlan& plan) override;

 private:
  void SetPlan(const RenderPlan& plan);
  void SetBehind(const RenderPlan& before);
  void RenderField(const DeepTarget& whole, const DeepSource& behind, int32_t number, int32_t field,
                   double quality);
  /// What lies behind frame `number`: of the video, or the photo blurred; no pixels where neither
  /// is. Holds until the next call.
  DeepSource BehindFrame(int32_t number);

  std::string module_;
  RenderPlan plan_;
  Photo photo_;
  DeepPicture picture_;
  std::function<bool()> aborted_;
  std::optional<Motion> motion_;
  std::optional<CaptionLetters> caption_;
  std::optional<BlurredPhoto> beside_;    ///< once it has been needed
  std::unique_ptr<BackdropVideo> video_;  ///< of plans with a video
  DeepPicture blurred_;                   ///< behind the photo; no pixels where nothing of it is
  DeepPicture frame_;
};

}  // namespace kelto::host
