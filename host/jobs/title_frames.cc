#include "host/jobs/title_frames.h"

#include <cstring>

namespace kelto::host {

TitleFrames::TitleFrames(const std::string& text, int32_t frames, Colour colour,
                         const FilmFormat& format, PixelLayout layout)
    : frames_(frames),
      format_(format),
      layout_(layout),
      card_(colour, format.size, layout),
      letters_(text, LetterPlace::kTitle, format, layout) {}

FrameView TitleFrames::At(int32_t number) {
  const FrameView card = card_.View();
  const size_t rowBytes = static_cast<size_t>(card.size.width) * BytesPerPixel(layout_);
  bytes_.resize(rowBytes * card.size.height);
  for (int32_t row = 0; row < card.size.height; ++row) {
    std::memcpy(&bytes_[row * rowBytes], card.Row(row), rowBytes);
  }
  const auto at = [&](double frame) {
    // As if it stayed: what takes the letters away is the fade into the first picture.
    return CaptionOpacity(frame, 0, 4 * frames_, format_.rate);
  };
  letters_.Over(bytes_.data(), static_cast<ptrdiff_t>(rowBytes), at(number), at(number + 0.5));
  return {bytes_.data(), static_cast<ptrdiff_t>(rowBytes), card.size};
}

}  // namespace kelto::host
