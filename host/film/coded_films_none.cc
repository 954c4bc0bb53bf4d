// A build without the FFmpeg libraries.
#include "host/film/coded_films.h"

#include "host/base/error.h"

namespace kelto::host {

std::span<const FilmKind> CodedFilmKinds() { return {}; }

const char* UsualFilmKind() { return "y4m"; }

std::string InstalledEncoder(const FilmCodec&, FrameSize, const std::string&) { return ""; }

void CheckSound(const std::string& path) {
  throw Error(path + ": films of this build have no sound");
}

double SoundSeconds(const std::string& path) {
  CheckSound(path);
  return 0.0;
}

Libraries CodedFilmLibraries() { return {}; }

}  // namespace kelto::host
