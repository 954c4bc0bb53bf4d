// A film of one plan, from the photograph to the file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/effect/photo.h"
#include "host/film/formats.h"
#include "host/jobs/end_fades.h"
#include "host/jobs/frame_source.h"

namespace kelto::host {

struct FilmJob {
  std::string module;  ///< path of the effect's module
  Scene scene;
  const FilmKind* kind = nullptr;
  FilmRequest request;
  EndFadeLengths ends{};
  int32_t depth = 0;    ///< bits a channel that are asked for; 0 for what photo and film allow
  int32_t workers = 1;  ///< processes that render
  uint64_t memory = 0;  ///< bytes that the photograph takes in all of them, as CheckJob found
};

/// Processes that a film of so many frames is worth, where nobody says: one for each core that this
/// process may use, but no more than have a second's worth of frames each.
int32_t UsualWorkers(int32_t frames);

/// The cores that this process may use, at least 1.
int32_t CoreCount();

/// The file of the film's sound; empty where the kind has none and the sound is that of the video
/// behind, for which nobody asked by name.
std::string SoundFor(const RenderPlan& plan, const FilmKind& kind);

/// Throws UsageError for a film that its kind cannot hold, that would go to a terminal, or that
/// would take the place of one of its sources, of which an empty name is none. Opens no file.
void CheckFilm(const FilmKind& kind, const FilmRequest& request,
               const std::vector<std::string>& sources);

/// Throws what can be known to go wrong before any work: UsageError or Error. Settles the depth of
/// the request, and leaves the job no more workers than may load its photograph at a time, with a
/// message.
void CheckJob(FilmJob& job);

/// Makes the film of a job that CheckJob let pass; the same bytes for any number of workers.
/// Throws Error.
void MakeFilm(const FilmJob& job, const FrameDone& done);

}  // namespace kelto::host
