// zimg at the same work: planar 4:2:2 of 8 bits, planar red, green, blue and alpha of 16 bits and
// float; its fastest instruction set, with the filter tables rebuilt for every frame, as a moving
// view needs, and without.
#include <benchmark/benchmark.h>
#include <zimg.h>

#include <map>
#include <stdexcept>
#include <string>

#include "bench/engine/view.h"

namespace kelto::bench {
namespace {

/// What the planes hold.
struct Kind {
  zimg_pixel_type_e type;
  unsigned bytes;  ///< of a sample
  int planes;      ///< 3: YCbCr 4:2:2; 4: red, green, blue and alpha
};

constexpr Kind kVideo = {ZIMG_PIXEL_BYTE, 1, 3};
constexpr Kind kSixteenBits = {ZIMG_PIXEL_WORD, 2, 4};
constexpr Kind kFloat = {ZIMG_PIXEL_FLOAT, 4, 4};

struct Planes {
  std::vector<uint8_t> bytes[4];
  ptrdiff_t strides[4] = {};

  Planes(const Kind& kind, int32_t width, int32_t height) {
    for (int i = 0; i < kind.planes; ++i) {
      const int32_t samples = i == 0 || kind.planes == 4 ? width : width / 2;
      strides[i] = (samples * ptrdiff_t{kind.bytes} + 63) / 64 * 64;
      bytes[i] = NoisyBytes(static_cast<size_t>(strides[i]) * static_cast<size_t>(height) + 64);
      if (kind.type != ZIMG_PIXEL_FLOAT) continue;
      for (size_t at = 3; at < bytes[i].size(); at += 4) bytes[i][at] = 0x3E;  // of 0.125 .. 0.5
    }
  }
  uint8_t* Row0(int i) {
    const auto at = reinterpret_cast<uintptr_t>(bytes[i].data());
    return bytes[i].data() + ((64 - at % 64) % 64);
  }
};

Planes& Source(const Kind& kind) {
  static std::map<unsigned, Planes> all;
  return all.try_emplace(kind.bytes, kind, kImageWidth, kImageHeight).first->second;
}
Planes& Dest(const Kind& kind) {
  static std::map<unsigned, Planes> all;
  return all.try_emplace(kind.bytes, kind, kFrameWidth, kFrameHeight).first->second;
}

zimg_image_format Format(const Kind& kind, int32_t width, int32_t height) {
  zimg_image_format format;
  zimg_image_format_default(&format, ZIMG_API_VERSION);
  format.width = static_cast<unsigned>(width);
  format.height = static_cast<unsigned>(height);
  format.pixel_type = kind.type;
  format.depth = 8 * kind.bytes;
  if (kind.planes == 4) {
    format.color_family = ZIMG_COLOR_RGB;
    format.matrix_coefficients = ZIMG_MATRIX_RGB;
    format.pixel_range = ZIMG_RANGE_FULL;
    format.alpha = ZIMG_ALPHA_PREMULTIPLIED;
  } else {
    format.subsample_w = 1;
    format.color_family = ZIMG_COLOR_YUV;
    format.matrix_coefficients = ZIMG_MATRIX_BT709;
  }
  return format;
}

class Graph {
 public:
  Graph(const Kind& kind, zimg_resample_filter_e filter, double parameter, double scale, int frame)
      : kind_(kind) {
    const View view = MovingView(scale, frame);
    zimg_image_format from = Format(kind, kImageWidth, kImageHeight);
    from.active_region = {view.left, view.top, view.width, view.height};
    const zimg_image_format to = Format(kind, kFrameWidth, kFrameHeight);
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
    for (int i = 0; i < kind_.planes; ++i) {
      from.plane[i] = {Source(kind_).Row0(i), Source(kind_).strides[i], ZIMG_BUFFER_MAX};
      to.plane[i] = {Dest(kind_).Row0(i), Dest(kind_).strides[i], ZIMG_BUFFER_MAX};
    }
    const auto at = reinterpret_cast<uintptr_t>(scratch_.data());
    zimg_filter_graph_process(graph_, &from, &to, scratch_.data() + (64 - at % 64) % 64, nullptr,
                              nullptr, nullptr, nullptr);
  }

 private:
  Kind kind_;
  zimg_filter_graph* graph_;
  std::vector<uint8_t> scratch_;
};

void Rebuilt(benchmark::State& state, zimg_resample_filter_e filter, double parameter, double scale,
             const Kind& kind) {
  Source(kind);
  Dest(kind);
  int frame = 0;
  for ([[maybe_unused]] auto _ : state) Graph(kind, filter, parameter, scale, frame++).Run();
}

void Kernel(benchmark::State& state, zimg_resample_filter_e filter, double parameter, double scale,
            const Kind& kind) {
  Source(kind);
  Dest(kind);
  Graph graph(kind, filter, parameter, scale, 1);
  for ([[maybe_unused]] auto _ : state) graph.Run();
}

const bool kDeepRegistered = [] {
  const std::pair<const char*, Kind> kinds[] = {{"16 bits", kSixteenBits}, {"float", kFloat}};
  for (const auto& [name, kind] : kinds) {
    for (const double scale : {3.125, 1 / 1.5}) {
      const std::string row =
          std::string("zimg/") + name + "/lanczos5/" + (scale > 1 ? "3.125" : "1/1.5");
      benchmark::RegisterBenchmark((row + "/tables rebuilt").c_str(), Rebuilt, ZIMG_RESIZE_LANCZOS,
                                   5.0, scale, kind);
      benchmark::RegisterBenchmark((row + "/kernel alone").c_str(), Kernel, ZIMG_RESIZE_LANCZOS,
                                   5.0, scale, kind);
    }
  }
  return true;
}();

BENCHMARK_CAPTURE(Rebuilt, lanczos5, ZIMG_RESIZE_LANCZOS, 5, 3.125, kVideo)
    ->Name("zimg/lanczos5/3.125/tables rebuilt");
BENCHMARK_CAPTURE(Kernel, lanczos5, ZIMG_RESIZE_LANCZOS, 5, 3.125, kVideo)
    ->Name("zimg/lanczos5/3.125/kernel alone");
BENCHMARK_CAPTURE(Rebuilt, lanczos5, ZIMG_RESIZE_LANCZOS, 5, 1 / 1.5, kVideo)
    ->Name("zimg/lanczos5/1/1.5/tables rebuilt");
BENCHMARK_CAPTURE(Kernel, lanczos5, ZIMG_RESIZE_LANCZOS, 5, 1 / 1.5, kVideo)
    ->Name("zimg/lanczos5/1/1.5/kernel alone");
BENCHMARK_CAPTURE(Rebuilt, bicubic, ZIMG_RESIZE_BICUBIC, 0, 3.125, kVideo)
    ->Name("zimg/bicubic/3.125/tables rebuilt");
BENCHMARK_CAPTURE(Kernel, bicubic, ZIMG_RESIZE_BICUBIC, 0, 3.125, kVideo)
    ->Name("zimg/bicubic/3.125/kernel alone");

}  // namespace
}  // namespace kelto::bench
