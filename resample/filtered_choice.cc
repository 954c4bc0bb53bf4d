#include "resample/filtered_fixed.h"
#include "targets/target.h"

namespace kelto {

Target DrawFiltered(const FilteredPlan& plan) {
  if (plan.columns.Empty() || plan.rows.Empty()) return CurrentTarget();
  if (CurrentTarget() != Target::kScalar) {
    if (const auto filters = MakeFixedFilters(plan.columnWeights, plan.rowWeights)) {
      return DrawFilteredFixed(plan, *filters);
    }
  }
  DrawFilteredScalar(plan);
  return Target::kScalar;
}

}  // namespace kelto
