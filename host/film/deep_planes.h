// Deep frames as an encoder takes them, by FFmpeg's libswscale.
#pragma once

#include <memory>

#include "host/base/film_format.h"

extern "C" {
#include <libavutil/frame.h>
}

struct SwsContext;

namespace kelto::host {

/// Fills frames of one size and of a format of luma and chroma, with alpha or without. Luma and
/// chroma are studio range with the film's matrix (see colour_matrix.h), chroma at the left of its
/// pixels, midway between rows. Formats of eight bits get dithered samples.
class DeepPlanes {
 public:
  /// Throws std::bad_alloc.
  DeepPlanes(FrameSize size, AVPixelFormat format);
  ~DeepPlanes();
  DeepPlanes(const DeepPlanes&) = delete;
  DeepPlanes& operator=(const DeepPlanes&) = delete;

  /// `frame` is in PixelLayout::kRgba16.
  void Fill(const FrameView& frame, const AVFrame& to);

 private:
  bool eightBits_;
  SwsContext* context_;
};

}  // namespace kelto::host
