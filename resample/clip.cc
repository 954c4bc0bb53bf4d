#include <cmath>

#include "resample/resample.h"

namespace kelto {
namespace {

/// One axis of a job: rectangle ends of source and destination, and what the cut leaves of a pixel.
struct AxisEnds {
  float& sourceFirst;
  float& sourceLast;
  float& destFirst;
  float& destLast;
  float& firstCoverage;
  float& lastCoverage;
};

float FractionOf(float value) { return value - std::floor(value); }

/// Moves each side that reaches past the frame onto the source pixel that the frame's edge cuts.
/// The source pixel is kept whole, so the destination ends up to one source pixel further out on
/// the first side, and further in on the last.
void ClipAxis(const AxisEnds& axis, int32_t frameSize) {
  const float size = static_cast<float>(frameSize);
  const float destPerSource =
      (1.0f + axis.destLast - axis.destFirst) / (1.0f + axis.sourceLast - axis.sourceFirst);
  axis.firstCoverage = 0.0f;
  axis.lastCoverage = 1.0f;
  if (axis.destFirst < 0.5f) {
    const float cut = axis.sourceFirst + (0.5f - axis.destFirst) / destPerSource;
    axis.firstCoverage = FractionOf(cut - 0.5f);
    axis.destFirst = 0.5f - axis.firstCoverage * destPerSource;
    axis.sourceFirst = std::floor(cut - 0.5f) + 0.5f;
  }
  if (axis.destLast > size - 0.5f) {
    const float cut = axis.sourceLast - (axis.destLast + 0.5f - size) / destPerSource;
    axis.lastCoverage = FractionOf(cut - 0.5f);
    axis.destLast = size - 0.5f - axis.lastCoverage * destPerSource;
    axis.sourceLast = std::floor(cut - 0.5f) + 0.5f;
  }
}

/// False for rectangles of one pixel, too, and when any side is not a number.
bool HasExtent(const RectF& rect) { return rect.right > rect.left && rect.bottom > rect.top; }

}  // namespace

bool ClipJob(ResampleJob& job) {
  RectF& source = job.sourceRect;
  RectF& dest = job.destRect;
  RectF& coverage = job.coverage;
  ClipAxis({source.left, source.right, dest.left, dest.right, coverage.left, coverage.right},
           job.dest.width);
  ClipAxis({source.top, source.bottom, dest.top, dest.bottom, coverage.top, coverage.bottom},
           job.dest.height);
  return HasExtent(dest) && HasExtent(source);
}

}  // namespace kelto
