#include "host/terminal/standard_output.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "host/base/error.h"
#include "host/terminal/text_stream.h"

namespace kelto::host {

void PrintResult(const std::string& text) {
  if (WriteText(stdout, text)) return;
  const int cause = errno;
  if (cause == EPIPE) throw ToldError();
  throw Error("standard output: cannot be written: " + std::generic_category().message(cause));
}

}  // namespace kelto::host
