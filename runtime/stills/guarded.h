// Calls into C libraries whose error handlers leave by longjmp.
#pragma once

#include <csetjmp>

namespace kelto::stills {

/// Runs `body` and returns true, or false when it was left by a longjmp to `jump`. The body, and
/// what it calls around the library, hold no objects with destructors while the library runs:
/// a jump would skip them. Whatever they use lives outside and is passed by reference.
template <typename Body>
bool RunGuarded(std::jmp_buf& jump, const Body& body) {
  if (setjmp(jump) != 0) return false;
  body();
  return true;
}

}  // namespace kelto::stills
