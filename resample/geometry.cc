#include "resample/geometry.h"

#include <cmath>
#include <limits>

namespace kelto {
namespace {

/// Covering less of a pixel than this cannot change a byte of it.
constexpr double kNegligible = 1.0 / 1024.0;

/// Positions further out than this are nowhere near an image, and still fit every integer here.
constexpr float kFarthest = 1099511627776.0f;  // 2^40

bool IsNear(float position) { return std::abs(position) < kFarthest; }

/// A pixel coordinate rounded down; `limit` bounds what may be too large for an integer.
int32_t FloorWithin(double coordinate, int32_t limit) {
  return static_cast<int32_t>(std::floor(std::clamp(coordinate, 0.0, static_cast<double>(limit))));
}

struct AxisJob {
  float sourceFirst, sourceLast;
  float destFirst, destLast;
  int32_t imageSize;
  int32_t frameSize;
};

AxisJob Columns(const ResampleJob& job) {
  return {job.sourceRect.left, job.sourceRect.right, job.destRect.left,
          job.destRect.right,  job.source.width,     job.dest.width};
}

AxisJob Rows(const ResampleJob& job) {
  return {job.sourceRect.top,  job.sourceRect.bottom, job.destRect.top,
          job.destRect.bottom, job.source.height,     job.dest.height};
}

bool MakesSense(const AxisJob& axis) {
  return axis.imageSize > 0 && axis.frameSize > 0 && IsNear(axis.sourceFirst) &&
         IsNear(axis.sourceLast) && IsNear(axis.destFirst) && IsNear(axis.destLast) &&
         axis.sourceLast >= axis.sourceFirst && axis.destLast >= axis.destFirst;
}

/// No further than an image's size outside it. Reductions show no background, so that nothing else
/// would bound how many mirrored samples each of their pixels is made of.
bool StaysByImage(const AxisJob& axis) {
  const float size = static_cast<float>(axis.imageSize);
  return axis.sourceFirst >= -size && axis.sourceLast <= 2.0f * size;
}

/// Rectangles whose sizes agree but for the rounding of their coordinates are drawn at scale 1:
/// magnifying and minifying weigh taps differently, and a pan must not hop between the two.
AxisMap MapOf(const AxisJob& axis) {
  constexpr float kRoundings = 8.0f * std::numeric_limits<float>::epsilon();
  const float sourceSize = 1.0f + axis.sourceLast - axis.sourceFirst;
  const float destSize = 1.0f + axis.destLast - axis.destFirst;
  const float largest = std::max({std::abs(axis.sourceFirst), std::abs(axis.sourceLast), destSize});
  const bool sameSize = std::abs(sourceSize - destSize) <= kRoundings * largest;
  return {axis.sourceFirst, axis.destFirst, sameSize ? 1.0f : sourceSize / destSize};
}

/// Frame pixels of the destination rectangle. Where it starts or ends between pixels they are not
/// mixed with the background: only the image's own edges are.
PictureSpan DestinationSpan(const AxisJob& axis, bool cutAtEnd) {
  const double end = cutAtEnd ? axis.frameSize : std::floor(axis.destLast) + 1.0;
  const Range pixels = {FloorWithin(axis.destFirst, axis.frameSize),
                        FloorWithin(end, axis.frameSize)};
  return {pixels, static_cast<double>(pixels.first), static_cast<double>(pixels.end)};
}

/// The part of the destination rectangle that shows the image.
PictureSpan ImageSpan(const AxisJob& axis, const AxisMap& map, bool cutAtEnd) {
  PictureSpan span = DestinationSpan(axis, cutAtEnd);
  const double scale = map.scale;
  const double imageFrom = (axis.destFirst - 0.5) - (axis.sourceFirst - 0.5) / scale;
  span.from = std::max(span.from, imageFrom);
  span.to = std::min(span.to, imageFrom + axis.imageSize / scale);
  if (!(span.to - span.from > kNegligible)) return {};
  span.pixels.first = FloorWithin(span.from + kNegligible, axis.frameSize);
  span.pixels.end = FloorWithin(std::ceil(span.to - kNegligible), axis.frameSize);
  return span;
}

SampleRange WholeImage(int32_t size) { return {0, size - int64_t{1}, size}; }

/// Only the rectangle's own rows are filtered: taps mirror at its first and last one.
SampleRange RectangleRows(const AxisJob& rows) {
  const auto first = static_cast<int64_t>(std::floor(rows.sourceFirst));
  const auto last = static_cast<int64_t>(std::floor(rows.sourceLast));
  return {first, last - first, rows.imageSize};
}

/// Empties a span whose sampling positions are out of all bounds.
void KeepNear(PictureAxis& axis) {
  const Range pixels = axis.span.pixels;
  if (pixels.Empty() || !IsNear(axis.map.At(pixels.first)) ||
      !IsNear(axis.map.At(pixels.end - 1))) {
    axis.span = {};
  }
}

PictureAxis FrameAxis(const AxisJob& axis, const SampleRange& samples, bool cutAtEnd) {
  const AxisMap map = MapOf(axis);
  PictureAxis result = {map, samples, ImageSpan(axis, map, cutAtEnd)};
  KeepNear(result);
  return result;
}

PictureAxis ReductionAxis(const AxisJob& axis, const SampleRange& samples) {
  AxisMap map = MapOf(axis);
  map.destStart = std::floor(axis.destFirst) + 0.5f;
  PictureAxis result = {map, samples, DestinationSpan(axis, false)};
  KeepNear(result);
  return result;
}

}  // namespace

int64_t MirrorIndex(int64_t index, int64_t last) {
  if (last <= 0) return 0;
  const int64_t period = 2 * last;
  const int64_t folded = std::abs(index) % period;
  return folded > last ? period - folded : folded;
}

int32_t SampleRange::ImagePixel(int64_t offset) const {
  const int64_t pixel = base + MirrorIndex(offset, last);
  return static_cast<int32_t>(std::clamp<int64_t>(pixel, 0, imageSize - int64_t{1}));
}

float PictureSpan::Coverage(int32_t pixel) const {
  const double covered = std::min(to, pixel + 1.0) - std::max(from, static_cast<double>(pixel));
  if (covered > 1.0 - kNegligible) return 1.0f;
  return static_cast<float>(std::max(covered, 0.0));
}

Range PictureSpan::Whole() const {
  Range whole = pixels;
  if (!whole.Empty() && Coverage(whole.first) < 1.0f) ++whole.first;
  if (!whole.Empty() && Coverage(whole.end - 1) < 1.0f) --whole.end;
  return whole;
}

Range PictureSpan::Centres() const {
  Range centres = pixels;
  if (!centres.Empty() && centres.first + 0.5 < from) ++centres.first;
  if (!centres.Empty() && centres.end - 0.5 >= to) --centres.end;
  return centres;
}

Picture FramePicture(const ResampleJob& clipped) {
  const AxisJob columns = Columns(clipped);
  const AxisJob rows = Rows(clipped);
  if (clipped.source.pixels == nullptr || !MakesSense(columns) || !MakesSense(rows)) return {};
  return {FrameAxis(columns, WholeImage(columns.imageSize), clipped.coverage.right != 1.0f),
          FrameAxis(rows, RectangleRows(rows), clipped.coverage.bottom != 1.0f)};
}

Picture ReductionPicture(const ResampleJob& job) {
  const AxisJob columns = Columns(job);
  const AxisJob rows = Rows(job);
  if (job.source.pixels == nullptr || !MakesSense(columns) || !MakesSense(rows)) return {};
  if (!StaysByImage(columns) || !StaysByImage(rows)) return {};
  return {ReductionAxis(columns, WholeImage(columns.imageSize)),
          ReductionAxis(rows, RectangleRows(rows))};
}

}  // namespace kelto
