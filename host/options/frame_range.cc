#include "host/options/frame_range.h"

#include <string>

#include "host/base/error.h"
#include "host/options/number.h"

namespace kelto::host {
namespace {

constexpr std::string_view kDots = "..";

}  // namespace

bool IsFrameRange(std::string_view text) { return text.find(kDots) != text.npos; }

FrameRange ParseFrameRange(std::string_view text, int32_t frames) {
  const size_t dots = text.find(kDots);
  if (dots == text.npos) throw UsageError("write a part as A..B, such as 0..50");
  const auto first = ParseWhole(text.substr(0, dots));
  const auto end = ParseWhole(text.substr(dots + kDots.size()));
  if (!first || !end) throw UsageError("write a part as A..B, such as 0..50");
  if (*first < 0 || *end <= *first) {
    throw UsageError(
        "a part begins at 0 or later and ends before its second number, which has "
        "to be the greater one");
  }
  if (*end > frames) {
    throw UsageError("the film has " + std::to_string(frames) +
                     " frames; its last part ends in .." + std::to_string(frames));
  }
  return {static_cast<int32_t>(*first), static_cast<int32_t>(*end)};
}

}  // namespace kelto::host
