// The plug-ins in FFmpeg.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "tests/adapters/run.h"

namespace kelto {
namespace {

using test::Frames;
using test::Outcome;
using test::RunProgram;
using test::Size;
using test::Words;

const Words kMove{"--frames",   "4",        "--from", "1.2@0.1,0",    "--to",
                  "2@-0.2,0.1", "--filter", "hiqual", "--background", "#203040"};
/// The same in the places of FFmpeg's list, where a comma is escaped.
const std::string kMoveInPlaces = "|1.2@0.1\\,0|2@-0.2\\,0.1|4|hiqual|#203040";

class Ffmpeg : public testing::Test {
 protected:
  Ffmpeg() { test::WriteTestPhoto(photo_); }

  /// `graph` into `frames` raw frames.
  Frames Render(const std::string& graph, Size size, int frames = 4) {
    const std::string out = folder_ / "out.bgra";
    outcome_ = RunProgram({"ffmpeg", "-nostdin", "-v", "error", "-y", "-f", "lavfi", "-i", graph,
                           "-frames:v", std::to_string(frames), "-f", "rawvideo", "-pix_fmt",
                           "bgra", out});
    EXPECT_EQ(outcome_.code, 0) << outcome_.err;
    return test::ReadFrames(out, size.width, size.height);
  }
  static std::string Video(Size size, const std::string& rate = "25") {
    return "color=red:s=" + size.Text() + ":r=" + rate + ",format=bgra";
  }
  std::string Filter(const std::string& more) { return "frei0r=kelto_pan_zoom:" + photo_ + more; }

  test::TempFolder folder_;
  std::string photo_ = folder_ / "photo.bmp";
  Outcome outcome_;
};

TEST_F(Ffmpeg, FilterRendersTheFramesOfTheCommandAtEverySize) {
  for (const Size size : test::kSizes) {
    ExpectSameFrames(Render(Video(size) + "," + Filter(kMoveInPlaces), size),
                     RenderByCommand(photo_, size, kMove), size.Text());
    EXPECT_TRUE(outcome_.Lines().empty()) << outcome_.err;
  }
}

TEST_F(Ffmpeg, SourceRendersTheFramesOfTheCommandAtEverySize) {
  for (const Size size : test::kSizes) {
    std::string source = "frei0r_src=size=" + size.Text() +
                         ":framerate=25:filter_name=kelto_pan_zoom_src:filter_params=";
    source += photo_ + kMoveInPlaces;
    ExpectSameFrames(Render(source, size), RenderByCommand(photo_, size, kMove), size.Text());
  }
}

TEST_F(Ffmpeg, AProjectRendersTheFramesOfTheCommandInBothPlugins) {
  const std::string project = folder_ / "film.json";
  test::WriteTestProject(project, "photo.bmp", 6);
  for (const Size size : test::kSizes) {
    const Frames command = test::RenderByCommand(project, size, {});
    ASSERT_EQ(command.Count(), 6u);
    ExpectSameFrames(Render(Video(size, "50") + ",frei0r=kelto_pan_zoom:" + project, size, 6),
                     command, size.Text() + " filter");
    EXPECT_TRUE(outcome_.Lines().empty()) << outcome_.err;
    ExpectSameFrames(Render("frei0r_src=size=" + size.Text() +
                                ":framerate=50:filter_name=kelto_pan_zoom_src:"
                                "filter_params=" +
                                project,
                            size, 6),
                     command, size.Text() + " source");
  }
}

TEST_F(Ffmpeg, FieldsAndThePixelsShapeOfAProjectAreItsOwnByEveryLaw) {
  const Size size = test::kInterlacedSize;
  for (const char* law : {"linear", "steady", "fly"}) {
    const std::string project = folder_ / (law + std::string(".json"));
    test::WriteInterlacedProject(project, "photo.bmp", law);
    ExpectSameFrames(Render(Video(size) + ",frei0r=kelto_pan_zoom:" + project, size),
                     test::RenderByCommand(project, size, {}), law);
  }
}

TEST_F(Ffmpeg, ViewsGivenBesideAnInterlacedProjectGoSteadily) {
  const Size size = test::kInterlacedSize;
  const std::string project = folder_ / "film.json";
  test::WriteInterlacedProject(project, "photo.bmp", "linear", "bottom");
  ExpectSameFrames(
      Render(Video(size) + ",frei0r=kelto_pan_zoom:" + project + "|1.2@0.1\\,0|3@-0.2\\,0.1", size),
      test::RenderByCommand(project, size,
                            {"--from", "1.2@0.1,0", "--to", "3@-0.2,0.1", "--motion", "steady"}),
      "steady");
}

TEST_F(Ffmpeg, TheListOfViewsOfAProjectIsTheCommands) {
  const Size size{320, 180};
  const std::string project = folder_ / "tour.json";
  for (const char* law : {"linear", "steady"}) {
    std::ofstream(project) << R"({"image": "photo.bmp", "motion": ")" << law << R"(",
      "film": {"rate": 4, "width": 320, "height": 180},
      "views": [{"view": "20,10,160,90", "hold": 0.5, "go": 1}, {"view": "2@-0.1,0", "out": "linear"},
                {"view": "1"}]})";
    const Frames command = test::RenderByCommand(project, size, {});
    ASSERT_EQ(command.Count(), 14u);
    ExpectSameFrames(Render(Video(size, "4") + ",frei0r=kelto_pan_zoom:" + project, size, 14),
                     command, law);
    EXPECT_TRUE(outcome_.Lines().empty()) << outcome_.err;
  }
}

