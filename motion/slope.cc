#include "motion/slope.h"

namespace kelto::motion {

double MeanSlope(double before, double in, double after, double out) {
  if (in * out <= 0.0) return 0.0;
  const double first = 2 * after + before, second = after + 2 * before;
  return (first + second) / (first / in + second / out);
}

}  // namespace kelto::motion
