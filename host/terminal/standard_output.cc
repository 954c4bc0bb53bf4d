#include "host/terminal/standard_output.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "host/base/error.h"

namespace kelto::host {

void PrintResult(const std::string& text) {
  const bool written =
      std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
  if (written) return;
  const int cause = errno;
  if (cause == EPIPE) throw ToldError();
  throw Error("standard output: cannot be written: " + std::generic_category().message(cause));
}

}  // namespace kelto::host