TEST_F(Ffmpeg, TheMotionBetweenItsViewsIsTheCommands) {
  const Size size{320, 180};
  Frames steady;
  for (const char* law : {"steady", "linear"}) {
    Words words = kMove;
    words.insert(words.end(), {"--motion", law});
    const std::string places = kMoveInPlaces + "|||||||||||1|" + law;
    const Frames frames = Render(Video(size) + "," + Filter(places), size);
    ExpectSameFrames(frames, RenderByCommand(photo_, size, words), law);
    EXPECT_NE(frames.bytes, steady.bytes);
    steady = frames;
  }
}

TEST_F(Ffmpeg, ParametersGivenBesideAProjectOverruleIt) {
  const Size size{854, 480};
  const std::string project = folder_ / "film.json";
  test::WriteTestProject(project, "photo.bmp", 4);
  ExpectSameFrames(
      Render(Video(size, "50") + ",frei0r=kelto_pan_zoom:" + project + "||||gaussian|#00ff00",
             size),
      test::RenderByCommand(project, size, {"--filter", "gaussian", "--background", "#00ff00"}),
      "filter and background");
}

TEST_F(Ffmpeg, AProjectOfAMissingPhotographOrOfNonsenseGivesTheVideoAndOneLine) {
  const Size size{320, 180};
  const std::string project = folder_ / "film.json";
  for (const char* photo : {"nowhere.jpg", "a\"b"}) {
    test::WriteTestProject(project, photo, 4);
    Render(Video(size) + ",frei0r=kelto_pan_zoom:" + project, size);
    EXPECT_EQ(outcome_.Lines().size(), 1u) << outcome_.err;
  }
}

TEST_F(Ffmpeg, RatesOtherThanTheOneGivenAreCounted) {
  const Size size{320, 180};
  for (const char* rate : {"30", "50", "24000/1001", "60"}) {
    ExpectSameFrames(Render(Video(size, rate) + "," + Filter(kMoveInPlaces), size),
                     RenderByCommand(photo_, size, kMove), rate);
  }
}

TEST_F(Ffmpeg, AFilterEnabledInTheMiddleOfTheVideoTakesTheMotionUpThere) {
  const Size size{320, 180};
  const Frames frames = Render(
      Video(size) + "," + Filter("|1.2@0.1\\,0|2@-0.2\\,0.1|12|hiqual|#203040:enable='gte(t,0.4)'"),
      size, 12);
  ASSERT_EQ(frames.Count(), 12u);
  Words move = kMove;
  move[1] = "12";
  const Frames command = RenderByCommand(photo_, size, move);
  const auto last = [&](const Frames& all) {
    const auto from = static_cast<ptrdiff_t>(all.bytes.size() / 12 * 10);
    return Frames{size.width, size.height, {all.bytes.begin() + from, all.bytes.end()}};
  };
  ExpectSameFrames(last(frames), last(command), "from the tenth frame");
}

TEST_F(Ffmpeg, EmptyPlacesStandForDefaults) {
  const Size size{320, 180};
  ExpectSameFrames(
      Render(Video(size) + "," + Filter("|||||#203040|||||||2|0.1"), size, 1),
      RenderByCommand(photo_, size,
                      {"--frames", "1", "--from", "2@0.1,0", "--background", "#203040"}),
      "zoom 2, x 0.1");
  ExpectSameFrames(Render(Video(size) + "," + Filter("|||||#203040||||||||"), size, 1),
                   RenderByCommand(photo_, size, {"--frames", "1", "--background", "#203040"}),
                   "an empty zoom");
}

TEST_F(Ffmpeg, TheVideoIsSeenWhereThePhotographIsNot) {
  const Size size{854, 480};
  const Frames frames = Render(Video(size) + "," + Filter("|0.5"), size, 1);
  ASSERT_EQ(frames.Count(), 1u);
  for (const size_t row : {size_t{0}, size_t{1}, size_t{479}}) {
    const uint8_t* left = &frames.bytes[row * 854 * 4];
    EXPECT_NEAR(left[0], 0, 3) << "blue in row " << row;
    EXPECT_NEAR(left[1], 0, 3) << "green in row " << row;
    EXPECT_NEAR(left[2], 254, 3) << "red in row " << row;
    EXPECT_EQ(left[3], 255) << "alpha in row " << row;
  }
}

TEST_F(Ffmpeg, AMissingPhotographLeavesTheVideoAndOneLine) {
  for (const Size size : test::kSizes) {
    const std::string path = folder_ / "nowhere.jpg";
    const Frames frames = Render(Video(size) + ",frei0r=kelto_pan_zoom:" + path, size, 3);
    ExpectSameFrames(frames, Render(Video(size), size, 3), size.Text());
  }
  const Size size{320, 180};
  Render(Video(size) + ",frei0r=kelto_pan_zoom:" + (folder_ / "nowhere.jpg"), size, 3);
  ASSERT_EQ(outcome_.Lines().size(), 1u) << outcome_.err;
  EXPECT_NE(outcome_.Lines()[0].find("nowhere.jpg: there is no such file"), std::string::npos);
}

}  // namespace
}  // namespace kelto
