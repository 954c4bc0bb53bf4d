// Options of one picture, behind its path on a list's line.
#pragma once

#include <string>
#include <vector>

#include "host/base/error.h"
#include "host/commands/plan_options.h"
#include "host/jobs/list_file.h"

namespace kelto::host {

/// The options of one picture.
struct PictureOptions {
  PlanOptions plan;
  std::vector<std::string> words;  ///< what `plan` was read from, as WordsGiven has them
  std::string each{}, fade{};      ///< of a line in a show; empty where the line does not say
};

/// What lines may say beside what concerns the picture.
enum class LineUse {
  kFilm,  ///< of a batch: the film's length
  kShow,  ///< of a slideshow: how long the picture is seen, and how it fades into the next one
};

/// The options of a picture that stands in a list: those of the command line, with the line's own
/// in place of theirs. A line with views has none of the command line's. Throws UsageError that
/// names list and line.
PictureOptions ReadLineOptions(const ListedPicture& picture, const PictureOptions& common,
                               LineUse use);

/// Runs `work`, which uses the options of `picture`; a UsageError that it throws gets the place of
/// the line in front.
template <typename Work>
auto AtPlaceOf(const ListedPicture& picture, Work work) {
  try {
    return work();
  } catch (const UsageError& error) {
    if (picture.place.empty()) throw;
    throw UsageError(picture.place + ": " + error.what());
  }
}

}  // namespace kelto::host
