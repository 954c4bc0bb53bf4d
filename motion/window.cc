#include "motion/window.h"

#include <cmath>

namespace kelto::motion {

double PerceivedStep(double pan, double zoom) { return std::hypot(kRho * pan, zoom / kRho); }

Speed SpeedBetween(const Window& from, const Window& to, double seconds) {
  const double pan = std::hypot(to.x - from.x, to.y - from.y) / std::sqrt(from.width * to.width);
  const double growth = std::log(to.width / from.width);
  return {pan / seconds, -growth / std::log(2.0) / seconds, PerceivedStep(pan, growth) / seconds};
}

}  // namespace kelto::motion
