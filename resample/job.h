// What one call of the resampling engine is given.
#pragma once

#include <cstddef>
#include <cstdint>

#include "framing/rect.h"

namespace kelto {

/// Four bytes a pixel in a source; the destination's bytes a pixel follow from the entry called.
struct PixelBlock {
  uint8_t* pixels = nullptr;
  int32_t width = 0;
  int32_t height = 0;
  ptrdiff_t rowBytes = 0;  ///< from a row to the row below it; may be negative
};

/// Which bytes of a four-byte source pixel hold the chroma that a 4:2:2 destination interleaves:
/// even columns take `even`, odd columns `odd`. The default is the order in memory.
struct ChromaBytes {
  int32_t even = 1;
  int32_t odd = 2;
};

/// Quality levels, in the order of the effect's filter list.
enum FilterMode : int32_t {
  kFilterRealTime = 0,
  kFilterTriangle = 1,
  kFilterQuadratic = 2,
  kFilterCubic = 3,
  kFilterCatmull = 4,
  kFilterGaussian = 5,
  kFilterHiQual = 6,
  kFilterUltraQual = 7,
};

/// Which rows of the frame a call computes. A field's rows go to consecutive destination rows.
enum FieldRows : int32_t { kEvenRows = 0, kOddRows = 1, kAllRows = 2 };

/// What shows where the picture does not cover the destination.
struct Background {
  uint8_t bytes[4] = {0, 0, 0, 0};
  /// 0: bytes R, G, B, converted for a 4:2:2 destination. 1: the four bytes as they stand.
  /// Others: bytes Y, Cb, unused, Cr, converted for an RGB destination.
  int32_t selector = 0;
  /// Non-null: rows of 4:2:2 video show instead of the colour.
  const uint8_t* videoRow0 = nullptr;
  ptrdiff_t videoRowBytes = 0;
  int32_t videoWidth = 0, videoHeight = 0;
};

/// Draws `sourceRect` of `source` scaled into `destRect` of `dest`.
struct ResampleJob {
  PixelBlock source;
  /// In field modes 0 and 1 the buffer holds the field's rows: `dest.height` is the frame's height
  /// (twice the field's, the space that `destRect` is given in), every second row of which exists.
  PixelBlock dest;
  RectF sourceRect;
  RectF destRect;
  /// Written by ClipJob: left and top hold the uncovered part of the first pixel (0 when uncut),
  /// right and bottom the covered part of the last (1 when uncut).
  RectF coverage;
  int32_t fieldRows = kAllRows;   ///< FieldRows
  int32_t interlaceSelector = 0;  ///< the host's field mode; read by the real-time path
  int32_t filterMode = kFilterRealTime;
  ChromaBytes chroma;
  Background background;
  int32_t layoutCode = 0;  ///< the host's pixel layout, carried for diagnostics
};

}  // namespace kelto
