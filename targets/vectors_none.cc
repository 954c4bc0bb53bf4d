// Builds without vectors: no target but the scalar one is available.
#include "targets/vectors.h"

namespace kelto::vectors {

std::vector<Target> Available() { return {}; }

void Choose(Target) {}

Target Running() { return Target::kScalar; }

Target Named(int64_t) { return Target::kScalar; }

}  // namespace kelto::vectors
