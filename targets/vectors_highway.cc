// The choice of instruction set by Highway.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "targets/vectors_highway.cc"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "targets/vectors.h"

HWY_BEFORE_NAMESPACE();
namespace kelto::HWY_NAMESPACE {

int64_t ThisTarget() { return HWY_TARGET; }

}  // namespace kelto::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kelto::vectors {
namespace {

struct Known {
  int64_t bit;
  Target target;
};

/// Slowest first. Others that Highway can compile, its emulation for one, are slower than the
/// scalar engine or no faster than one of these.
constexpr Known kKnown[] = {{HWY_SSE4, Target::kSse4},
                            {HWY_AVX2, Target::kAvx2},
                            {HWY_AVX3, Target::kAvx512},
                            {HWY_AVX3_DL, Target::kAvx512Vnni}};

}  // namespace

HWY_EXPORT(ThisTarget);

std::vector<Target> Available() {
  const int64_t supported = hwy::SupportedTargets() & HWY_TARGETS;
  std::vector<Target> targets;
  for (const Known& known : kKnown) {
    if (supported & known.bit) targets.push_back(known.target);
  }
  return targets;
}

void Choose(Target target) {
  for (const Known& known : kKnown) {
    if (known.target == target) hwy::GetChosenTarget().Update(known.bit);
  }
}

Target Running() { return Named(HWY_DYNAMIC_DISPATCH(ThisTarget)()); }

Target Named(int64_t highwayTarget) {
  for (const Known& known : kKnown) {
    if (known.bit == highwayTarget) return known.target;
  }
  return Target::kScalar;
}

}  // namespace kelto::vectors
#endif
