// Where a job's picture lands: per axis, how destination pixels map to source samples and which of
// them the picture covers. Computed once per call and shared by every way of drawing.
#pragma once

#include "resample/canvas.h"
#include "resample/job.h"

namespace kelto {

/// Sampling positions along one axis.
struct AxisMap {
  float sourceStart = 0.0f;  ///< the position sampled by ...
  float destStart = 0.0f;    ///< ... the destination pixel whose centre is here
  float scale = 1.0f;        ///< source pixels per destination pixel, > 0

  float At(int32_t pixel) const {
    return sourceStart + (static_cast<float>(pixel) + 0.5f - destStart) * scale;
  }
};

/// The samples that filter taps may name along one axis: `last + 1` of them from source pixel
/// `base` on, mirrored at both ends. Those past the image repeat its edge pixel.
struct SampleRange {
  int64_t base = 0;
  int64_t last = 0;
  int32_t imageSize = 0;  ///< pixels of the image along this axis, at least 1

  /// The image pixel that a tap on sample `base + offset` reads, in 0 .. imageSize - 1.
  int32_t ImagePixel(int64_t offset) const;
};

/// `index` reflected at 0 and at `last` until it lies between them; 0 when there is one sample.
int64_t MirrorIndex(int64_t index, int64_t last);

/// Destination pixels that the picture touches along one axis, and how far.
struct PictureSpan {
  Range pixels;
  double from = 0.0, to = 0.0;  ///< edge coordinates: pixel n reaches from n to n + 1

  /// The part of a pixel of the span that the picture covers, in 0 .. 1.
  float Coverage(int32_t pixel) const;
  /// The pixels of the span that are covered whole.
  Range Whole() const;
  /// The pixels of the span whose centres are covered.
  Range Centres() const;
};

/// All that drawing needs to know of one axis, columns or rows. Lengths are in frame pixels on the
/// destination's side, fields notwithstanding, and in image pixels on the source's.
struct PictureAxis {
  AxisMap map;          ///< from the pixels of `span` to sampling positions
  SampleRange samples;  ///< what taps around those positions may read
  PictureSpan span;     ///< empty: nothing of the picture shows
};

/// The picture in frame columns and rows.
struct Picture {
  PictureAxis columns, rows;
  bool Empty() const { return columns.span.pixels.Empty() || rows.span.pixels.Empty(); }
};

/// The picture of a job that ClipJob has clipped and found something to draw of. It ends where the
/// image does; a side cut by the frame reaches the frame's edge. Empty when the image has no pixels
/// or the rectangles make no sense.
Picture FramePicture(const ResampleJob& clipped);

/// The picture of a reduction: not clipped, filling its rectangle whatever the image's size; the
/// rectangle's first pixel samples the start of the source rectangle, at whatever fraction the
/// destination starts. Empty as for FramePicture, and when the source rectangle lies further from
/// the image than the image is large.
Picture ReductionPicture(const ResampleJob& job);

}  // namespace kelto
