// A film of one photo that may change, as pictures.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "editor/rules/fades_around.h"
#include "editor/rules/film_way.h"
#include "host/effect/photo.h"
#include "host/film/dithered_sink.h"
#include "host/frames/plan_session.h"
#include "host/jobs/cross_fade.h"
#include "host/jobs/title_frames.h"
#include "host/plan/render_plan.h"

namespace kelto::editor {

/// Operations throw Error.
class FilmDrawing {
 public:
  /// Opens the plan's photo as far as its size.
  FilmDrawing(std::string module, const host::RenderPlan& plan);

  /// Draws this plan from now on, which has to be of the same photo. Frames within `fades` are
  /// drawn as the show has them. `deep` is whether the show's film is; without it, the plan is
  /// drawn as a film of its own is.
  void SetPlan(const host::RenderPlan& plan, const FadesAround& fades = {},
               std::optional<bool> deep = {});

  /// The plan that shows the middle of this plan's photo, which fills the frame.
  host::RenderPlan Filled(const host::RenderPlan& plan) const;

  /// A frame of the film as the film has it, drawn in another size than the film's where that is
  /// asked for. Frames are counted from the card on, where there is one. The nearest frame that
  /// there is. The view holds until the next call.
  host::FrameView Draw(int32_t frame, host::FrameSize size, double quality);

  /// What frames of the film show, evenly chosen, `most` of them at the most, the first and the
  /// last among them.
  FilmWay Way(int32_t most);

  PixelSize PhotoSize() const { return {photo_.width, photo_.height}; }

  /// The photo's pixels, B, G, R, A, upright; reduced by an integer to `mostPixels` at the most.
  std::vector<uint8_t> PhotoPixels(int64_t mostPixels, host::FrameSize& size) const;

  /// The same in less time, with fewer pixels where its form allows it: `enoughPixels` at the
  /// least, or all that the photo has.
  std::vector<uint8_t> QuickPhotoPixels(int64_t enoughPixels, int64_t mostPixels,
                                        host::FrameSize& size) const;

 private:
  /// What is drawn of a plan; made when it is first needed.
  using Session = std::unique_ptr<host::PlanSession>;

  /// Whether frames are drawn, and blended, deep.
  bool IsDeep() const;
  /// Readies what depends on the size and the layout of the frames that are blended.
  void Prepare(host::FrameSize size);
  host::FrameView Blended(int32_t frame, host::FrameSize size, double quality);
  host::FrameView Drawn(Session& session, const host::RenderPlan& plan, const host::Photo& photo,
                        int32_t frame, double quality);
  /// A picture beside the film's; null where it cannot be drawn, as the show is made without it.
  std::optional<host::FrameView> Beside(const host::RenderPlan& plan, int32_t frame,
                                        host::FrameSize size, double quality);
  std::optional<host::FrameView> TitleCard(int32_t frame, host::FrameSize size);

  std::string module_;
  host::RenderPlan plan_;
  host::Photo photo_;
  bool knowsTransparency_ = false;  ///< of the photo
  Session session_;
  FadesAround fades_;
  std::optional<bool> deep_;
  // Of one of the two pictures at a time.
  std::string besidePhoto_;
  std::optional<host::Photo> besideOpened_;
  Session besideSession_;
  // Made once for a plan and a size: setting letters takes longer than drawing a frame of them.
  std::optional<host::TitleFrames> title_;
  std::optional<host::CrossFade> fade_;
  host::FrameSize drawnSize_;
  host::PixelLayout layout_ = host::PixelLayout::kBGRA;  ///< of the frames that are blended
  std::optional<host::DitheredFrame> dithered_;          ///< where they are deep
};

}  // namespace kelto::editor
