// Engines built without vectors: no target but the scalar one is available, and what would run on
// others is never reached.
#include <stdexcept>

#include "resample/filtered_fixed.h"
#include "resample/pick_pixels.h"
#include "resample/vectors.h"

namespace kelto {
namespace vectors {

std::vector<Target> Available() { return {}; }

void Choose(Target) {}

Target Running() { return Target::Scalar; }

Target Named(int64_t) { return Target::Scalar; }

}  // namespace vectors

Target DrawFilteredFixed(const FilteredPlan&, const FixedFilters&) {
  throw std::logic_error("this engine is built without vectors");
}

Target PickPixelsVectors(const uint8_t* sourceRow, const int32_t* columns, size_t count,
                         const PickedBytes& picked, uint8_t* to) {
  return PickPixelsScalar(sourceRow, columns, count, picked, to);
}

}  // namespace kelto
