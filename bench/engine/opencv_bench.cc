// OpenCV at the same work, plane by plane on one thread. Its Lanczos has four lobes of source
// pixels at every scale: magnified it is what others do, reduced it skips pixels. `resize` takes
// views of whole pixels, `warpAffine` any.
#include <benchmark/benchmark.h>

#include <opencv2/imgproc.hpp>

#include "bench/engine/planes.h"

namespace kelto::bench {
namespace {

cv::Mat PlaneOf(Planes& planes, int i) {
  return {planes.height, planes.strides[i], CV_8UC1, planes.bytes[i].data(),
          static_cast<size_t>(planes.strides[i])};
}

Planes& Source() {
  static Planes planes(kImageWidth, kImageHeight);
  return planes;
}

Planes& Frame() {
  static Planes planes(kFrameWidth, kFrameHeight);
  return planes;
}

void Resize(benchmark::State& state, double scale) {
  cv::setNumThreads(1);
  const View view = MovingView(scale, 0);
  for ([[maybe_unused]] auto _ : state) {
    for (int i = 0; i < 3; ++i) {
      const int across = i == 0 ? 1 : 2;
      const cv::Rect part(static_cast<int>(view.left) / across, static_cast<int>(view.top),
                          static_cast<int>(view.width) / across, static_cast<int>(view.height));
      cv::Mat to = PlaneOf(Frame(), i);
      cv::resize(PlaneOf(Source(), i)(part), to, to.size(), 0, 0, cv::INTER_LANCZOS4);
    }
  }
}

void Warp(benchmark::State& state, double scale) {
  cv::setNumThreads(1);
  int frame = 0;
  for ([[maybe_unused]] auto _ : state) {
    const View view = MovingView(scale, frame++);
    for (int i = 0; i < 3; ++i) {
      const double left = i == 0 ? view.left : view.left / 2;
      const cv::Matx23d back(scale, 0, left, 0, scale, view.top);
      cv::Mat to = PlaneOf(Frame(), i);
      cv::warpAffine(PlaneOf(Source(), i), to, back, to.size(),
                     cv::INTER_LANCZOS4 | cv::WARP_INVERSE_MAP);
    }
  }
}

BENCHMARK_CAPTURE(Resize, lanczos, 3.125)->Name("opencv/lanczos4 resize/3.125");
BENCHMARK_CAPTURE(Resize, lanczos, 1 / 1.5)->Name("opencv/lanczos4 resize/1/1.5");
BENCHMARK_CAPTURE(Warp, lanczos, 3.125)->Name("opencv/lanczos4 warp/3.125");
BENCHMARK_CAPTURE(Warp, lanczos, 1 / 1.5)->Name("opencv/lanczos4 warp/1/1.5");

}  // namespace
}  // namespace kelto::bench
