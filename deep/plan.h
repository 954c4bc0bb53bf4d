// What drawing a deep frame needs, worked out before any pixel is read.
#pragma once

#include <vector>

#include "deep/engine.h"
#include "deep/pixel.h"
#include "resample/weights.h"
#include "targets/target.h"

namespace kelto {

struct DeepPlan {
  DeepSource picture, backdrop;
  DeepTarget target;
  DeepPixel background = {};
  bool linearLight = false;
  Range columns, rows;  ///< of the target: those that the picture touches

  /// Filtered: tables and coverage with an entry for each of `columns` and `rows`.
  WeightTable columnWeights, rowWeights;
  std::vector<float> columnCoverage, rowCoverage;  ///< above 0 up to 1

  /// Nearest neighbour: the picture's column or row for each of `columns` and `rows`.
  bool nearest = false;
  std::vector<int32_t> nearestColumns, nearestRows;

  bool ShowsPicture() const { return !columns.Empty() && !rows.Empty(); }
  /// What lies behind the picture at a pixel of the target.
  DeepPixel Behind(int32_t x, int32_t y) const {
    const bool inside = backdrop.pixels != nullptr && x < backdrop.width && y < backdrop.height;
    return inside ? ReadPixel(backdrop, x, y) : background;
  }
};

/// The tables of the 8-bit engine for the same rectangles. Throws what RenderDeep throws.
DeepPlan PlanDeep(const DeepJob& job, const DeepSource& picture, const DeepTarget& target);

/// Draws a plan on the current target. Returns the target whose code filtered it.
Target DrawDeep(const DeepPlan& plan);

/// The picture's part of a plan, in the plainest form, which vectors are held against.
void DrawDeepPlain(const DeepPlan& plan);

/// The same in vectors, where the engine is built with them. Returns the target as the code that
/// drew names it.
Target DrawDeepVectors(const DeepPlan& plan);

/// The picture's part of a plan that takes nearest neighbours.
void DrawDeepNearest(const DeepPlan& plan);

}  // namespace kelto
