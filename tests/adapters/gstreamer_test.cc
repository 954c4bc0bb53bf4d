// The plug-ins in GStreamer.
#include <gtest/gtest.h>

#include "tests/adapters/run.h"

namespace kelto {
namespace {

using test::Frames;
using test::Outcome;
using test::RunProgram;
using test::Size;
using test::Words;

const Words kGstreamerMove{"--frames", "4",          "--from",       "1.2@0.1,0",
                           "--to",     "2@-0.2,0.1", "--background", "#203040"};

class GStreamer : public testing::Test {
 protected:
  GStreamer() { test::WriteTestPhoto(photo_); }

  /// An element's properties; the elements are named after the plug-ins' names.
  Words Element(const char* name) const {
    return {name,       "image=" + photo_, "from=1.2@0.1,0",
            "frames=4", "to=2@-0.2,0.1",   "background=#203040"};
  }
  static std::string Caps(Size size) {
    return "video/x-raw,format=BGRA,framerate=25/1,width=" + std::to_string(size.width) +
           ",height=" + std::to_string(size.height);
  }
  Frames Launch(const Words& pipeline, Size size) {
    const std::string out = folder_ / "out.bgra";
    Words words{"gst-launch-1.0", "-q"};
    words.insert(words.end(), pipeline.begin(), pipeline.end());
    words.insert(words.end(), {"!", "filesink", "location=" + out});
    outcome_ = RunProgram(words);
    EXPECT_EQ(outcome_.code, 0) << outcome_.err;
    return test::ReadFrames(out, size.width, size.height);
  }

