// A slow pan must look like one in the hosts too.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>

#include "tests/adapters/run.h"

namespace kelto {
namespace {

using test::Frames;
using test::RunMelt;
using test::RunProgram;

constexpr int kFrames = 60;
constexpr test::Size kSize{320, 180};

/// A bright spot on black, in the middle of 1000 x 562 pixels.
void WriteBlob(const std::string& path) {
  test::WritePhoto(path, 1000, 562, [](int32_t x, int32_t y) {
    const double dx = x - 500.0, dy = y - 281.0;
    const auto v = static_cast<uint8_t>(
        std::lround(255.0 * std::exp(-(dx * dx + dy * dy) / (2 * 62.5 * 62.5))));
    return test::Rgb{v, v, v};
  });
}

/// Horizontal centroid of the green of each frame.
std::vector<double> Centroids(const Frames& frames) {
  std::vector<double> centroids;
  const size_t length = size_t{4} * frames.width * frames.height;
  for (size_t frame = 0; frame < frames.Count(); ++frame) {
    double weight = 0.0, moment = 0.0;
    for (size_t i = 0; i < length / 4; ++i) {
      const double v = frames.bytes[frame * length + 4 * i + 1];
      weight += v;
      moment += v * static_cast<double>(i % frames.width);
    }
    centroids.push_back(moment / weight);
  }
  return centroids;
}

void ExpectSmooth(const Frames& frames, const char* host) {
  const std::vector<double> x = Centroids(frames);
  ASSERT_EQ(x.size(), size_t{kFrames}) << host;
  double sum = 0.0, squares = 0.0;
  for (size_t i = 1; i + 1 < x.size(); ++i) {
    EXPECT_GT(x[i + 1], x[i]) << host << ": frame " << i + 1 << " steps back";
    const double second = x[i + 1] - 2 * x[i] + x[i - 1];
    sum += second;
    squares += second * second;
  }
  const double n = kFrames - 2;
  const double tremble = std::sqrt(squares / n - (sum / n) * (sum / n));
  EXPECT_NEAR(x.back() - x.front(), 0.04 * kSize.width, 0.2) << host << ": not the pan asked for";
  EXPECT_LT(tremble, 0.02) << host << ": px per frame squared";
  std::printf("%s: second difference %.5f px per frame squared\n", host, tremble);
}

class SlowPanInAHost : public testing::Test {
 protected:
  SlowPanInAHost() { WriteBlob(photo_); }
  test::TempFolder folder_;
  std::string photo_ = folder_ / "blob.bmp", out_ = folder_ / "out.bgra";
};

TEST_F(SlowPanInAHost, ThroughFfmpegHasNoBackwardStepAndHardlyAnyTremble) {
  const auto outcome =
      RunProgram({"ffmpeg", "-nostdin", "-v", "error", "-f", "lavfi", "-i",
                  "frei0r_src=size=320x180:framerate=25:filter_name=kelto_pan_zoom_src:"
                  "filter_params=" +
                      photo_ + "|1@0.02\\,0|1@-0.02\\,0|60|||linear|linear",
                  "-frames:v", "60", "-f", "rawvideo", "-pix_fmt", "bgra", out_});
  ASSERT_EQ(outcome.code, 0) << outcome.err;
  ExpectSmooth(test::ReadFrames(out_, kSize.width, kSize.height), "FFmpeg");
}

TEST_F(SlowPanInAHost, ThroughMeltWithKeyframedCentreHasNoBackwardStepAndHardlyAnyTremble) {
  std::ofstream(folder_ / "profile")
      << "frame_rate_num=25\nframe_rate_den=1\nprogressive=1\nsample_aspect_num=1\n"
         "sample_aspect_den=1\ncolorspace=709\nwidth=320\nheight=180\ndisplay_aspect_num=16\n"
         "display_aspect_den=9\ndescription=test\n";
  const auto outcome = RunMelt(
      {"-profile", folder_ / "profile", "frei0r.kelto_pan_zoom_src", "out=59", "image=" + photo_,
       "x=0=0.02;59=-0.02", "-consumer", "avformat:" + out_, "f=rawvideo", "vcodec=rawvideo",
       "pix_fmt=bgra", "mlt_image_format=rgba", "real_time=-2"},
      out_);
  ASSERT_EQ(outcome.code, 0) << outcome.err;
  ExpectSmooth(test::ReadFrames(out_, kSize.width, kSize.height), "melt");
}

}  // namespace
}  // namespace kelto
