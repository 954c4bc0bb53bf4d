// A film in a few lines, before it is rendered.
#pragma once

#include <string>

#include "host/facts/frame_facts.h"

namespace kelto::host {

/// Above it, single pixels of the photo begin to show.
constexpr double kMostEnlargement = 1.5;

/// What holds at a moment of a film.
struct FilmMoment {
  double seconds = 0.0;
  double value = 0.0;
};

struct FilmSummary {
  FilmMoment slowest, fastest;  ///< perceived speed, see motion::Speed
  motion::Speed most;           ///< the speed at the fastest moment
  FilmMoment enlargement;       ///< frame pixels for each photo pixel where they are most
};

/// Looks at all frames, both fields of an interlaced film's. Throws Error when the command is
/// interrupted.
FilmSummary SummaryOf(FrameInspector& inspector);

/// Some lines for people: photo, length and size, slowest and fastest moment, largest enlargement.
std::string SummaryText(FrameInspector& inspector, const Photo& photo);

}  // namespace kelto::host