  test::TempFolder folder_;
  std::string photo_ = folder_ / "photo.bmp";
  Outcome outcome_;
};

TEST_F(GStreamer, FilterRendersTheFramesOfTheCommandAtEverySize) {
  for (const Size size : test::kSizes) {
    Words pipeline{"videotestsrc", "num-buffers=4", "!", Caps(size), "!"};
    const Words element = Element("frei0r-filter-kelto-pan-zoom");
    pipeline.insert(pipeline.end(), element.begin(), element.end());
    ExpectSameFrames(Launch(pipeline, size), RenderByCommand(photo_, size, kGstreamerMove),
                     size.Text());
    EXPECT_TRUE(outcome_.Lines().empty()) << outcome_.err;
  }
}

TEST_F(GStreamer, SourceRendersTheFramesOfTheCommandAtEverySize) {
  for (const Size size : test::kSizes) {
    Words pipeline = Element("frei0r-src-kelto-pan-zoom-src");
    pipeline.insert(pipeline.end(), {"num-buffers=4", "!", Caps(size)});
    ExpectSameFrames(Launch(pipeline, size), RenderByCommand(photo_, size, kGstreamerMove),
                     size.Text());
  }
}

TEST_F(GStreamer, AProjectRendersTheFramesOfTheCommandInBothPlugins) {
  const std::string project = folder_ / "film.json";
  test::WriteTestProject(project, "photo.bmp", 6);
  for (const Size size : test::kSizes) {
    const Frames command = test::RenderByCommand(project, size, {});
    ExpectSameFrames(Launch({"videotestsrc", "num-buffers=6", "!", Caps(size), "!",
                             "frei0r-filter-kelto-pan-zoom", "image=" + project, "fps=25"},
                            size),
                     command, size.Text() + " filter");
    EXPECT_TRUE(outcome_.Lines().empty()) << outcome_.err;
    ExpectSameFrames(Launch({"frei0r-src-kelto-pan-zoom-src", "image=" + project, "fps=25",
                             "num-buffers=6", "!", Caps(size)},
                            size),
                     command, size.Text() + " source");
  }
}

TEST_F(GStreamer, FieldsAndThePixelsShapeOfAProjectAreItsOwnByEveryLaw) {
  const Size size = test::kInterlacedSize;
  for (const char* law : {"linear", "steady", "fly"}) {
    const std::string project = folder_ / (law + std::string(".json"));
    test::WriteInterlacedProject(project, "photo.bmp", law);
    const Frames command = test::RenderByCommand(project, size, {});
    ExpectSameFrames(Launch({"videotestsrc", "num-buffers=4", "!", Caps(size), "!",
                             "frei0r-filter-kelto-pan-zoom", "image=" + project},
                            size),
                     command, law + std::string(" filter"));
    EXPECT_TRUE(outcome_.Lines().empty()) << outcome_.err;
    ExpectSameFrames(Launch({"frei0r-src-kelto-pan-zoom-src", "image=" + project, "num-buffers=4",
                             "!", Caps(size)},
                            size),
                     command, law + std::string(" source"));
  }
}

TEST_F(GStreamer, ViewsGivenBesideAnInterlacedProjectGoSteadily) {
  const Size size = test::kInterlacedSize;
  const std::string project = folder_ / "film.json";
  test::WriteInterlacedProject(project, "photo.bmp", "linear", "bottom");
  ExpectSameFrames(
      Launch({"frei0r-src-kelto-pan-zoom-src", "image=" + project, "from=1.2@0.1,0",
              "to=3@-0.2,0.1", "num-buffers=4", "!", Caps(size)},
             size),
      test::RenderByCommand(project, size,
                            {"--from", "1.2@0.1,0", "--to", "3@-0.2,0.1", "--motion", "steady"}),
      "steady");
}

/// Frames of these numbers, one behind the other.
Frames Chosen(const Frames& film, const std::vector<size_t>& numbers) {
  Frames chosen{film.width, film.height, {}};
  const size_t length = film.bytes.size() / film.Count();
  for (const size_t number : numbers) {
    const auto start = film.bytes.begin() + static_cast<ptrdiff_t>(number * length);
    chosen.bytes.insert(chosen.bytes.end(), start, start + static_cast<ptrdiff_t>(length));
  }
  return chosen;
}

const Words kGstreamerLongMove{"--frames", "12",         "--from",       "1.2@0.1,0",
                               "--to",     "2@-0.2,0.1", "--background", "#203040"};

TEST_F(GStreamer, DroppedFramesDoNotSlowAMotionWhereverItsTimesLie) {
  const Size size{320, 180};
  const Frames film = RenderByCommand(photo_, size, kGstreamerLongMove);
  // Live pictures come at times of their own.
  for (const char* late : {"0", "4081359"}) {
    const Frames frames =
        Launch({"videotestsrc", "num-buffers=12", std::string("timestamp-offset=") + late, "!",
                Caps(size), "!", "videorate", "drop-only=true", "!", "video/x-raw,framerate=25/3",
                "!", "frei0r-filter-kelto-pan-zoom", "image=" + photo_, "from=1.2@0.1,0",
                "to=2@-0.2,0.1", "background=#203040", "frames=12"},
               size);
    ASSERT_GE(frames.Count(), 3u) << late;
    std::vector<size_t> numbers;
    for (size_t number = 0; numbers.size() < frames.Count(); number += 3) numbers.push_back(number);
    ExpectSameFrames(frames, Chosen(film, numbers), std::string("late ") + late);
  }
}

TEST_F(GStreamer, AChangeOfCapsLeavesTheMotionWhereItIs) {
  const Size before{320, 180}, after{160, 90};
  for (int i = 0; i < 8; ++i) {
    const Size size = i < 5 ? before : after;
    ASSERT_EQ(RunProgram({"ffmpeg", "-nostdin", "-v", "error", "-f", "lavfi", "-i",
                          "color=gray:size=" + size.Text(), "-frames:v", "1",
                          folder_ / (std::to_string(i) + ".png")})
                  .code,
              0);
  }
  // 24 fps, read as the 25 of a plug-in that was given no rate: the nearest frames are these.
  const Frames frames =
      Launch({"multifilesrc", "location=" + (folder_ / "%d.png"), "stop-index=7",
              "caps=image/png,framerate=24/1", "!", "pngdec", "!", "videoconvert", "!",
              "video/x-raw,format=BGRA", "!", "frei0r-filter-kelto-pan-zoom", "image=" + photo_,
              "from=1.2@0.1,0", "to=2@-0.2,0.1", "background=#203040", "frames=8"},
             {1, 1});
  Words move = kGstreamerLongMove;
  move[1] = "8";
  Frames expected = Chosen(RenderByCommand(photo_, before, move), {0, 1, 2, 3, 4});
  const Frames later = Chosen(RenderByCommand(photo_, after, move), {5, 6, 7});
  expected.bytes.insert(expected.bytes.end(), later.bytes.begin(), later.bytes.end());
  ExpectSameFrames(frames, expected, "caps");
}

TEST_F(GStreamer, LookingAtAnElementOpensNoPhotographAndSaysNothing) {
  const Outcome outcome = RunProgram({"gst-inspect-1.0", "frei0r-filter-kelto-pan-zoom"});
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_TRUE(outcome.Lines().empty()) << outcome.err;
}

TEST_F(GStreamer, AMissingPhotographLeavesABackgroundAndOneLine) {
  const Size size{321, 237};
  photo_ = folder_ / "nowhere.jpg";
  Words pipeline = Element("frei0r-src-kelto-pan-zoom-src");
  pipeline.insert(pipeline.end(), {"num-buffers=4", "!", Caps(size)});
  const Frames frames = Launch(pipeline, size);
  EXPECT_EQ(frames.Count(), 4u);
  EXPECT_EQ(outcome_.Lines().size(), 1u) << outcome_.err;
  EXPECT_EQ(frames.bytes[0], 0x40);
}

}  // namespace
}  // namespace kelto
