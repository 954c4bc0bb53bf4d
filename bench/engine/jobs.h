// The picture that the engine's benchmarks draw, and the jobs that draw it.
#pragma once

#include <cstdio>
#include <cstring>
#include <string>

#include "bench/engine/view.h"
#include "platform/ipl.h"
#include "resample/job.h"

namespace kelto::bench {

/// By filter mode.
inline constexpr const char* kFilterNames[] = {"realtime", "triangle", "quadratic", "cubic",
                                               "catmull",  "gaussian", "hiqual",    "ultra"};
inline constexpr double kScales[] = {6, 3.125, 1.5, 1 / 1.5, 1.0 / 6};

/// One picture and one frame for all benchmarks. The picture lies where the effect keeps its own.
class Pictures {
 public:
  Pictures() {
    header_ = iplCreateImageHeader(4, 0, IPL_DEPTH_8U, "RGBA", "BGRA", IPL_DATA_ORDER_PIXEL,
                                   IPL_ORIGIN_TL, IPL_ALIGN_DWORD, kImageWidth, kImageHeight,
                                   nullptr, nullptr, nullptr, nullptr);
    iplAllocateImage(header_, 0, 0);
    const std::vector<uint8_t> noise = NoisyBytes(size_t{4} * kImageWidth * kImageHeight);
    std::memcpy(header_->imageData, noise.data(), noise.size());
  }
  uint8_t* Image() const { return static_cast<uint8_t*>(static_cast<void*>(header_->imageData)); }
  std::vector<uint8_t> frame = NoisyBytes(size_t{4} * kFrameWidth * kFrameHeight);

 private:
  IplImage* header_;  // as long as the process lives
};

inline Pictures& Shared() {
  static Pictures pictures;
  return pictures;
}

/// Draws the moving view as it is at `frame` over the whole frame.
inline ResampleJob Job(int32_t mode, double scale, int frame, int32_t bytesPerPixel) {
  ResampleJob job;
  job.source = {Shared().Image(), kImageWidth, kImageHeight, ptrdiff_t{4} * kImageWidth};
  job.dest = {Shared().frame.data(), kFrameWidth, kFrameHeight,
              ptrdiff_t{bytesPerPixel} * kFrameWidth};
  job.sourceRect = SourceRect(MovingView(scale, frame));
  job.destRect = {0.5f, 0.5f, kFrameWidth - 0.5f, kFrameHeight - 0.5f};
  job.filterMode = mode;
  job.chroma = {2, 1};
  return job;
}

inline std::string ScaleName(double scale) {
  char name[32];
  std::snprintf(name, sizeof(name), scale < 1 ? "1/%g" : "%g", scale < 1 ? 1 / scale : scale);
  return name;
}

}  // namespace kelto::bench
