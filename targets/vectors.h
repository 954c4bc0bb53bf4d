// The vector code's side of the choice of instruction set. Builds without vectors have
// vectors_none.cc, where nothing is available.
#pragma once

#include <cstdint>
#include <vector>

#include "targets/target.h"

namespace kelto::vectors {

/// Slowest first; empty where no vector code runs.
std::vector<Target> Available();

/// Makes every dispatched function run on `target`, which is available.
void Choose(Target target);

/// What dispatched functions run on; Scalar where nothing is available.
Target Running();

/// The target of Highway's own number; Scalar for others than those of Target.
Target Named(int64_t highwayTarget);

}  // namespace kelto::vectors
