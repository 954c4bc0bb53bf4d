// The best 256 colours of a film, and its frames in them.
#pragma once

#include <cstdint>

extern "C" {
#include <libavfilter/avfilter.h>
}

#include <memory>

#include "host/base/film_format.h"
#include "host/film/libav.h"

namespace kelto::host {

struct FilterLibrary;

/// Chooses the colours for all frames together, and dithers. FFmpeg's library of filters, which
/// brings some dozens of others along, is loaded when the first filter is made.
class PaletteFilter {
 public:
  /// Throws Error where the library is not installed.
  PaletteFilter(FrameSize size, AVRational frameTime);
  ~PaletteFilter();
  PaletteFilter(const PaletteFilter&) = delete;
  PaletteFilter& operator=(const PaletteFilter&) = delete;

  /// Takes a frame (AV_PIX_FMT_BGR0), or null after the last one; all stay in memory until then.
  /// The operations give FFmpeg's codes.
  int Put(AVFrame* frame);
  /// The next frame (AV_PIX_FMT_PAL8), in units of the frame time; none before the last was put.
  int Get(AVFrame& frame);

 private:
  int Open(FrameSize size);

  const FilterLibrary& library_;
  AVRational frameTime_;
  AVFilterGraph* graph_ = nullptr;
  AVFilterContext *source_ = nullptr, *sink_ = nullptr;  // the graph's
};

}  // namespace kelto::host
