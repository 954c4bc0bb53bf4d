#include "host/video/orientation.h"

#include <cmath>

namespace kelto::host {

Orientation OrientationOf(const int32_t* displayMatrix) {
  const double a = displayMatrix[0], b = displayMatrix[1];
  const double c = displayMatrix[3], d = displayMatrix[4];
  if (std::abs(b) > std::abs(a)) return {true, c < 0.0, b < 0.0};
  return {false, a < 0.0, d < 0.0};
}

}  // namespace kelto::host
