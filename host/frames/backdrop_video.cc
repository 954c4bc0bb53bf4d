#include "host/frames/backdrop_video.h"

#include "host/base/texts.h"
#include "host/terminal/terminal.h"
#include "host/video/video_reader.h"

namespace kelto::host {
namespace {

class ReaderVideo final : public BackdropVideo {
 public:
  ReaderVideo(const RenderPlan& plan, PixelLayout layout)
      : reader_(plan.over, plan.format, layout) {}
  FrameView Frame(int32_t number) override { return reader_.Frame(number); }
  const VideoInfo& Info() const { return reader_.Info(); }

 private:
  VideoReader reader_;
};

void WarnOfEarlyEnd(const RenderPlan& plan, double seconds) {
  const double film = plan.frames / plan.format.rate.PerSecond();
  // Lengths are rounded, to frames and by containers.
  if (seconds + 1.0 / plan.format.rate.PerSecond() + 0.1 >= film) return;
  Warn(plan.over + ": ends after " + FixedText(seconds, 2) + " of the film's " +
       FixedText(film, 2) + " seconds; its last picture is shown from there on");
}

void WarnOfHighRange(const RenderPlan& plan, VideoInfo::HighRange range) {
  if (range == VideoInfo::HighRange::kNone) return;
  const char* name = range == VideoInfo::HighRange::kPq ? "PQ" : "HLG";
  Warn(plan.over + ": it has high dynamic range (" + name +
       ") and comes out pale unless it is converted first");
}

}  // namespace

std::unique_ptr<BackdropVideo> OpenBackdropVideo(const RenderPlan& plan, PixelLayout layout) {
  auto video = std::make_unique<ReaderVideo>(plan, layout);
  WarnOfEarlyEnd(plan, video->Info().seconds);
  WarnOfHighRange(plan, video->Info().highRange);
  return video;
}

}  // namespace kelto::host
