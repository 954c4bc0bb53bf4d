#include "runtime/stills/turned_name.h"

#include <filesystem>
#include <string_view>
#include <system_error>

namespace kelto::stills {
namespace {

constexpr std::string_view kMark = "?turned=";
constexpr const char* kDegrees[] = {"0", "90", "180", "270"};

/// The orientation after a quarter of a turn, clockwise, of EXIF's eight; the first is unused.
constexpr int kNext[] = {1, 6, 7, 8, 5, 2, 3, 4, 1};

}  // namespace

TurnedName SplitTurnedName(const std::string& name) {
  const size_t mark = name.rfind(kMark);
  if (mark == std::string::npos || mark == 0) return {name};
  for (int quarters = 1; quarters < 4; ++quarters) {
    if (name.substr(mark + kMark.size()) != kDegrees[quarters]) continue;
    std::error_code error;
    if (std::filesystem::exists(name, error)) return {name};
    return {name.substr(0, mark), quarters};
  }
  return {name};
}

std::string NameTurnedBy(const std::string& path, int32_t degrees) {
  const int quarters = degrees / 90 % 4;
  return quarters == 0 ? path : path + std::string(kMark) + kDegrees[quarters];
}

void Turn(StillInfo& info, int quarters) {
  constexpr int kLastInPlace = 2;
  const bool wasInPlace = info.orientation <= kLastInPlace;
  for (int i = 0; i < quarters; ++i) info.orientation = kNext[info.orientation];
  if (wasInPlace && info.orientation > kLastInPlace) info.scratch += info.pixels() * 4;
}

}  // namespace kelto::stills
