// The plug-ins in MLT's command.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <utility>

#include "tests/adapters/run.h"
#include "tests/support/file_bytes.h"

namespace kelto {
namespace {

namespace fs = std::filesystem;
using test::Frames;
using test::Outcome;
using test::RunMelt;
using test::Size;
using test::Words;

class Melt : public testing::Test {
 protected:
  Melt() { test::WriteTestPhoto(photo_); }

  /// `service` into raw frames, on `threads` render threads.
  Frames Render(const Words& service, Size size, int threads) {
    const std::string out = folder_ / "out.bgra";
    Words words{"-profile", Profile(size)};
    words.insert(words.end(), service.begin(), service.end());
    words.insert(words.end(), {"-consumer", "avformat:" + out, "f=rawvideo", "vcodec=rawvideo",
                               "pix_fmt=bgra", "mlt_image_format=rgba"});
    // Negative: this many threads, and no frame dropped.
    words.push_back("real_time=-" + std::to_string(threads));
    outcome_ = RunMelt(words, out);
    EXPECT_EQ(outcome_.code, 0) << outcome_.err;
    return test::ReadFrames(out, size.width, size.height);
  }

  /// A profile file of this size at 25 fps; interlaced_ says which kind.
  std::string Profile(Size size) {
    std::string path = folder_ / ("profile-" + size.Text());
    std::ofstream(path) << "description=test\nframe_rate_num=25\nframe_rate_den=1\nprogressive="
                        << (interlaced_ ? 0 : 1)
                        << "\nsample_aspect_num=1\nsample_aspect_den=1\ncolorspace=709\nwidth="
                        << size.width << "\nheight=" << size.height
                        << "\ndisplay_aspect_num=" << size.width
                        << "\ndisplay_aspect_den=" << size.height << "\n";
    return path;
  }

  Words Service(const Words& start, const Words& more) {
    Words words = start;
    words.insert(words.end(), {"image=" + photo_, "background=#203040"});
    words.insert(words.end(), more.begin(), more.end());
    return words;
  }
  Words Filter(int last, const Words& more) {
    return Service(
        {"colour:red", "out=" + std::to_string(last), "-filter", "frei0r.kelto_pan_zoom"}, more);
  }
  Words Producer(int last, const Words& more) {
    return Service({"frei0r.kelto_pan_zoom_src", "out=" + std::to_string(last)}, more);
  }

