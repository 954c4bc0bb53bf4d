// A film as a player asks for its frames.
#pragma once

#include <cstdint>
#include <functional>

#include "host/base/film_format.h"
#include "host/plan/setting.h"

namespace kelto::host {

/// The quality of frames that are not hurried, as PlayedFilm::Render takes it.
inline constexpr double kWholeQuality = 1.0;

/// Operations throw Error.
class PlayedFilm {
 public:
  virtual ~PlayedFilm() = default;

  /// Asked while frames render; once it answers true, Render throws.
  virtual void SetAbortQuery(std::function<bool()> query) = 0;
  /// Renders frame `number`, 0-based; frames may be asked for in any order. `quality` is that of
  /// EffectSession::Render. The view holds until the next call.
  virtual FrameView Render(int32_t number, double quality) = 0;
  /// Changes one of the effect's settings for the frames to come.
  virtual void Change(const Setting& setting) = 0;

 protected:
  PlayedFilm() = default;
  PlayedFilm(const PlayedFilm&) = delete;
  PlayedFilm& operator=(const PlayedFilm&) = delete;
};

}  // namespace kelto::host
