#include "deep/plan.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "resample/filtered.h"
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
  Picture shown = ClipJob(geometry) ? FramePicture(geometry) : Picture{};
  if (shown.Empty() || target.pixels == nullptr) return plan;
  const Canvas canvas = MakeCanvas(geometry, PixelFormat::FourByte, true);
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
  shown.columns.span.pixels = columns;
  shown.rows.span.pixels = {canvas.FrameRow(rows.first), canvas.FrameRow(rows.end - 1) + 1};
  FilteredPlan tables = PlanFiltered(geometry, canvas, *filter, shown);
  plan.columnWeights = std::move(tables.columnWeights);
  plan.rowWeights = std::move(tables.rowWeights);
  plan.columnCoverage = std::move(tables.columnCoverage);
  plan.rowCoverage = std::move(tables.rowCoverage);
  return plan;
}

}  // namespace kelto
