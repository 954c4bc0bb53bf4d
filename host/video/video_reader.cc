#include "host/video/video_reader.h"

#include <algorithm>

namespace kelto::host {

VideoReader::VideoReader(const std::string& path, const FilmFormat& film, PixelLayout layout,
                         VideoFit fit)
    : file_(path),
      film_(film),
      layout_(layout),
      converter_(path, file_.Info(), file_.Turn(), film, layout, fit),
      pixels_(static_cast<size_t>(film.size.width) * film.size.height * BytesPerPixel(layout)) {}

FrameView VideoReader::Frame(int32_t number) {
  const ptrdiff_t rowBytes = static_cast<ptrdiff_t>(film_.size.width) * BytesPerPixel(layout_);
  const double seconds = number / film_.rate.PerSecond();
  if (film_.Interlaced()) {
    const bool topFirst = film_.fields == FieldOrder::kTopFirst;
    FillField(seconds, topFirst);
    FillField(seconds + 0.5 / film_.rate.PerSecond(), !topFirst);
  } else {
    const AVFrame& picture = file_.At(seconds);
    PicturePart part = PicturePart::kWhole;
    // Both fields at once would show every motion as a comb.
    if (file_.Info().fields == FieldOrder::kTopFirst) part = PicturePart::kTopField;
    if (file_.Info().fields == FieldOrder::kBottomFirst) part = PicturePart::kBottomField;
    converter_.Convert(picture, part, {pixels_.data(), rowBytes, film_.size});
  }
  return {pixels_.data(), rowBytes, film_.size};
}

void VideoReader::FillField(double seconds, bool top) {
  const FrameSize size{film_.size.width, film_.size.height / 2};
  const ptrdiff_t rowBytes = static_cast<ptrdiff_t>(film_.size.width) * BytesPerPixel(layout_);
  const ptrdiff_t first = top ? 0 : rowBytes;
  const VideoInfo& info = file_.Info();
  if (info.fields != FieldOrder::kProgressive) {
    // The second field is seen half a frame later than the picture's time.
    const bool second = (info.fields == FieldOrder::kTopFirst) != top;
    const AVFrame& picture = file_.At(seconds - (second ? 0.5 / info.rate.PerSecond() : 0.0));
    converter_.Convert(picture, top ? PicturePart::kTopField : PicturePart::kBottomField,
                       {pixels_.data() + first, 2 * rowBytes, size});
    return;
  }
  whole_.resize(pixels_.size());
  converter_.Convert(file_.At(seconds), PicturePart::kWhole, {whole_.data(), rowBytes, film_.size});
  for (int32_t row = 0; row < size.height; ++row) {
    const ptrdiff_t at = first + ptrdiff_t{2} * row * rowBytes;
    std::copy_n(whole_.data() + at, rowBytes, pixels_.data() + at);
  }
}

}  // namespace kelto::host
