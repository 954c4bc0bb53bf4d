// swscale at the same work: planar 4:2:2 in and out, following the view by whole pixels (even ones
// across, for the chroma) since it knows no others. The context, and with it the tables, is kept,
// and made again for every frame.
#include <benchmark/benchmark.h>

#include <stdexcept>

#include "bench/engine/planes.h"

extern "C" {
#include <libswscale/swscale.h>
}

namespace kelto::bench {
namespace {

Planes& Source() {
  static Planes planes(kImageWidth, kImageHeight);
  return planes;
}

Planes& Dest() {
  static Planes planes(kFrameWidth, kFrameHeight);
  return planes;
}

class Context {
 public:
  Context(int flags, double scale) {
    const double parameters[2] = {5, SWS_PARAM_DEFAULT};
    context_ = sws_getContext(static_cast<int>(kFrameWidth * scale), Rows(scale),
                              AV_PIX_FMT_YUV422P, kFrameWidth, kFrameHeight, AV_PIX_FMT_YUV422P,
                              flags, nullptr, nullptr, flags == SWS_LANCZOS ? parameters : nullptr);
    if (context_ == nullptr) throw std::runtime_error("swscale refuses the view");
  }
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;
  ~Context() { sws_freeContext(context_); }

  void Run(double scale, int frame) {
    Planes &source = Source(), &dest = Dest();
    const View view = MovingView(scale, frame);
    const int left = static_cast<int>(view.left) / 2 * 2, top = static_cast<int>(view.top);
    const uint8_t* from[3];
    uint8_t* to[3];
    for (int i = 0; i < 3; ++i) {
      from[i] =
          source.bytes[i].data() + ptrdiff_t{source.strides[i]} * top + (i == 0 ? left : left / 2);
      to[i] = dest.bytes[i].data();
    }
    sws_scale(context_, from, source.strides, 0, Rows(scale), to, dest.strides);
  }

 private:
  static int Rows(double scale) { return static_cast<int>(kFrameHeight * scale); }
  SwsContext* context_;
};

void Kept(benchmark::State& state, int flags, double scale) {
  Source();
  Dest();
  Context context(flags, scale);
  int frame = 0;
  for ([[maybe_unused]] auto _ : state) context.Run(scale, frame++);
}

void Rebuilt(benchmark::State& state, int flags, double scale) {
  Source();
  Dest();
  int frame = 0;
  for ([[maybe_unused]] auto _ : state) Context(flags, scale).Run(scale, frame++);
}

BENCHMARK_CAPTURE(Kept, lanczos, SWS_LANCZOS, 3.125)->Name("swscale/lanczos5/3.125");
BENCHMARK_CAPTURE(Kept, lanczos, SWS_LANCZOS, 1 / 1.5)->Name("swscale/lanczos5/1/1.5");
BENCHMARK_CAPTURE(Rebuilt, lanczos, SWS_LANCZOS, 3.125)
    ->Name("swscale/lanczos5/3.125/context rebuilt");
BENCHMARK_CAPTURE(Rebuilt, lanczos, SWS_LANCZOS, 1 / 1.5)
    ->Name("swscale/lanczos5/1/1.5/context rebuilt");
BENCHMARK_CAPTURE(Kept, point, SWS_POINT, 3.125)->Name("swscale/nearest/3.125");
BENCHMARK_CAPTURE(Kept, point, SWS_POINT, 1 / 1.5)->Name("swscale/nearest/1/1.5");

}  // namespace
}  // namespace kelto::bench
