#include "targets/target.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "targets/vectors.h"

namespace kelto {
namespace {

bool g_scalar = false;

}  // namespace

std::string_view TargetName(Target target) {
  switch (target) {
    case Target::kSse4:
      return "sse4";
    case Target::kAvx2:
      return "avx2";
    case Target::kAvx512:
      return "avx512";
    case Target::kAvx512Vnni:
      return "avx512vnni";
    case Target::kScalar:
      break;
  }
  return "scalar";
}

std::vector<Target> AvailableTargets() {
  std::vector<Target> targets = vectors::Available();
  targets.insert(targets.begin(), Target::kScalar);
  return targets;
}

void SetTarget(Target target) {
  const std::vector<Target> targets = AvailableTargets();
  if (std::find(targets.begin(), targets.end(), target) == targets.end()) {
    throw std::invalid_argument("no engine for " + std::string(TargetName(target)) +
                                " on this machine");
  }
  g_scalar = target == Target::kScalar;
  if (!g_scalar) vectors::Choose(target);
}

Target CurrentTarget() { return g_scalar ? Target::kScalar : vectors::Running(); }

}  // namespace kelto
