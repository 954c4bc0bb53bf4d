// The filtered path: two passes over weight tables, the first along the rows.
#pragma once

#include "resample/canvas.h"
#include "resample/filters.h"
#include "resample/geometry.h"
#include "resample/job.h"
#include "resample/weights.h"
#include "targets/target.h"

namespace kelto {

/// Everything that the passes read, worked out beforehand: they only multiply, add and store.
struct FilteredPlan {
  PixelBlock source;
  Canvas canvas;
  ChromaBytes chroma;
  Range columns;                      ///< destination columns that the picture touches
  Range rows;                         ///< buffer rows that it touches
  WeightTable columnWeights;          ///< one entry per column of `columns`
  WeightTable rowWeights;             ///< one entry per row of `rows`
  std::vector<float> columnCoverage;  ///< per column of `columns`, above 0 up to 1
  std::vector<float> rowCoverage;     ///< per row of `rows`
};

/// The plan that draws `picture` with `filter` onto `canvas`, which holds the rows of `job.dest`.
/// The job gives the source (at least one pixel each way) and the bytes that a 4:2:2 canvas takes
/// its chroma from, 0 .. 3; its rectangles are not looked at, since `picture` is what became of
/// them. Without a row or column to draw the tables stay empty.
FilteredPlan PlanFiltered(const ResampleJob& job, const Canvas& canvas, const FilterSpec& filter,
                          const Picture& picture);

/// Draws a plan. Pixels that the picture covers in part are mixed with what the canvas holds there.
/// On the current target: in vectors where fixed point is exact enough, else as
/// DrawFilteredScalar. Returns the target whose code drew it.
Target DrawFiltered(const FilteredPlan& plan);

/// The straightforward form of the arithmetic, which any faster one is held against. Memory: the
/// intermediate rows that one destination row needs, never more than the source has.
void DrawFilteredScalar(const FilteredPlan& plan);

}  // namespace kelto
