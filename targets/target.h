// Which instruction set the engine's pixel loops run on.
#pragma once

#include <string_view>
#include <vector>

namespace kelto {

/// Scalar is the straightforward engine; the others run the vector one.
enum class Target { kScalar, kSse4, kAvx2, kAvx512, kAvx512Vnni };

std::string_view TargetName(Target target);

/// The targets that are built in and that this processor has, Scalar first and the fastest last.
std::vector<Target> AvailableTargets();

/// Makes every later call run on `target`: for tests and measurements, which must not draw in other
/// threads meanwhile. The fastest one runs until then. Throws std::invalid_argument for a target
/// that is not available.
void SetTarget(Target target);

/// The target that calls run on, as the code that they reach names itself.
Target CurrentTarget();

}  // namespace kelto
