// How the library's own operations report failures.
#pragma once

#include <cstdint>

namespace kelto::ipl {

/// Sets the error status to `status`; outside silent mode also writes one line that names the
/// operation and what it met.
void Fail(int32_t status, const char* operation, const char* found);

}  // namespace kelto::ipl
