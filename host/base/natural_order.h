// The order in which people number things: "IMG_2" before "IMG_10".
#pragma once

#include <string_view>

namespace kelto::host {

/// Whether `a` comes before `b`: runs of digits are compared by the numbers that they are, all else
/// byte by byte. Texts that differ in leading zeros alone are in the order of their bytes, so that
/// only equal texts have no order.
bool NaturallyBefore(std::string_view a, std::string_view b);

}  // namespace kelto::host
