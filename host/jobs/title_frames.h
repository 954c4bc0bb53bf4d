// The card with a show's title, as frames.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/base/film_format.h"
#include "host/jobs/solid_frame.h"
#include "host/lettering/lettering.h"
#include "host/options/colour.h"

namespace kelto::host {

/// The letters come softly, and go with the card.
class TitleFrames {
 public:
  /// `frames` are those for which the card is seen. Throws Error where `text` cannot be drawn.
  TitleFrames(const std::string& text, int32_t frames, Colour colour, const FilmFormat& format,
              PixelLayout layout);

  /// Letters that no font of this machine has.
  int32_t MissingLetters() const { return letters_.MissingLetters(); }

  /// Frame `number` of the card. The view holds until the next call.
  FrameView At(int32_t number);

 private:
  int32_t frames_;
  FilmFormat format_;
  PixelLayout layout_;
  SolidFrame card_;
  Lettering letters_;
  std::vector<uint8_t> bytes_;
};

}  // namespace kelto::host
