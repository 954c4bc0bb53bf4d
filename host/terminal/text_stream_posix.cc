#include <unistd.h>

#include "host/terminal/text_stream.h"

namespace kelto::host {

bool IsTerminal(std::FILE* stream) { return isatty(fileno(stream)) != 0; }

bool ObeysSequences(std::FILE*) { return true; }

bool WriteText(std::FILE* stream, std::string_view text) {
  return std::fwrite(text.data(), 1, text.size(), stream) == text.size() &&
         std::fflush(stream) == 0;
}

}  // namespace kelto::host
