#include "host/terminal/standard_streams.h"

#if !defined(_WIN32)
#include <fcntl.h>
#include <unistd.h>
#endif

namespace kelto::host {

void OpenStandardStreams() {
#if !defined(_WIN32)
  // For reading only: what is written to a closed stream is still an error.
  int file = 0;
  while (file >= 0 && file <= STDERR_FILENO) file = open("/dev/null", O_RDONLY);
  if (file > STDERR_FILENO) close(file);
#endif
}

}  // namespace kelto::host
