// Letters over frames: captions and titles.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/base/film_format.h"

namespace kelto::host {

/// Where letters stand, and how large they are.
enum class LetterPlace {
  kCaption,  ///< a few lines at the bottom
  kTitle,    ///< large, in the middle
};

/// White letters with a dark outline, drawn once and blended over frames. They stay within the part
/// of the frame that every television shows, a margin of a twentieth of its height and width:
/// longer lines are wrapped, and what does not fit is cut with an ellipsis. Scripts are drawn as
/// their readers expect, from right to left where that is so, as far as the system's fonts have
/// them.
class Lettering {
 public:
  /// `text` is UTF-8, with "\n" between lines; bytes that are not show as question marks. Throws
  /// Error where it cannot be drawn.
  Lettering(const std::string& text, LetterPlace place, const FilmFormat& format,
            PixelLayout layout);

  /// How many of the text's letters no font of this machine has; boxes stand for them.
  int32_t MissingLetters() const { return missing_; }

  /// Blends the letters over a frame of the format and layout, `rowBytes` from one row to the row
  /// below, with this opacity, 0..1; `later` is that of the later field in interlaced films.
  void Over(uint8_t* pixels, ptrdiff_t rowBytes, double opacity, double later) const;

 private:
  void Keep(const uint8_t* drawn, ptrdiff_t rowBytes);
  template <typename Sample>
  void OverRow(uint8_t* row, int32_t y, uint32_t part) const;

  FilmFormat format_;
  PixelLayout layout_;
  int32_t missing_ = 0;
  /// The part of the frame that has letters, in pixels.
  int32_t left_ = 0, top_ = 0, width_ = 0, height_ = 0;
  /// Of each sample of the frame there, of 255: how much of the letters it gets, and how much it
  /// keeps less.
  std::vector<uint8_t> colour_, cover_;
};

/// Whether this build can draw letters; Lettering throws Error where it cannot.
bool CanDrawLetters();

/// How opaque a caption is at `frame`, where it is seen from frame `from` to before frame `until`:
/// it comes and goes softly, in six tenths of a second where there is time.
double CaptionOpacity(double frame, int32_t from, int32_t until, FrameRate rate);

}  // namespace kelto::host
