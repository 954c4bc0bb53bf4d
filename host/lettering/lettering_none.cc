// A build without the libraries that draw letters.
#include "host/base/error.h"
#include "host/lettering/lettering.h"

namespace kelto::host {

bool CanDrawLetters() { return false; }

Lettering::Lettering(const std::string&, LetterPlace, const FilmFormat& format, PixelLayout layout)
    : format_(format), layout_(layout) {
  throw Error("this build draws no captions");
}

void Lettering::Over(uint8_t*, ptrdiff_t, double, double) const {}

void Lettering::Keep(const uint8_t*, ptrdiff_t) {}

}  // namespace kelto::host
