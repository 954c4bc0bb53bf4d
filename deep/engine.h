// The resampling engine for deep pictures: a picture in, a view in, a frame out.
//
// It shows what the 8-bit engine (resample/resample.h) would show of the same rectangles: the same
// kernels over the same pixels, the same edges, fields and partly covered pixels. What it adds is
// transparency, and kernels that are not cut short. No file of the effect is needed, and nothing is
// kept between calls; calls in several threads do not disturb each other.
//
//   kelto::DeepPicture picture(6000, 4000, kelto::DeepSample::kUnsigned16, true);
//   ...                                                  // fill picture.view()
//   kelto::DeepPicture frame(1920, 1080, kelto::DeepSample::kUnsigned16, true);
//   kelto::DeepJob job;
//   job.frame = {1920, 1080};
//   const kelto::FrameRects rects = kelto::ComputeFrameRects(
//       {{1920, 1080}, 0, 16.0 / 9.0}, {picture.width(), picture.height()}, {1.5, 0.1, 0.0});
//   job.sourceRect = rects.source;
//   job.targetRect = rects.target;
//   kelto::RenderDeep(job, std::as_const(picture).view(), frame.view());
#pragma once

#include <array>

#include "deep/picture.h"
#include "framing/pixel_size.h"
#include "framing/rect.h"
#include "resample/job.h"

namespace kelto {

/// Draws `sourceRect` of a picture scaled into `targetRect` of a frame. Both are as framing/ gives
/// them (ComputeFrameRects), in pixels of the picture and of the frame; those that make no sense
/// show the background alone.
struct DeepJob {
  RectF sourceRect, targetRect;
  /// The whole frame, progressive or of two fields, whatever part of it the target holds.
  PixelSize frame;
  /// Where the target's first pixel lies: a column of the frame, and a row of the frame or, when
  /// `fieldRows` names a field, of that field. A frame drawn in parts of any size is to the bit the
  /// one that is drawn at once.
  int32_t left = 0, top = 0;
  int32_t fieldRows = kAllRows;        ///< FieldRows
  int32_t filterMode = kFilterHiQual;  ///< FilterMode; others mean kFilterRealTime
  /// What shows where the picture does not, and through it where it is transparent: red, green,
  /// blue and alpha of 0 .. 1, colours multiplied by alpha.
  std::array<float, 4> background = {0.0f, 0.0f, 0.0f, 1.0f};
  /// Null pixels: none. Else shows instead of `background`, as far as it reaches: its first pixel
  /// lies where the target's does. It may be the target itself, of the same rows.
  DeepSource backdrop;
  /// Weighs every pixel that the kernel reaches. The 8-bit engine ends kernels at whole pixels,
  /// where they may not have come to 0 yet, so that slow pans tremble by thousandths of a pixel,
  /// which 8 bits hide. False: the 8-bit engine's weights, for frames that must be like its own.
  bool wholeKernels = true;
  /// Filters and mixes in linear light: samples are taken for sRGB's (IEC 61966-2-1), continued
  /// beyond 0 .. 1, and written so. For pictures that are linear as they are, leave it false.
  bool linearLight = false;
};

/// Draws a job into `target`, all of which is written. Picture, backdrop and target may differ in
/// depth. A picture without pixels is not drawn.
///
/// Samples of 16 bits are rounded to nearest; what negative lobes make of them is clamped, alpha to
/// 0 .. 65535 and colours to 0 .. alpha. In floats colours stay as they come and alpha is clamped
/// to 0 .. 1; where it was above, colours are divided by it, and where it was below, those below 0
/// become 0, so that edges get no fringe. Opaque pictures are only clamped when 16 bits are
/// written.
///
/// Throws std::invalid_argument, in one line, for views that make no sense: a side below 0 or a row
/// that overlaps the next; and std::bad_alloc when memory runs out, after which the target's
/// contents are not defined. The picture must not overlap the target.
///
/// Memory: some half a MiB of rows on their way, more where a pixel is made of very many rows, and
/// the tables of weights. Samples that are not finite make the pixels near them not finite either,
/// and 0 in 16 bits.
void RenderDeep(const DeepJob& job, const DeepSource& picture, const DeepTarget& target);

}  // namespace kelto
