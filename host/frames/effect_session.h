// The effect, set up for one plan.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "host/base/film_format.h"
#include "host/effect/photo.h"
#include "host/frames/backdrop.h"
#include "host/frames/caption_letters.h"
#include "host/frames/plan_session.h"
#include "host/plan/render_plan.h"
#include "host/track/view_track.h"
#include "runtime/hfx/host.h"

namespace kelto::host {

/// Loads the effect's module, sets its first effect up for a plan and renders frames, in any order,
/// over those of the plan's video. Operations throw Error.
class EffectSession : public PlanSession {
 public:
  /// `photo` is the plan's, opened.
  EffectSession(const std::string& modulePath, const RenderPlan& plan, const Photo& photo,
                PixelLayout layout);
  ~EffectSession() override;

  /// Asked while frames render; once it answers true, Render throws.
  void SetAbortQuery(std::function<bool()> query) override;

  /// Renders frame `number`, 0-based; both its fields when the film is interlaced. `quality` is
  /// the quality of renders: 1 for all of it, 0.5 for a preview in a hurry. The view holds until
  /// the next call.
  FrameView Render(int32_t number, double quality = 1.0) override;

  void RenderInto(uint8_t* pixels, ptrdiff_t rowBytes, int32_t number,
                  double quality = 1.0) override;

  /// Changes one of the plan's settings for the frames to come.
  void Change(const Setting& setting) override;

  /// Another session is needed for another photo, video, play mode or order of fields, where the
  /// host's motion takes the place of the effect's or the other way round, and where a setting is
  /// taken back to what the effect begins with.
  bool Adopt(const RenderPlan& given) override;

 private:
  void MakeImages();
  void MakeCaption();
  void RenderFrame(hfxImage& whole, int32_t number, double quality);
  void RenderField(const hfx::RenderState& state, hfxImage& input, hfxImage& output);

  RenderPlan plan_;
  PixelLayout layout_;
  Photo photo_;                             ///< the effect may load it again at any time
  std::unique_ptr<const ViewTrack> track_;  ///< null where the effect's keys make the move
  // The effect demands an input even where nothing of it is seen.
  std::optional<hfx::ImageBuffer> input_, output_;  ///< of the plan's frames
  std::optional<BlurredPhoto> beside_;
  std::optional<Backdrop> backdrop_;
  std::optional<CaptionLetters> caption_;
  std::unique_ptr<hfx::Module> module_;
  std::unique_ptr<hfx::Effect> effect_;  // goes before its module
};

}  // namespace kelto::host
