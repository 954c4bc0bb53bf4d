#include "host/files/replaceable.h"

namespace kelto::host {

std::string WhyNotReplaceable(const std::filesystem::path&) { return ""; }

}  // namespace kelto::host
