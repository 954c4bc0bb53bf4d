// The destination buffer of a call: which rows it holds and how its pixels are laid out.
#pragma once

#include <algorithm>

#include "resample/job.h"

namespace kelto {

/// kPacked422: two bytes a pixel, luma and the chroma sample that the column's parity selects.
enum class PixelFormat { kPacked422, kFourByte };

/// Half-open range of rows or columns.
struct Range {
  int32_t first = 0, end = 0;
  bool Empty() const { return first >= end; }
};

/// A whole frame, or the field of one parity: then only every second frame row has a buffer row.
struct Canvas {
  uint8_t* pixels = nullptr;
  int32_t width = 0;
  int32_t rows = 0;  ///< rows that the buffer holds
  ptrdiff_t rowBytes = 0;
  PixelFormat format = PixelFormat::kPacked422;
  int32_t firstFrameRow = 0;  ///< the frame row of buffer row 0
  int32_t frameRowStep = 1;   ///< from a buffer row's frame row to the next one's

  bool Empty() const { return pixels == nullptr || width <= 0 || rows <= 0; }
  uint8_t* Row(int32_t row) const { return pixels + row * rowBytes; }
  int32_t FrameRow(int32_t row) const { return firstFrameRow + row * frameRowStep; }

  /// The buffer rows whose frame rows lie in `frameRows`, which starts at 0 or later.
  Range BufferRows(Range frameRows) const {
    const auto rowsBefore = [this](int32_t frameRow) {
      const int32_t past = std::max(frameRow - firstFrameRow, 0);
      return std::min(past / frameRowStep + (past % frameRowStep != 0), rows);
    };
    return {rowsBefore(frameRows.first), rowsBefore(frameRows.end)};
  }
};

/// The rows of a job's destination. `alternating`: in field modes 0 and 1, buffer rows stand for
/// every second frame row; otherwise for successive ones from the frame's top, never more of them
/// than the field's buffer holds.
inline Canvas MakeCanvas(const ResampleJob& job, PixelFormat format, bool alternating) {
  const bool field = job.fieldRows == kEvenRows || job.fieldRows == kOddRows;
  Canvas canvas;
  canvas.pixels = job.dest.pixels;
  canvas.width = job.dest.width;
  canvas.rows = field ? job.dest.height / 2 : job.dest.height;
  canvas.rowBytes = job.dest.rowBytes;
  canvas.format = format;
  if (field && alternating) {
    canvas.firstFrameRow = job.fieldRows;
    canvas.frameRowStep = 2;
  }
  return canvas;
}

}  // namespace kelto
