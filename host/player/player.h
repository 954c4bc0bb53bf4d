// Plays a film in a window, as an editor plays its timeline.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/base/library.h"
#include "host/effect/photo.h"
#include "host/frames/played_film.h"
#include "host/plan/render_plan.h"
#include "host/sandbox/sandbox.h"

namespace kelto::host {

/// The library that opens windows.
Libraries WindowLibraries();

struct PlayerOptions {
  bool loop = false;    ///< start over at the end, else pause
  bool paused = false;  ///< begin paused
};

/// A film to be played.
struct PlayerFilm {
  std::string name;  ///< in the window's title
  FilmFormat format;
  int32_t frames = 1;
  std::vector<double> marks{};  ///< times, 0..1, marked on the seek bar
  bool target = true;           ///< whether "Display: Target" is what it shows
  /// Opens it, in PixelLayout::kBGRA; called in the sandbox.
  std::function<std::unique_ptr<PlayedFilm>()> open{};
};

/// The plan as the player plays it: the effect renders for playing, so that it draws from a copy of
/// the photo of the frame's size.
RenderPlan ForPlaying(RenderPlan plan);

/// The film of a plan; `photo` is the plan's, as IsDrawnDeep takes it.
PlayerFilm FilmToPlay(const std::string& modulePath, const RenderPlan& plan, const Photo& photo);

/// Whether a plan shows the view itself, not what zoom 1 shows.
bool ShowsTarget(const RenderPlan& plan);

/// Plays until the user quits: at half quality where full would not keep up, and frames that come
/// too late are skipped. Paused, frames are of full quality. Enters the sandbox as soon as there is
/// a window, which needs what the sandbox refuses; `access` holds from then on. Throws Error.
void PlayInWindow(const PlayerFilm& film, const SandboxAccess& access,
                  const PlayerOptions& options);

}  // namespace kelto::host
