#include "host/film/palette_filter.h"

#include <cerrno>
#include <string>

#include "host/base/error.h"
#include "host/film/filter_library.h"

namespace kelto::host {
namespace {

/// Colours of all frames, since a move shows new parts of the photo to its end.
constexpr const char* kFilters =
    "split[seen][shown];[seen]palettegen=stats_mode=full:reserve_transparent=0[palette];"
    "[shown][palette]paletteuse=dither=sierra2_4a";

}  // namespace

PaletteFilter::PaletteFilter(FrameSize size, AVRational frameTime)
    : library_(Filters()), frameTime_(frameTime) {
  const int code = Open(size);
  if (code >= 0) return;
  library_.avfilter_graph_free(&graph_);
  throw Error("the colours of a gif cannot be chosen: " + LibavText(code));
}

PaletteFilter::~PaletteFilter() { library_.avfilter_graph_free(&graph_); }

int PaletteFilter::Open(FrameSize size) {
  graph_ = library_.avfilter_graph_alloc();
  if (graph_ == nullptr) return AVERROR(ENOMEM);
  graph_->nb_threads = 1;
  const std::string frames = "video_size=" + std::to_string(size.width) + "x" +
                             std::to_string(size.height) +
                             ":pix_fmt=bgr0:time_base=" + std::to_string(frameTime_.num) + "/" +
                             std::to_string(frameTime_.den) + ":pixel_aspect=1/1";
  int code = library_.avfilter_graph_create_filter(
      &source_, library_.avfilter_get_by_name("buffer"), "in", frames.c_str(), nullptr, graph_);
  if (code < 0) return code;
  code = library_.avfilter_graph_create_filter(&sink_, library_.avfilter_get_by_name("buffersink"),
                                               "out", nullptr, nullptr, graph_);
  if (code < 0) return code;
  const auto endOf = [&](const char* name, AVFilterContext* filter) {
    AVFilterInOut* end = library_.avfilter_inout_alloc();
    if (end == nullptr) throw std::bad_alloc();
    end->name = av_strdup(name);
    end->filter_ctx = filter;
    return end;
  };
  // Seen from the filters between, whose input is the source's output.
  AVFilterInOut *inputs = endOf("out", sink_), *outputs = endOf("in", source_);
  code = library_.avfilter_graph_parse_ptr(graph_, kFilters, &inputs, &outputs, nullptr);
  library_.avfilter_inout_free(&inputs);
  library_.avfilter_inout_free(&outputs);
  return code < 0 ? code : library_.avfilter_graph_config(graph_, nullptr);
}

int PaletteFilter::Put(AVFrame* frame) { return library_.av_buffersrc_add_frame(source_, frame); }

int PaletteFilter::Get(AVFrame& frame) {
  const int code = library_.av_buffersink_get_frame(sink_, &frame);
  if (code < 0) return code;
  frame.pts = av_rescale_q(frame.pts, library_.av_buffersink_get_time_base(sink_), frameTime_);
  frame.pict_type = AV_PICTURE_TYPE_NONE;
  return code;
}

}  // namespace kelto::host
