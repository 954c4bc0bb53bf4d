// Slow motion must look like it, a pan in the hosts too.
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

/// Standard deviation of the second difference of the spot's place, in pixels per frame squared.
/// Expects that it moves right by `distance` pixels without a step back.
double Tremble(const Frames& frames, double distance, const std::string& what) {
  const std::vector<double> x = Centroids(frames);
  EXPECT_EQ(x.size(), size_t{kFrames}) << what;
  if (x.size() != size_t{kFrames}) return 0.0;
  double sum = 0.0, squares = 0.0;
  for (size_t i = 1; i + 1 < x.size(); ++i) {
    EXPECT_GT(x[i + 1], x[i]) << what << ": frame " << i + 1 << " steps back";
    const double second = x[i + 1] - 2 * x[i] + x[i - 1];
    sum += second;
    squares += second * second;
  }
  EXPECT_NEAR(x.back() - x.front(), distance, 0.2) << what << ": not the motion asked for";
  const double n = kFrames - 2;
  const double tremble = std::sqrt(squares / n - (sum / n) * (sum / n));
  std::printf("%s: second difference %.5f px per frame squared\n", what.c_str(), tremble);
  return tremble;
}

void ExpectSmooth(const Frames& frames, const char* host) {
  EXPECT_LT(Tremble(frames, 0.04 * kSize.width, host), 0.02) << host;
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

TEST(SlowSteadyZoom, TremblesHardlyMoreThanItsLevelsOfEightBitsDo) {
  const test::TempFolder folder;
  const std::string photo = folder / "blob.bmp";
  WriteBlob(photo);
  for (const std::string filter : {"catmull", "hiqual", "ultra"}) {
    const Frames frames = test::RenderByCommand(
        photo, kSize,
        {"--frames", "60", "--from", "1.25@-0.12,0", "--to", "1.5@-0.12,0", "--in", "linear",
         "--out", "linear", "--motion", "steady", "--filter", filter});
    // An exact spot in levels of eight bits trembles by 0.004.
    EXPECT_LT(Tremble(frames, 0.12 * 0.25 * kSize.width, filter), 0.006) << filter;
  }
}

}  // namespace
}  // namespace kelto
