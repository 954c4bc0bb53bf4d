// Numbers as people type them, read without regard to the locale.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kelto::host {

/// A finite decimal number that takes up the whole text, such as "2", "-0.25" or "1e3".
std::optional<double> ParseNumber(std::string_view text);

/// An integer that takes up the whole text.
std::optional<int64_t> ParseWhole(std::string_view text);

/// The shortest text that ParseNumber reads as the same finite number.
std::string NumberText(double number);

}  // namespace kelto::host
