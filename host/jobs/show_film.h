// A slideshow whose frames may be asked for in any order.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/effect/photo.h"
#include "host/film/dithered_sink.h"
#include "host/frames/plan_session.h"
#include "host/jobs/cross_fade.h"
#include "host/jobs/slideshow.h"
#include "host/jobs/title_frames.h"

namespace kelto::host {

/// The pictures of a show, and where each is seen; before them, a card on black.
struct ShowScenes {
  std::vector<RenderPlan> plans;  ///< one at least, all of one film format
  std::vector<Photo> photos;      ///< of the plans, opened
  std::vector<int32_t> fades;     ///< frames of the fade from each picture to the next
  FadeKind fadeKind = FadeKind::kCross;
  TitleCard title{};
};

/// The frame at which each picture appears, counted from the first one, and behind these the length
/// of all.
std::vector<int32_t> BeginningsOf(const std::vector<RenderPlan>& plans,
                                  const std::vector<int32_t>& fades);

/// Renders a show in this process, in PixelLayout::kBGRA. Two pictures are in memory at a time;
/// going from one to the next in order loads each once. A show of which a picture needs deep frames
/// is drawn and faded with these, and dithered as its film of eight bits is.
class ShowFilm : public PlayedFilm {
 public:
  ShowFilm(std::string module, ShowScenes scenes);

  void SetAbortQuery(std::function<bool()> query) override { query_ = std::move(query); }
  FrameView Render(int32_t number, double quality) override;
  void Change(const Setting& setting) override;

 private:
  struct Turn {
    size_t picture = 0;
    std::unique_ptr<PlanSession> session;  ///< null while nothing is loaded
  };
  /// Readies what depends on the layout of the frames that are blended.
  void Prepare();
  PlanSession& SessionOf(size_t picture);
  FrameView Blended(int32_t number, double quality);

  std::string module_;
  ShowScenes scenes_;
  PixelLayout layout_ = PixelLayout::kBGRA;  ///< of the frames that are blended
  std::vector<int32_t> beginnings_;          ///< behind the card
  std::unique_ptr<TitleFrames> title_;       ///< null where there is none
  std::optional<CrossFade> fade_;
  std::optional<DitheredFrame> dithered_;  ///< where frames are blended deep
  std::function<bool()> query_;
  std::array<Turn, 2> turns_;  ///< picture i is in turn i modulo 2
};

}  // namespace kelto::host
