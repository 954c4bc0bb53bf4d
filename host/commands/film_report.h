// The line at the end of the work.
#pragma once

#include <chrono>
#include <string>

#include "host/film/formats.h"

namespace kelto::host {

/// "film.mp4: 5.0 s, 1920x1080, 1.1 MB, in 3.2 s"; of numbered pictures their count in place of
/// length and bytes.
std::string FilmReport(const FilmKind& kind, const FilmRequest& request, double seconds);

/// Says so on a terminal, where people look on; for other readers the exit code says that the film
/// is there. Of a film on the standard output nothing is said.
class FilmClock {
 public:
  void Report(const FilmKind& kind, const FilmRequest& request) const;

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace kelto::host
