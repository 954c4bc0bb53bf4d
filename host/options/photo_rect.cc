#include "host/options/photo_rect.h"

#include <array>
#include <cmath>

#include "host/base/error.h"
#include "host/options/number.h"

namespace kelto::host {
namespace {

/// No photo has a side as long.
constexpr double kFarthest = 1e6;

}  // namespace

bool IsPhotoRect(std::string_view text) {
  return text.find(',') != std::string_view::npos && text.find('@') == std::string_view::npos;
}

PhotoRect ParsePhotoRect(std::string_view text) {
  const auto bad = [] {
    return UsageError(
        "a part of the photo is X,Y,WIDTH,HEIGHT in its pixels, such as 1200,400,1920,1080");
  };
  std::array<double, 4> numbers{};
  for (size_t i = 0; i < numbers.size(); ++i) {
    const size_t comma = text.find(',');
    if ((comma == std::string_view::npos) != (i + 1 == numbers.size())) throw bad();
    const auto number = ParseNumber(text.substr(0, comma));
    if (!number || std::abs(*number) > kFarthest) throw bad();
    numbers[i] = *number;
    if (comma != std::string_view::npos) text.remove_prefix(comma + 1);
  }
  if (!(numbers[2] > 0.0) || !(numbers[3] > 0.0)) throw bad();
  return {numbers[0], numbers[1], numbers[2], numbers[3]};
}

}  // namespace kelto::host
