// The effect, set up for one plan.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "host/film/film_format.h"
#include "host/session/photo.h"
#include "host/session/render_plan.h"
#include "runtime/hfx/host.h"

namespace kelto::host {

/// Loads the effect's module, sets its first effect up for a plan and renders frames, in any order.
/// Operations throw Error.
class EffectSession {
 public:
  /// `photo` is the plan's, opened.
  EffectSession(const std::string& modulePath, const RenderPlan& plan, const Photo& photo,
                PixelLayout layout);
  ~EffectSession();
  EffectSession(const EffectSession&) = delete;
  EffectSession& operator=(const EffectSession&) = delete;

  /// Asked while frames render; once it answers true, Render throws.
  void SetAbortQuery(std::function<bool()> query);

  /// Renders frame `number`, 0-based; both its fields when the film is interlaced. The view holds
  /// until the next call.
  FrameView Render(int32_t number);

 private:
  hfxParameter& Parameter(const std::string& key);
  void SetPhoto();
  void SetLists();
  void SetBackground(const std::array<double, 3>& rgb);
  void SetKeys();
  bool HasPicture();
  void CheckPhoto() const;
  void Begin();
  void End();
  void RenderFrame(hfx::RenderState state);
  void RenderField(const hfx::RenderState& state, hfxImage& input, hfxImage& output);
  /// The state of frame 0 as the plan has it.
  hfx::RenderState FirstState() const;

  RenderPlan plan_;
  Photo photo_;
  PixelLayout layout_;
  hfx::ImageBuffer input_;  ///< the effect demands an input even where nothing of it is seen
  hfx::ImageBuffer output_;
  std::unique_ptr<hfx::Module> module_;
  std::unique_ptr<hfx::Effect> effect_;  // goes before its module
  bool begun_ = false;
};

/// The value of the effect's background parameter that is seen as `colour` in the film.
std::array<double, 3> BackgroundFor(Colour colour);

}  // namespace kelto::host
