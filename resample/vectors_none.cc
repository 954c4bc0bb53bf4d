// Engines built without vectors: what would run on their targets is never reached.
#include <stdexcept>

#include "resample/filtered_fixed.h"
#include "resample/nearest_pixels.h"

namespace kelto {

Target DrawFilteredFixed(const FilteredPlan&, const FixedFilters&) {
  throw std::logic_error("this engine is built without vectors");
}

Target NearestPixelsVectors(const uint8_t* sourceRow, const int32_t* columns, size_t count,
                            const TakenBytes& taken, uint8_t* to) {
  return NearestPixelsScalar(sourceRow, columns, count, taken, to);
}

}  // namespace kelto
