// A file of any bytes as the video behind a film: frames forwards, and back.
#include "fuzz/host_error.h"
#include "fuzz/memory_file.h"
#include "host/video/video_reader.h"

namespace kelto::fuzz {
namespace {

/// Larger pictures are looked at only: scaling them would take the time of many inputs.
constexpr int64_t kMostPixels = 1 << 20;

void ReadFrames(const std::string& path) {
  const host::VideoInfo info = host::LookAtVideo(path);
  Require(info.frames >= 1 && info.size.width > 0 && info.size.height > 0,
          "a video has a frame and a size");
  if (int64_t{info.size.width} * info.size.height > kMostPixels) return;
  host::FilmFormat film;
  film.size = {64, 48};
  host::VideoReader reader(path, film, host::PixelLayout::kYCbYCr);
  for (const int32_t number : {0, 1, 7, 2}) {
    Require(reader.Frame(number).size == film.size, "a frame is of the film's size");
  }
}

}  // namespace
}  // namespace kelto::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const kelto::fuzz::MemoryFile file(data, size);
  kelto::fuzz::RunOrRefuse(file.path(), [&] { kelto::fuzz::ReadFrames(file.path()); });
  return 0;
}