  test::TempFolder folder_;
  std::string photo_ = folder_ / "photo.bmp";
  bool interlaced_ = false;
  Outcome outcome_;
};

const Words kMeltMove{"--frames", "8",          "--from",       "1.2@0.1,0",
                      "--to",     "2@-0.2,0.1", "--background", "#203040"};
const Words kViews{"from=1.2@0.1,0", "to=2@-0.2,0.1"};

TEST_F(Melt, FilterRendersTheFramesOfTheCommandAtEverySizeOnManyThreads) {
  Words motion = kViews;
  motion.push_back("frames=8");
  for (const Size size : test::kSizes) {
    const Frames command = RenderByCommand(photo_, size, kMeltMove);
    for (const int threads : {1, 4}) {
      ExpectSameFrames(Render(Filter(7, motion), size, threads), command,
                       size.Text() + " on " + std::to_string(threads) + " threads");
      EXPECT_TRUE(outcome_.Lines().empty()) << outcome_.err;
    }
  }
}

TEST_F(Melt, ProducerWithKeyframedProgressRendersTheFramesOfTheCommandAtEverySize) {
  Words motion = kViews;
  motion.push_back("progress=0=0;7=1");
  for (const Size size : test::kSizes) {
    ExpectSameFrames(Render(Producer(7, motion), size, 3), RenderByCommand(photo_, size, kMeltMove),
                     size.Text());
  }
}

TEST_F(Melt, ProducerWithKeyframedZoomRendersTheViewsInBetween) {
  for (const Size size : test::kSizes) {
    const Frames frames = Render(Producer(4, {"zoom=0=1;4=2", "x=0=0;4=0.2"}), size, 4);
    ASSERT_EQ(frames.Count(), 5u);
    const size_t length = frames.bytes.size() / 5;
    const char* views[] = {"1@0,0", "1.25@0.05,0", "1.5@0.1,0", "1.75@0.15,0", "2@0.2,0"};
    for (size_t i = 0; i < 5; ++i) {
      Frames frame{size.width, size.height, {}};
      frame.bytes.assign(frames.bytes.begin() + length * i,
                         frames.bytes.begin() + length * (i + 1));
      ExpectSameFrames(
          frame,
          RenderByCommand(photo_, size,
                          {"--frames", "1", "--from", views[i], "--background", "#203040"}),
          size.Text() + " at " + views[i]);
    }
  }
}

TEST_F(Melt, AProjectRendersTheFramesOfTheCommandOnManyThreads) {
  const std::string project = folder_ / "film.json";
  test::WriteTestProject(project, "photo.bmp", 8);
  for (const Size size : test::kSizes) {
    const Frames command = test::RenderByCommand(project, size, {});
    const Words producer{"frei0r.kelto_pan_zoom_src", "out=7", "image=" + project};
    Words led = producer, timed = producer;
    led.push_back("progress=0=0;7=1");
    ExpectSameFrames(Render(led, size, 4), command, size.Text() + " led by progress");
    timed.push_back("fps=25");  // the profile's
    ExpectSameFrames(Render(timed, size, 4), command, size.Text() + " by itself");
    EXPECT_TRUE(outcome_.Lines().empty()) << outcome_.err;
    const Words filter{"colour:red",       "out=7",           "-filter", "frei0r.kelto_pan_zoom",
                       "image=" + project, "progress=0=0;7=1"};
    ExpectSameFrames(Render(filter, size, 4), command, size.Text() + " filter");
  }
}

TEST_F(Melt, FieldsAndThePixelsShapeOfAProjectAreItsOwnByEveryLaw) {
  const Size size = test::kInterlacedSize;
  interlaced_ = true;
  for (const char* law : {"linear", "steady", "fly"}) {
    const std::string project = folder_ / (law + std::string(".json"));
    test::WriteInterlacedProject(project, "photo.bmp", law);
    const Frames command = test::RenderByCommand(project, size, {});
    const Words filter{"colour:red", "out=3", "-filter", "frei0r.kelto_pan_zoom",
                       "image=" + project};
    ExpectSameFrames(Render(filter, size, 2), command, law + std::string(" filter"));
    EXPECT_TRUE(outcome_.Lines().empty()) << outcome_.err;
    const Words led{"frei0r.kelto_pan_zoom_src", "out=3", "image=" + project, "progress=0=0;3=1"};
    ExpectSameFrames(Render(led, size, 2), command, law + std::string(" led by progress"));
  }
}

TEST_F(Melt, ViewsGivenBesideAnInterlacedProjectGoSteadily) {
  const Size size = test::kInterlacedSize;
  interlaced_ = true;
  const std::string project = folder_ / "film.json";
  test::WriteInterlacedProject(project, "photo.bmp", "linear", "bottom");
  ExpectSameFrames(
      Render({"frei0r.kelto_pan_zoom_src", "out=3", "image=" + project, "from=1.2@0.1,0",
              "to=3@-0.2,0.1"},
             size, 2),
      test::RenderByCommand(project, size,
                            {"--from", "1.2@0.1,0", "--to", "3@-0.2,0.1", "--motion", "steady"}),
      "steady");
}

TEST_F(Melt, ClipsOfAColourWithTheFilterMoveFromTheirOwnBeginnings) {
  const Size size{320, 180};
  Words clip{"colour:black",          "out=7",           "-attach",
             "frei0r.kelto_pan_zoom", "image=" + photo_, "background=#203040",
             "progress=0=0;7=1"};
  clip.insert(clip.end(), kViews.begin(), kViews.end());
  Words clips = clip;
  clips.insert(clips.end(), clip.begin(), clip.end());
  Frames command = RenderByCommand(photo_, size, kMeltMove);
  const std::vector<uint8_t> once = command.bytes;
  command.bytes.insert(command.bytes.end(), once.begin(), once.end());
  ExpectSameFrames(Render(clips, size, 3), command, "one clip after the other");
}

TEST_F(Melt, ASavedProjectFindsItsPhotographFromAnotherFolder) {
  const Size size{320, 180};
  const Frames command = RenderByCommand(photo_, size, kMeltMove);
  const std::string saved = folder_ / "saved.mlt";
  const Words filter{"colour:red", "out=7", "-attach", "frei0r.kelto_pan_zoom"};
  const Words source{"frei0r.kelto_pan_zoom_src", "out=7"};
  for (const auto& [service, name] :
       {std::pair(filter, "filename="), {filter, "filter.resource="}, {source, "argument="}}) {
    Words words{"-profile", Profile(size)};
    words.insert(words.end(), service.begin(), service.end());
    words.insert(words.end(), {name + photo_, "background=#203040", "progress=0=0;7=1"});
    words.insert(words.end(), kViews.begin(), kViews.end());
    words.insert(words.end(), {"-consumer", "xml:" + saved, "root=" + (folder_ / "")});
    ASSERT_EQ(RunMelt(words, saved).code, 0);
    // What is tested: the folder is gone from the name.
    const std::string text = test::BytesOf(saved);
    EXPECT_NE(text.find(">photo.bmp<"), std::string::npos) << text;
    ExpectSameFrames(Render({"xml:" + saved}, size, 2), command, name);
    EXPECT_TRUE(outcome_.Lines().empty()) << outcome_.err;
    fs::remove(saved);
  }
}

TEST_F(Melt, AMissingPhotographGivesOneLineForAllThreads) {
  const Size size{321, 237};
  photo_ = folder_ / "nowhere.jpg";
  const Frames frames = Render(Producer(7, kViews), size, 4);
  EXPECT_EQ(frames.Count(), 8u);
  EXPECT_EQ(outcome_.Lines().size(), 1u) << outcome_.err;
  for (size_t i = 0; i < frames.bytes.size(); i += 4) {
    ASSERT_EQ(frames.bytes[i], 0x40) << i;
    ASSERT_EQ(frames.bytes[i + 2], 0x20) << i;
  }
}

}  // namespace
}  // namespace kelto
