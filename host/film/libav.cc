#include "host/film/libav.h"

#include <cstdlib>

namespace kelto::host {

std::string LibavText(int code) {
  char text[AV_ERROR_MAX_STRING_SIZE];
  av_strerror(code, text, sizeof text);
  return text;
}

void SilenceLibav() {
  av_log_set_level(AV_LOG_QUIET);
  // SVT-AV1 prints past FFmpeg; only its environment can limit it to errors.
  setenv("SVT_LOG", "1", 0);
}

}  // namespace kelto::host
