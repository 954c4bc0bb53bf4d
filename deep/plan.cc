#include "deep/plan.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <utility>

#include "resample/realtime.h"
#include "resample/resample.h"

namespace kelto {
namespace {

void CheckRows(const DeepSource& view, const std::string& name) {
  if (view.pixels == nullptr) return;
  if (view.width < 0 || view.height < 0) {
    throw std::invalid_argument("the " + name + "'s sides must not be below 0");
  }
  const auto needed =
      static_cast<uint64_t>(view.width) * static_cast<uint64_t>(PixelBytes(view.sample));
  const auto row = static_cast<uint64_t>(std::abs(static_cast<int64_t>(view.rowBytes)));
  if (view.height > 1 && row < needed) {
    throw std::invalid_argument("the " + name + "'s rows overlap: rowBytes is " +
                                std::to_string(view.rowBytes) + ", a row of pixels takes " +
                                std::to_string(needed));
  }
}

/// The job in the 8-bit engine's terms, as far as geometry goes: no pixel of it is read.
ResampleJob GeometryJob(const DeepJob& job, const DeepSource& picture) {
  ResampleJob geometry;
  geometry.source = {static_cast<uint8_t*>(const_cast<void*>(picture.pixels)), picture.width,
                     picture.height, 0};
  geometry.dest.width = job.frame.width;
  geometry.dest.height = job.frame.height;
  geometry.sourceRect = job.sourceRect;
  geometry.destRect = job.targetRect;
  geometry.fieldRows = job.fieldRows;
  return geometry;
}

/// `range` of the frame, cut to what a window of `count` from `first` on holds.
Range Windowed(Range range, int32_t first, int32_t count) {
  const int64_t end = int64_t{first} + count;
  return {std::max(range.first, first),
          static_cast<int32_t>(std::min<int64_t>(range.end, std::max<int64_t>(end, 0)))};
}

/// How columns and rows are filtered.
std::pair<AxisFilter, AxisFilter> AxisFilters(const FilterSpec& filter, const Picture& shown,
                                              bool wholeKernels) {
  const float alongScale = shown.columns.map.scale, downScale = shown.rows.map.scale;
  if (!wholeKernels) {
    const TapRange common =
        CommonTapRange(AxisTapRange(filter, alongScale), AxisTapRange(filter, downScale));
    return {MakeAxisFilter(filter, shown.columns, common),
            MakeAxisFilter(filter, shown.rows, common)};
  }
  FilterSpec whole = filter;
  whole.end = filter.hi;
  return {{whole, shown.columns.map, shown.columns.samples, WholeKernelTaps(whole, alongScale)},
          {whole, shown.rows.map, shown.rows.samples, WholeKernelTaps(whole, downScale)}};
}

}  // namespace

DeepPlan PlanDeep(const DeepJob& job, const DeepSource& picture, const DeepTarget& target) {
  CheckRows(picture, "picture");
  CheckRows(job.backdrop, "backdrop");
  CheckRows(target, "target");
  DeepPlan plan;
  plan.picture = picture;
  plan.backdrop = job.backdrop;
  plan.target = target;
  plan.linearLight = job.linearLight;
  std::copy(job.background.begin(), job.background.end(), plan.background.begin());

  ResampleJob geometry = GeometryJob(job, picture);
  const Picture shown = ClipJob(geometry) ? FramePicture(geometry) : Picture{};
  if (shown.Empty() || target.pixels == nullptr) return plan;
  const Canvas canvas = MakeCanvas(geometry, PixelFormat::kFourByte, true);
  const FilterSpec* const filter = FrameFilter(job.filterMode);
  const Range wholeColumns = filter ? shown.columns.span.pixels : shown.columns.span.Centres();
  const Range wholeRows =
      canvas.BufferRows(filter ? shown.rows.span.pixels : shown.rows.span.Centres());
  const Range columns = Windowed(wholeColumns, job.left, target.width);
  const Range rows = Windowed(wholeRows, job.top, target.height);
  if (columns.Empty() || rows.Empty()) return plan;
  plan.columns = {columns.first - job.left, columns.end - job.left};
  plan.rows = {rows.first - job.top, rows.end - job.top};

  if (!filter) {
    plan.nearest = true;
    // Stepped through from the picture's first column, so that parts fit each other.
    const std::vector<int32_t> all = NearestColumns(shown.columns.map, wholeColumns, picture.width);
    plan.nearestColumns.assign(all.begin() + (columns.first - wholeColumns.first),
                               all.begin() + (columns.end - wholeColumns.first));
    for (int32_t row = rows.first; row < rows.end; ++row) {
      plan.nearestRows.push_back(NearestRow(shown.rows.map, canvas.FrameRow(row), picture.height));
    }
    return plan;
  }
  const auto [along, down] = AxisFilters(*filter, shown, job.wholeKernels);
  plan.columnWeights = BuildWeightTable(along, columns.first, columns.end - columns.first, 1);
  plan.rowWeights = BuildWeightTable(down, canvas.FrameRow(rows.first), rows.end - rows.first,
                                     canvas.frameRowStep);
  for (int32_t column = columns.first; column < columns.end; ++column) {
    plan.columnCoverage.push_back(shown.columns.span.Coverage(column));
  }
  for (int32_t row = rows.first; row < rows.end; ++row) {
    plan.rowCoverage.push_back(shown.rows.span.Coverage(canvas.FrameRow(row)));
  }
  return plan;
}

}  // namespace kelto
