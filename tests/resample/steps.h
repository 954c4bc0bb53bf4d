// Arguments at which tests sample a kernel.
#pragma once

#include <vector>

namespace kelto::test {

/// first, first + step, ... while not beyond `last`.
inline std::vector<float> Steps(float first, float last, float step) {
  std::vector<float> values;
  for (int i = 0; first + static_cast<float>(i) * step <= last; ++i) {
    values.push_back(first + static_cast<float>(i) * step);
  }
  return values;
}

}  // namespace kelto::test
