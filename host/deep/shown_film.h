// A plan's frames as a screen shows them: those of the film, whichever engine draws it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

#include "host/effect/photo.h"
#include "host/film/dithered_sink.h"
#include "host/frames/plan_session.h"
#include "host/plan/render_plan.h"

namespace kelto::host {

/// Whether a film has deep frames where nobody asks for a depth: of a photo with more than eight
/// bits or with transparency, and of a plan that nothing else can draw, as far as they can be
/// drawn. `photo` is the plan's, with its depth and transparency.
bool IsDrawnDeep(const RenderPlan& plan, const Photo& photo);

/// The same of a film of several pictures: all are drawn deep where one needs it and all can be.
bool AreDrawnDeep(std::span<const RenderPlan> plans, std::span<const Photo> photos);

/// Draws a plan's frames in `layout`: those of kRgba16 here, others by the effect.
std::unique_ptr<PlanSession> OpenSession(const std::string& modulePath, const RenderPlan& plan,
                                         const Photo& photo, PixelLayout layout);

/// Frames in PixelLayout::kBGRA. Those of deep films are dithered as films of eight bits are, and
/// transparent ones lie over black. Operations throw Error.
class ShownFilm : public PlayedFilm {
 public:
  /// `photo` as IsDrawnDeep takes it.
  ShownFilm(std::string modulePath, const RenderPlan& plan, const Photo& photo);

  void SetAbortQuery(std::function<bool()> query) override;
  FrameView Render(int32_t number, double quality) override;
  void Change(const Setting& setting) override;

  /// As PlanSession does.
  bool Adopt(const RenderPlan& plan);

 private:
  void Open();

  std::string module_;
  RenderPlan plan_;
  Photo photo_;
  std::function<bool()> query_;
  std::unique_ptr<PlanSession> session_;
  std::unique_ptr<DitheredFrame> dithered_;  ///< null where the effect draws
};

}  // namespace kelto::host
