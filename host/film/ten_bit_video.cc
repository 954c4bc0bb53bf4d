#include "host/film/ten_bit_video.h"

#include <new>

#include "host/files/output_file.h"
#include "host/film/deep_planes.h"
#include "host/film/libav.h"

namespace kelto::host {
namespace {

class RawTenBits final : public FrameSink {
 public:
  explicit RawTenBits(const FilmRequest& request)
      : file_(request.output),
        planes_(request.format.size, AV_PIX_FMT_YUV422P10),
        frame_(Own(av_frame_alloc())) {
    frame_->format = AV_PIX_FMT_YUV422P10;
    frame_->width = request.format.size.width;
    frame_->height = request.format.size.height;
    if (av_frame_get_buffer(frame_.get(), 0) < 0) throw std::bad_alloc();
  }
  void Write(const FrameView& frame) override {
    planes_.Fill(frame, *frame_);
    for (int plane = 0; plane < 3; ++plane) {
      const size_t bytes = static_cast<size_t>(frame_->width) * (plane == 0 ? 2 : 1);
      for (int32_t row = 0; row < frame_->height; ++row) {
        file_.Write(frame_->data[plane] + ptrdiff_t{row} * frame_->linesize[plane], bytes);
      }
    }
  }
  void Finish() override { file_.Finish(); }

 private:
  OutputFile file_;
  DeepPlanes planes_;
  Owned<AVFrame> frame_;
};

}  // namespace

std::unique_ptr<FrameSink> OpenRawYuv422P10(const FilmRequest& request) {
  return std::make_unique<RawTenBits>(request);
}

}  // namespace kelto::host
