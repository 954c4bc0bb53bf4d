// Engines built without vectors: what would run on their targets is never reached.
#include <stdexcept>

#include "deep/plan.h"

namespace kelto {

Target DrawDeepVectors(const DeepPlan&) {
  throw std::logic_error("this engine is built without vectors");
}

}  // namespace kelto
