#include "host/options/number.h"

#include <charconv>
#include <cmath>

namespace kelto::host {
namespace {

template <typename Number>
std::optional<Number> ParseAll(std::string_view text) {
  Number number{};
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  if (result.ec != std::errc{} || result.ptr != end) return std::nullopt;
  return number;
}

}  // namespace

std::optional<double> ParseNumber(std::string_view text) {
  const auto number = ParseAll<double>(text);
  // from_chars also reads "inf" and "nan".
  return number && std::isfinite(*number) ? number : std::nullopt;
}

std::optional<int64_t> ParseWhole(std::string_view text) { return ParseAll<int64_t>(text); }

std::string NumberText(double number) {
  char text[32];
  return {text, std::to_chars(text, text + sizeof text, number).ptr};
}

}  // namespace kelto::host
