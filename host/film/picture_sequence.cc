#include "host/film/picture_sequence.h"

#include <functional>
#include <stdexcept>
#include <utility>
#include <vector>

#include "host/base/error.h"
#include "host/files/output_file.h"
#include "host/film/deep_pictures.h"
#include "host/film/frame_pattern.h"
#include "host/film/png_file.h"
#include "host/film/png_pixel_shape.h"
#include "host/film/tiff_file.h"
#if !defined(_WIN32)
#include "host/film/jpeg_file.h"
#endif

namespace kelto::host {
namespace {

/// A form of picture: its name in messages, and a frame as the bytes of such a file.
struct PictureForm {
  const char* name;
  std::function<std::vector<uint8_t>(const FrameView& frame, SampleAspect aspect)> encode;
};

std::vector<uint8_t> EncodeShapedPng(const FrameView& frame, SampleAspect aspect) {
  return WithPixelShape(EncodePng(frame), aspect);
}

class PictureSequence : public FrameSink {
 public:
  PictureSequence(const FilmRequest& request, PictureForm form)
      : form_(std::move(form)),
        aspect_(request.format.sampleAspect),
        pipe_(request.output == kStandardOutput),
        pattern_(request.output),
        number_(request.firstNumber) {
    // Reports a folder that cannot be written to before the first frame is rendered.
    next_ = std::make_unique<OutputFile>(PathOf(number_));
  }

  void Write(const FrameView& frame) override {
    if (!next_) next_ = std::make_unique<OutputFile>(PathOf(number_));
    const std::vector<uint8_t> file = Encode(frame);
    next_->Write(file.data(), file.size());
    next_->Finish(FolderSync::kLater);
    next_.reset();
    ++number_;
  }

  // Once for all pictures: it takes as long for many as for one.
  void Finish() override {
    if (!pipe_) SyncFolderOf(PathOf(number_));
  }

 private:
  std::string PathOf(int32_t number) const {
    return pipe_ ? kStandardOutput : pattern_.PathOf(number);
  }

  std::vector<uint8_t> Encode(const FrameView& frame) const {
    try {
      return form_.encode(frame, aspect_);
    } catch (const std::runtime_error& error) {
      throw Error(PathOf(number_) + ": cannot be coded as " + form_.name + ": " + error.what());
    }
  }

  PictureForm form_;
  SampleAspect aspect_;
  bool pipe_;
  FramePattern pattern_;
  std::unique_ptr<OutputFile> next_;
  int32_t number_;
};

PictureDepth PictureDepthOf(const FilmRequest& request) {
  return {request.depth, request.transparent};
}

}  // namespace

std::unique_ptr<FrameSink> OpenPngSequence(const FilmRequest& request) {
  if (request.deep) {
    const auto encode = [depth = PictureDepthOf(request)](const FrameView& frame,
                                                          SampleAspect aspect) {
      return WithPixelShape(EncodeDeepPng(frame, depth), aspect);
    };
    return std::make_unique<PictureSequence>(request, PictureForm{"PNG", encode});
  }
  return std::make_unique<PictureSequence>(request, PictureForm{"PNG", &EncodeShapedPng});
}

std::unique_ptr<FrameSink> OpenTiffSequence(const FilmRequest& request) {
  if (request.deep) {
    const auto encode = [depth = PictureDepthOf(request)](const FrameView& frame,
                                                          SampleAspect aspect) {
      return EncodeDeepTiff(frame, depth, aspect);
    };
    return std::make_unique<PictureSequence>(request, PictureForm{"TIFF", encode});
  }
  return std::make_unique<PictureSequence>(request, PictureForm{"TIFF", &EncodeTiff});
}

#if !defined(_WIN32)
std::unique_ptr<FrameSink> OpenJpegSequence(const FilmRequest& request) {
  return std::make_unique<PictureSequence>(request, PictureForm{"JPEG", &EncodeJpeg});
}
#endif

}  // namespace kelto::host
