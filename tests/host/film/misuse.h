// What a command line is told that asks for what a film cannot be.
#pragma once

#include <string>

#include "host/base/error.h"

namespace kelto::test {

/// The message with which `step` is refused, "none" where it is not.
template <typename Step>
std::string MisuseOf(Step step) {
  try {
    step();
  } catch (const host::UsageError& error) {
    return error.what();
  }
  return "none";
}

}  // namespace kelto::test
