#include "host/film/raw_video.h"

#include "host/files/output_file.h"
#include "host/film/deep_frame.h"

namespace kelto::host {
namespace {

class RawVideo : public FrameSink {
 public:
  explicit RawVideo(const FilmRequest& request, int32_t bytesPerPixel)
      : file_(request.output),
        rowBytes_(static_cast<size_t>(request.format.size.width) * bytesPerPixel) {}

  void Write(const FrameView& frame) override {
    if (frame.rowBytes == static_cast<ptrdiff_t>(rowBytes_)) {
      file_.Write(frame.pixels, rowBytes_ * frame.size.height);
      return;
    }
    for (int32_t row = 0; row < frame.size.height; ++row) file_.Write(frame.Row(row), rowBytes_);
  }

  void Finish() override { file_.Finish(); }

 private:
  OutputFile file_;
  size_t rowBytes_;
};

class RawWords final : public FrameSink {
 public:
  explicit RawWords(const FilmRequest& request) : file_(request.output) {}
  void Write(const FrameView& frame) override {
    const std::vector<uint16_t> words = StraightWords(frame);
    file_.Write(words.data(), words.size() * sizeof(uint16_t));
  }
  void Finish() override { file_.Finish(); }

 private:
  OutputFile file_;
};

}  // namespace

std::unique_ptr<FrameSink> OpenRawRgba64(const FilmRequest& request) {
  return std::make_unique<RawWords>(request);
}

std::unique_ptr<FrameSink> OpenRawYCbYCr(const FilmRequest& request) {
  return std::make_unique<RawVideo>(request, BytesPerPixel(PixelLayout::kYCbYCr));
}

std::unique_ptr<FrameSink> OpenRawBGRA(const FilmRequest& request) {
  return std::make_unique<RawVideo>(request, BytesPerPixel(PixelLayout::kBGRA));
}

}  // namespace kelto::host
