#include "host/film/png_sequence.h"

#include <stdexcept>
#include <vector>

#include "host/error.h"
#include "host/film/frame_pattern.h"
#include "host/film/output_file.h"
#include "host/film/png_file.h"

namespace kelto::host {
namespace {

class PngSequence : public FrameSink {
 public:
  explicit PngSequence(const FilmRequest& request)
      : pipe_(request.output == kStandardOutput), pattern_(request.output) {
    // Tells of a folder that cannot be written before the first frame is rendered.
    next_ = std::make_unique<OutputFile>(PathOf(0));
  }

  void Write(const FrameView& frame) override {
    if (!next_) next_ = std::make_unique<OutputFile>(PathOf(number_));
    Encode(frame);
    next_->Write(file_.data(), file_.size());
    next_->Finish();
    next_.reset();
    ++number_;
  }

  void Finish() override {}

 private:
  std::string PathOf(int32_t number) const {
    return pipe_ ? kStandardOutput : pattern_.PathOf(number);
  }

  void Encode(const FrameView& frame) {
    try {
      file_ = EncodePng(frame);
    } catch (const std::runtime_error& error) {
      throw Error(PathOf(number_) + ": cannot be coded as PNG: " + error.what());
    }
  }

  bool pipe_;
  FramePattern pattern_;
  std::unique_ptr<OutputFile> next_;
  int32_t number_ = 0;
  std::vector<uint8_t> file_;
};

}  // namespace

std::unique_ptr<FrameSink> OpenPngSequence(const FilmRequest& request) {
  return std::make_unique<PngSequence>(request);
}

}  // namespace kelto::host
