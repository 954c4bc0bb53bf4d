#include "resample/filtered.h"

namespace kelto {

FilteredPlan PlanFiltered(const ResampleJob& job, const Canvas& canvas, const FilterSpec& filter,
                          const Picture& picture) {
  FilteredPlan plan;
  plan.source = job.source;
  plan.canvas = canvas;
  plan.chroma = job.chroma;
  plan.columns = picture.columns.span.pixels;
  plan.rows = canvas.BufferRows(picture.rows.span.pixels);
  if (plan.columns.Empty() || plan.rows.Empty()) return plan;

  const TapRange common = CommonTapRange(AxisTapRange(filter, picture.columns.map.scale),
                                         AxisTapRange(filter, picture.rows.map.scale));
  plan.columnWeights =
      BuildWeightTable(MakeAxisFilter(filter, picture.columns, common), plan.columns.first,
                       plan.columns.end - plan.columns.first, 1);
  plan.rowWeights = BuildWeightTable(MakeAxisFilter(filter, picture.rows, common),
                                     canvas.FrameRow(plan.rows.first),
                                     plan.rows.end - plan.rows.first, canvas.frameRowStep);
  for (int32_t column = plan.columns.first; column < plan.columns.end; ++column) {
    plan.columnCoverage.push_back(picture.columns.span.Coverage(column));
  }
  for (int32_t row = plan.rows.first; row < plan.rows.end; ++row) {
    plan.rowCoverage.push_back(picture.rows.span.Coverage(canvas.FrameRow(row)));
  }
  return plan;
}

}  // namespace kelto
