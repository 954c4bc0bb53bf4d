#include "host/project/display_aspect.h"

#include <cmath>
#include <cstdint>
#include <numeric>

#include "host/base/error.h"
#include "host/options/number.h"

namespace kelto::host {
namespace {

constexpr int64_t kMaxTerm = 65535;

UsageError BadAspect() {
  return UsageError(
      "a display aspect is WIDTH:HEIGHT or a number, such as 16:9, and asks for pixels at most "
      "65535 "
      "times as long one way as the other");
}

/// The fraction nearest to `value` among those that its continued fraction leads through, with
/// terms up to kMaxTerm.
SampleAspect Nearest(double value) {
  int64_t numerator = 1, denominator = 0, lastNumerator = 0, lastDenominator = 1;
  if (!(value > 0.0) || !std::isfinite(value)) throw BadAspect();
  for (double rest = value;;) {
    const double whole = std::floor(rest);
    if (whole > static_cast<double>(kMaxTerm)) break;
    const auto digit = static_cast<int64_t>(whole);
    const int64_t nextNumerator = digit * numerator + lastNumerator;
    const int64_t nextDenominator = digit * denominator + lastDenominator;
    if (nextNumerator > kMaxTerm || nextDenominator > kMaxTerm) break;
    lastNumerator = numerator;
    lastDenominator = denominator;
    numerator = nextNumerator;
    denominator = nextDenominator;
    if (rest == whole) break;
    rest = 1.0 / (rest - whole);
  }
  if (numerator < 1 || denominator < 1) throw BadAspect();
  return {static_cast<int32_t>(numerator), static_cast<int32_t>(denominator)};
}

}  // namespace

SampleAspect ParseDisplayAspect(std::string_view text, FrameSize size) {
  const size_t colon = text.find(':');
  const std::string_view first = text.substr(0, colon);
  const std::string_view second = colon == std::string_view::npos ? "1" : text.substr(colon + 1);
  const auto width = ParseNumber(first), height = ParseNumber(second);
  if (!width || !height || !(*width > 0.0) || !(*height > 0.0)) throw BadAspect();
  constexpr double kMaxWhole = 1e10;  // with a frame's side it still fits
  const auto wholeWidth = ParseWhole(first), wholeHeight = ParseWhole(second);
  if (wholeWidth && wholeHeight && *width <= kMaxWhole && *height <= kMaxWhole) {
    const int64_t across = *wholeWidth * size.height, down = *wholeHeight * size.width;
    const int64_t common = std::gcd(across, down);
    if (across / common <= kMaxTerm && down / common <= kMaxTerm) {
      return {static_cast<int32_t>(across / common), static_cast<int32_t>(down / common)};
    }
  }
  return Nearest(*width / *height * size.height / size.width);
}

std::string DisplayAspectText(const FilmFormat& format) {
  const int64_t across = int64_t{format.size.width} * format.sampleAspect.width;
  const int64_t down = int64_t{format.size.height} * format.sampleAspect.height;
  const int64_t common = std::gcd(across, down);
  return std::to_string(across / common) + ":" + std::to_string(down / common);
}

}  // namespace kelto::host
