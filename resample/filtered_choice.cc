#include "resample/filtered_fixed.h"
#include "resample/target.h"

namespace kelto {

void DrawFiltered(const FilteredPlan& plan) {
  if (plan.columns.Empty() || plan.rows.Empty()) return;
  if (CurrentTarget() != Target::Scalar) {
    if (const auto filters = MakeFixedFilters(plan.columnWeights, plan.rowWeights)) {
      DrawFilteredFixed(plan, *filters);
      return;
    }
  }
  DrawFilteredScalar(plan);
}

}  // namespace kelto
