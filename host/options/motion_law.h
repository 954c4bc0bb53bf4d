// Motion laws: how a film goes from one view to the next.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kelto::host {

enum class MotionLaw {
  kLinear,  ///< as the effect makes of its keys: zoom and centre evenly, each by itself
  kSteady,  ///< the zoom at an even rate, the centre with it
  kFly,     ///< drawing back between views that lie apart
};

/// The words of the laws, in their order.
std::vector<std::string> MotionWords();

/// Reads "linear", "steady" or "fly". Throws UsageError.
MotionLaw ParseMotionLaw(std::string_view text);

/// The word that is read as `law`.
std::string WordOf(MotionLaw law);

}  // namespace kelto::host
