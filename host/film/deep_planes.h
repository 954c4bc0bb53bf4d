// Deep frames as an encoder takes them, by FFmpeg's libswscale.
#pragma once

#include <memory>

#include "host/base/film_format.h"
#include "host/film/libav.h"

extern "C" {
#include <libavutil/frame.h>
}

struct SwsContext;

namespace kelto::host {

/// Fills frames of one size and of a format of luma and chroma, with alpha or without. Luma and
/// chroma are studio range with the film's matrix (see colour_matrix.h), chroma at the left of its
/// pixels, and midway between rows where there are half as many. Formats of eight bits get dithered
/// samples.
class DeepPlanes {
 public:
  /// Throws std::bad_alloc.
  DeepPlanes(FrameSize size, AVPixelFormat format);
  ~DeepPlanes();
  DeepPlanes(const DeepPlanes&) = delete;
  DeepPlanes& operator=(const DeepPlanes&) = delete;

  /// `frame` is in PixelLayout::kRgba16. Throws Error.
  void Fill(const FrameView& frame, AVFrame& to);

 private:
  bool eightBits_;
  Owned<AVFrame> straight_;  ///< as the library takes it, colours not multiplied by alpha
  SwsContext* context_ = nullptr;
};

}  // namespace kelto::host
