#include "host/base/natural_order.h"

#include <algorithm>
#include <cstddef>

namespace kelto::host {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// Takes the run of digits that `text` begins with, without leading zeros.
std::string_view TakeNumber(std::string_view& text) {
  const auto length =
      static_cast<size_t>(std::find_if_not(text.begin(), text.end(), &IsDigit) - text.begin());
  std::string_view number = text.substr(0, length);
  text.remove_prefix(length);
  number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
  return number;
}

}  // namespace

bool NaturallyBefore(std::string_view a, std::string_view b) {
  const std::string_view wholeA = a, wholeB = b;
  while (!a.empty() && !b.empty()) {
    if (IsDigit(a.front()) && IsDigit(b.front())) {
      const std::string_view numberA = TakeNumber(a), numberB = TakeNumber(b);
      if (numberA.size() != numberB.size()) return numberA.size() < numberB.size();
      if (numberA != numberB) return numberA < numberB;
      continue;
    }
    if (a.front() != b.front()) {
      return static_cast<unsigned char>(a.front()) < static_cast<unsigned char>(b.front());
    }
    a.remove_prefix(1);
    b.remove_prefix(1);
  }
  if (a.empty() != b.empty()) return a.empty();
  return wholeA < wholeB;
}

}  // namespace kelto::host
