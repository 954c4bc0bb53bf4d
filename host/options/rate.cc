#include "host/options/rate.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <string>

#include "host/base/error.h"
#include "host/options/number.h"

namespace kelto::host {
namespace {

constexpr size_t kMaxDecimals = 6;
constexpr int64_t kMaxTerm = 1'000'000'000;

UsageError BadRate() {
  return UsageError(
      "a frame rate is a number or a fraction from 0.1 to 1000, such as 25, 29.97 or 30000/1001");
}

UsageError BadFrames() {
  return UsageError("a number of frames is an integer from 1 to " + std::to_string(kMaxFrames));
}

FrameRate Reduced(int64_t numerator, int64_t denominator) {
  if (numerator < 1 || denominator < 1 || numerator > kMaxTerm || denominator > kMaxTerm) {
    throw BadRate();
  }
  if (numerator * 10 < denominator || numerator > denominator * 1000) throw BadRate();
  const int64_t common = std::gcd(numerator, denominator);
  return {static_cast<int32_t>(numerator / common), static_cast<int32_t>(denominator / common)};
}

FrameRate ParseDecimal(std::string_view text, size_t point) {
  const std::string_view fraction = text.substr(point + 1);
  const auto value = ParseNumber(text);
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  if (!value || *value > 1000.0 || fraction.size() > kMaxDecimals ||
      !std::all_of(fraction.begin(), fraction.end(), isDigit)) {
    throw BadRate();
  }
  const double unit = std::pow(10.0, static_cast<double>(fraction.size()));
  if (fraction.size() >= 2) {
    // Rates of 1000/1001 times an integer are written cut to two or three decimals.
    for (const int64_t whole : {15, 24, 30, 48, 60, 120, 240}) {
      if (std::abs(*value - whole * 1000.0 / 1001.0) <= 0.5 / unit) {
        return Reduced(whole * 1000, 1001);
      }
    }
  }
  return Reduced(std::llround(*value * unit), std::llround(unit));
}

}  // namespace

FrameRate ParseRate(std::string_view text) {
  if (const size_t slash = text.find('/'); slash != std::string_view::npos) {
    const auto numerator = ParseWhole(text.substr(0, slash));
    const auto denominator = ParseWhole(text.substr(slash + 1));
    if (!numerator || !denominator) throw BadRate();
    return Reduced(*numerator, *denominator);
  }
  if (const size_t point = text.find('.'); point != std::string_view::npos) {
    return ParseDecimal(text, point);
  }
  const auto whole = ParseWhole(text);
  if (!whole) throw BadRate();
  return Reduced(*whole, 1);
}

int32_t ParseFrames(std::string_view text) {
  const auto frames = ParseWhole(text);
  if (!frames || *frames < 1 || *frames > kMaxFrames) throw BadFrames();
  return static_cast<int32_t>(*frames);
}

double ParseSeconds(std::string_view text) {
  const auto seconds = ParseNumber(text);
  if (!seconds || *seconds <= 0.0) {
    throw UsageError("a length is a number of seconds above 0, such as 5 or 2.5");
  }
  return *seconds;
}

int32_t FramesOf(double seconds, FrameRate rate) {
  const double frames = std::max(1.0, std::round(seconds * rate.PerSecond()));
  if (!(frames <= kMaxFrames)) {
    throw UsageError("a film has " + std::to_string(kMaxFrames) + " frames at the most");
  }
  return static_cast<int32_t>(frames);
}

}  // namespace kelto::host
