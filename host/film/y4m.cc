#include "host/film/y4m.h"

#include <cstring>
#include <vector>

#include "host/files/output_file.h"
#include "host/film/planes.h"

namespace kelto::host {
namespace {

constexpr char kFrameLine[] = "FRAME\n";
constexpr size_t kFrameLineSize = sizeof(kFrameLine) - 1;

class Y4m : public FrameSink {
 public:
  explicit Y4m(const FilmRequest& request)
      : file_(request.output), map_(MapInto(MatrixFor(request.format.size))) {
    const FrameSize size = request.format.size;
    const size_t pixels = static_cast<size_t>(size.width) * size.height;
    block_.resize(kFrameLineSize + 2 * pixels);
    std::memcpy(block_.data(), kFrameLine, kFrameLineSize);
    uint8_t* luma = block_.data() + kFrameLineSize;
    planes_ = {luma,       luma + pixels,  luma + pixels + pixels / 2,
               size.width, size.width / 2, size.width / 2};
    const std::string header = Y4mHeader(request.format);
    file_.Write(header.data(), header.size());
  }

  void Write(const FrameView& frame) override {
    FillPlanes422(frame, map_, planes_);
    file_.Write(block_.data(), block_.size());
  }

  void Finish() override { file_.Finish(); }

 private:
  OutputFile file_;
  ChromaMap map_;
  std::vector<uint8_t> block_;  ///< the frame's line and its planes, as written
  Planes planes_{};
};

char ScanLetter(FieldOrder fields) {
  switch (fields) {
    case FieldOrder::kTopFirst:
      return 't';
    case FieldOrder::kBottomFirst:
      return 'b';
    case FieldOrder::kProgressive:
      break;
  }
  return 'p';
}

}  // namespace

std::unique_ptr<FrameSink> OpenY4m(const FilmRequest& request) {
  return std::make_unique<Y4m>(request);
}

std::string Y4mHeader(const FilmFormat& format) {
  return "YUV4MPEG2 W" + std::to_string(format.size.width) + " H" +
         std::to_string(format.size.height) + " F" + std::to_string(format.rate.numerator) + ":" +
         std::to_string(format.rate.denominator) + " I" + ScanLetter(format.fields) + " A" +
         std::to_string(format.sampleAspect.width) + ":" +
         std::to_string(format.sampleAspect.height) + " C422 XYSCSS=422 XCOLORRANGE=LIMITED\n";
}

}  // namespace kelto::host
