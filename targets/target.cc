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
    case Target::Sse4:
      return "sse4";
    case Target::Avx2:
      return "avx2";
    case Target::Avx512:
      return "avx512";
    case Target::Avx512Vnni:
      return "avx512vnni";
    case Target::Scalar:
      break;
  }
  return "scalar";
}

std::vector<Target> AvailableTargets() {
  std::vector<Target> targets = vectors::Available();
  targets.insert(targets.begin(), Target::Scalar);
  return targets;
}

void SetTarget(Target target) {
  const std::vector<Target> targets = AvailableTargets();
  if (std::find(targets.begin(), targets.end(), target) == targets.end()) {
    throw std::invalid_argument("no engine for " + std::string(TargetName(target)) +
                                " on this machine");
  }
  g_scalar = target == Target::Scalar;
  if (!g_scalar) vectors::Choose(target);
}

Target CurrentTarget() { return g_scalar ? Target::Scalar : vectors::Running(); }

}  // namespace kelto
