#include "host/options/motion_law.h"

#include <algorithm>

#include "host/base/error.h"

namespace kelto::host {

std::vector<std::string> MotionWords() { return {"linear", "steady", "fly"}; }

MotionLaw ParseMotionLaw(std::string_view text) {
  const std::vector<std::string> words = MotionWords();
  const auto found = std::find(words.begin(), words.end(), text);
  if (found == words.end()) throw UsageError("choose one of linear, steady, fly");
  return static_cast<MotionLaw>(found - words.begin());
}

std::string WordOf(MotionLaw law) { return MotionWords()[static_cast<size_t>(law)]; }

}  // namespace kelto::host
