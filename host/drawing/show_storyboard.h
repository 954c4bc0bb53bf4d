// A sheet that shows a slideshow at a glance.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/facts/show_summary.h"

namespace kelto::host {

struct ShowSheet {
  std::string file;    ///< its name, which ends in .png or .svg
  std::string title;   ///< the show's name
  int32_t total = 1;   ///< the show's frames
  int32_t frames = 3;  ///< beside each photo, at least 1; fewer where all would not fit
};

/// The most pictures that a sheet has room for.
constexpr size_t kMostStoryPictures = 700;

/// The sheet, coded as its file: of each picture the photo with its views, and frames. Throws
/// Error, and UsageError for more than kMostStoryPictures.
std::string DrawShowStoryboard(const std::string& modulePath,
                               const std::vector<PictureOfShow>& pictures, const ShowSheet& sheet);

}  // namespace kelto::host
