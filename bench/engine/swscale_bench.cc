// swscale at the same work: planar 4:2:2 in and out, following the view by whole pixels (even ones
// across, for the chroma) since it knows no others.
// The context, and with it the tables, is kept.
#include <benchmark/benchmark.h>

#include <stdexcept>

#include "bench/engine/planes.h"

extern "C" {
#include <libswscale/swscale.h>
}

namespace kelto::bench {
namespace {

void Scale(benchmark::State& state, int flags, double scale) {
  static Planes source(kImageWidth, kImageHeight), dest(kFrameWidth, kFrameHeight);
  const int width = static_cast<int>(kFrameWidth * scale);
  const int height = static_cast<int>(kFrameHeight * scale);
  const double parameters[2] = {5, SWS_PARAM_DEFAULT};
  SwsContext* context = sws_getContext(width, height, AV_PIX_FMT_YUV422P, kFrameWidth, kFrameHeight,
                                       AV_PIX_FMT_YUV422P, flags, nullptr, nullptr,
                                       flags == SWS_LANCZOS ? parameters : nullptr);
  if (context == nullptr) throw std::runtime_error("swscale refuses the view");
  int frame = 0;
  for ([[maybe_unused]] auto _ : state) {
    const View view = MovingView(scale, frame++);
    const int left = static_cast<int>(view.left) / 2 * 2, top = static_cast<int>(view.top);
    const uint8_t* from[3];
    uint8_t* to[3];
    for (int i = 0; i < 3; ++i) {
      from[i] =
          source.bytes[i].data() + ptrdiff_t{source.strides[i]} * top + (i == 0 ? left : left / 2);
      to[i] = dest.bytes[i].data();
    }
    sws_scale(context, from, source.strides, 0, height, to, dest.strides);
  }
  sws_freeContext(context);
}

BENCHMARK_CAPTURE(Scale, lanczos, SWS_LANCZOS, 3.125)->Name("swscale/lanczos5/3.125");
BENCHMARK_CAPTURE(Scale, lanczos, SWS_LANCZOS, 1 / 1.5)->Name("swscale/lanczos5/1/1.5");
BENCHMARK_CAPTURE(Scale, point, SWS_POINT, 3.125)->Name("swscale/nearest/3.125");
BENCHMARK_CAPTURE(Scale, point, SWS_POINT, 1 / 1.5)->Name("swscale/nearest/1/1.5");

}  // namespace
}  // namespace kelto::bench
