// A build without the FFmpeg libraries.
#include "host/base/error.h"
#include "host/sources/media.h"

namespace kelto::host {

VideoInfo CheckVideo(const std::string& path) {
  throw Error(path + ": this build cannot read videos");
}

void CheckSoundFile(const std::string& path) {
  throw Error(path + ": films of this build have no sound");
}

double LookAtSound(const std::string& path) {
  CheckSoundFile(path);
  return 0.0;
}

}  // namespace kelto::host
