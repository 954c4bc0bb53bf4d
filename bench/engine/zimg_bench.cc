// zimg at the same work: planar 4:2:2, its fastest instruction set, with the filter tables rebuilt
// for every frame, as a moving view needs, and without.
#include <benchmark/benchmark.h>
#include <zimg.h>

#include <stdexcept>

#include "bench/engine/view.h"

namespace kelto::bench {
namespace {

struct Planes {
  std::vector<uint8_t> bytes[3];
  ptrdiff_t strides[3];

  Planes(int32_t width, int32_t height) {
    for (int i = 0; i < 3; ++i) {
      strides[i] = ((i == 0 ? width : width / 2) + 63) / 64 * ptrdiff_t{64};
      bytes[i] = NoisyBytes(static_cast<size_t>(strides[i]) * static_cast<size_t>(height) + 64);
    }
  }
  uint8_t* Row0(int i) {
    const auto at = reinterpret_cast<uintptr_t>(bytes[i].data());
    return bytes[i].data() + ((64 - at % 64) % 64);
  }
};

Planes& Source() {
  static Planes planes(kImageWidth, kImageHeight);
  return planes;
}
Planes& Dest() {
  static Planes planes(kFrameWidth, kFrameHeight);
  return planes;
}

zimg_image_format Format(int32_t width, int32_t height) {
  zimg_image_format format;
  zimg_image_format_default(&format, ZIMG_API_VERSION);
  format.width = static_cast<unsigned>(width);
  format.height = static_cast<unsigned>(height);
  format.pixel_type = ZIMG_PIXEL_BYTE;
  format.subsample_w = 1;
  format.color_family = ZIMG_COLOR_YUV;
  format.matrix_coefficients = ZIMG_MATRIX_BT709;
  return format;
}

class Graph {
 public:
  Graph(zimg_resample_filter_e filter, double parameter, double scale, int frame) {
    const View view = MovingView(scale, frame);
    zimg_image_format from = Format(kImageWidth, kImageHeight);
    from.active_region = {view.left, view.top, view.width, view.height};
    const zimg_image_format to = Format(kFrameWidth, kFrameHeight);
    zimg_graph_builder_params params;
    zimg_graph_builder_params_default(&params, ZIMG_API_VERSION);
    params.resample_filter = params.resample_filter_uv = filter;
    params.filter_param_a = params.filter_param_a_uv = parameter;
    params.cpu_type = ZIMG_CPU_AUTO_64B;
    graph_ = zimg_filter_graph_build(&from, &to, &params);
    if (graph_ == nullptr) throw std::runtime_error("zimg refuses the view");
    size_t bytes = 0;
    zimg_filter_graph_get_tmp_size(graph_, &bytes);
    scratch_ = std::vector<uint8_t>(bytes + 64);
  }
  Graph(const Graph&) = delete;
  Graph& operator=(const Graph&) = delete;
  ~Graph() { zimg_filter_graph_free(graph_); }

  void Run() {
    zimg_image_buffer_const from = {};
    zimg_image_buffer to = {};
    from.version = to.version = ZIMG_API_VERSION;
    for (int i = 0; i < 3; ++i) {
      from.plane[i] = {Source().Row0(i), Source().strides[i], ZIMG_BUFFER_MAX};
      to.plane[i] = {Dest().Row0(i), Dest().strides[i], ZIMG_BUFFER_MAX};
    }
    const auto at = reinterpret_cast<uintptr_t>(scratch_.data());
    zimg_filter_graph_process(graph_, &from, &to, scratch_.data() + (64 - at % 64) % 64, nullptr,
                              nullptr, nullptr, nullptr);
  }

 private:
  zimg_filter_graph* graph_;
  std::vector<uint8_t> scratch_;
};

void Rebuilt(benchmark::State& state, zimg_resample_filter_e filter, double parameter,
             double scale) {
  Source();
  Dest();
  int frame = 0;
  for ([[maybe_unused]] auto _ : state) Graph(filter, parameter, scale, frame++).Run();
}

void Kernel(benchmark::State& state, zimg_resample_filter_e filter, double parameter,
            double scale) {
  Source();
  Dest();
  Graph graph(filter, parameter, scale, 1);
  for ([[maybe_unused]] auto _ : state) graph.Run();
}

BENCHMARK_CAPTURE(Rebuilt, lanczos5, ZIMG_RESIZE_LANCZOS, 5, 3.125)
    ->Name("zimg/lanczos5/3.125/tables rebuilt");
BENCHMARK_CAPTURE(Kernel, lanczos5, ZIMG_RESIZE_LANCZOS, 5, 3.125)
    ->Name("zimg/lanczos5/3.125/kernel alone");
BENCHMARK_CAPTURE(Rebuilt, lanczos5, ZIMG_RESIZE_LANCZOS, 5, 1 / 1.5)
    ->Name("zimg/lanczos5/1/1.5/tables rebuilt");
BENCHMARK_CAPTURE(Kernel, lanczos5, ZIMG_RESIZE_LANCZOS, 5, 1 / 1.5)
    ->Name("zimg/lanczos5/1/1.5/kernel alone");
BENCHMARK_CAPTURE(Rebuilt, bicubic, ZIMG_RESIZE_BICUBIC, 0, 3.125)
    ->Name("zimg/bicubic/3.125/tables rebuilt");
BENCHMARK_CAPTURE(Kernel, bicubic, ZIMG_RESIZE_BICUBIC, 0, 3.125)
    ->Name("zimg/bicubic/3.125/kernel alone");

}  // namespace
}  // namespace kelto::bench
