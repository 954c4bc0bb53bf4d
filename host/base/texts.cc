#include "host/base/texts.h"

#include <charconv>

namespace kelto::host {

std::string FixedText(double value, int decimals) {
  char text[400];  // holds every double written out
  const auto end =
      std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals).ptr;
  std::string number(text, end);
  if (number.find_first_of("123456789") == std::string::npos && number[0] == '-')
    number.erase(0, 1);
  return number;
}

}  // namespace kelto::host
