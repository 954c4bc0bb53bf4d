// Projects and moves, as the command writes and renders them.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/host/command/run.h"

namespace kelto::test {
namespace {

class Projects : public testing::Test {
 protected:
  /// Red runs from left to right, green from top to bottom; 200 x 100.
  Projects() {
    WritePng(photo_, MakePicture(200, 100, [](int x, int y) {
               return Rgb{uint8_t(x), uint8_t(2 * y), 128};
             }));
  }

  void Run(const Words& words) {
    const Outcome outcome = RunKelto(words);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
  }
  std::string FilmOf(const std::string& input, const Words& more = {}) {
    Words words{"render", input, "-o", folder_ / "film.bgra"};
    words.insert(words.end(), more.begin(), more.end());
    Run(words);
    return BytesOf(folder_ / "film.bgra");
  }
  /// First and last frame of a film of two.
  std::vector<Picture> Ends(const Words& more) {
    Words words{"--size", "160x90", "--frames", "2", "--filter", "triangle"};
    words.insert(words.end(), more.begin(), more.end());
    const Outcome outcome = Render(photo_, folder_ / "f%d.png", words);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    return {ReadPng(folder_ / "f0.png"), ReadPng(folder_ / "f1.png")};
  }
  /// The photo's pixel that a frame shows at a place, by its colours.
  static double Column(const Picture& frame, int x) { return frame.At(x, 45).r; }
  static double Row(const Picture& frame, int y) { return frame.At(80, y).g / 2.0; }

  TempFolder folder_;
  const std::string photo_ = folder_ / "photo.png";
};

const Words kSmall{"--size", "64x36", "--frames", "5"};
const Words kMany{"--size",      "64x36",  "--fps",        "30000/1001", "--seconds", "0.2",
                  "--fields",    "bottom", "--from",       "0.8@0.1,0",  "--to",      "2@0,0.2",
                  "--in",        "linear", "--out",        "constant",   "--path",    "spline",
                  "--filter",    "cubic",  "--levels",     "601",        "--display", "source",
                  "--play-mode", "1",      "--background", "#804020"};

TEST_F(Projects, ASavedProjectRendersTheSameFilmAsTheOptions) {
  for (const Words& options : {kSmall, kMany}) {
    Words saving = options;
    saving.insert(saving.end(), {"--save-project", folder_ / "p.json", "--force"});
    const std::string film = FilmOf(photo_, saving);
    EXPECT_FALSE(film.empty());
    EXPECT_EQ(FilmOf(folder_ / "p.json"), film);
  }
}

TEST_F(Projects, AProjectThatIsThereIsReplacedWithForceAlone) {
  const std::string project = folder_ / "p.json";
  std::ofstream(project) << "by hand";
  Words words{"render", photo_,           "-o",   folder_ / "f.y4m", "--frames",
              "2",      "--save-project", project};
  const Outcome outcome = RunKelto(words);
  EXPECT_EQ(outcome.code, 2);
  EXPECT_EQ(outcome.err, "kelto: " + project + ": already exists; --force overwrites it\n");
  EXPECT_EQ(BytesOf(project), "by hand");
  EXPECT_EQ(NamesIn(folder_), (std::vector<std::string>{"p.json", "photo.png"})) << "no film";
  words.emplace_back("--force");
  EXPECT_EQ(RunKelto(words).code, 0);
  EXPECT_NE(BytesOf(project).find("\"$schema\": \"project.schema.json\""), std::string::npos)
      << "the same text on every machine";
}

TEST_F(Projects, OptionsOverruleTheProject) {
  Run({"new", photo_, "-o", folder_ / "p.json", "--size", "64x36", "--frames", "9", "--from", "2"});
  EXPECT_EQ(
      FilmOf(folder_ / "p.json", {"--frames", "5", "--from", "3", "--filter", "cubic"}),
      FilmOf(photo_, {"--size", "64x36", "--frames", "5", "--from", "3", "--filter", "cubic"}));
}

TEST_F(Projects, ANewProjectRendersAMoveIn) {
  Run({"new", photo_, "-o", folder_ / "p.json", "--size", "64x36", "--frames", "4"});
  EXPECT_EQ(FilmOf(folder_ / "p.json"),
            FilmOf(photo_, {"--size", "64x36", "--frames", "4", "--move", "in"}));
}

TEST_F(Projects, ANewProjectIsNamedAfterThePhotoAndReplacesNothingUnasked) {
  std::filesystem::current_path(folder_ / "");
  Run({"new", "photo.png"});
  EXPECT_NE(BytesOf("photo.json").find("\"image\": \"photo.png\""), std::string::npos);
  std::ofstream("photo.json") << "mine";
  const Outcome refused = RunKelto({"new", "photo.png"});
  EXPECT_EQ(refused.code, 2);
  EXPECT_TRUE(IsOneLine(refused.err)) << refused.err;
  EXPECT_EQ(BytesOf("photo.json"), "mine");
  Run({"new", "photo.png", "--force"});
  EXPECT_NE(BytesOf("photo.json"), "mine");
  EXPECT_EQ(NamesIn(folder_), (std::vector<std::string>{"photo.json", "photo.png"}));
  std::filesystem::current_path("/");
}

TEST_F(Projects, AFolderIsNotWhatForceReplaces) {
  std::filesystem::create_directory(folder_ / "d.json");
  for (const Words& force : {Words{}, Words{"--force"}}) {
    Words words{"new", photo_, "-o", folder_ / "d.json"};
    words.insert(words.end(), force.begin(), force.end());
    const Outcome outcome = RunKelto(words);
    EXPECT_NE(outcome.code, 0);
    EXPECT_EQ(outcome.err,
              "kelto: " + (folder_ / "d.json") + ": is a folder; give it a file name\n");
  }
}

TEST_F(Projects, APlanThatNoProjectHoldsIsToldByTheProjectsName) {
  const std::string odd = folder_ / "caf\xe9.png";
  std::filesystem::copy_file(photo_, odd);
  const Outcome outcome = RunKelto({"new", odd, "-o", folder_ / "p.json"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
  EXPECT_TRUE(
      outcome.err.starts_with("kelto: " + (folder_ / "p.json") + ": cannot be kept as a project: "))
      << outcome.err;
}

TEST_F(Projects, WhatAProjectSaysIsNotBlamedOnOptions) {
  std::ofstream(folder_ / "p.json") << R"({"image": "photo.png", "film":
      {"width": 64, "height": 38, "rate": 25, "frames": 1, "fields": "top"}})";
  const auto fault = [&](const char* film, const Words& more = {}) {
    Words words{"render", folder_ / "p.json", "-o", folder_ / film};
    words.insert(words.end(), more.begin(), more.end());
    return RunKelto(words).err;
  };
  const std::string project = "kelto: " + (folder_ / "p.json") + ": ";
  EXPECT_TRUE(fault("f.webm").starts_with(project + "--fields: vp9 holds whole frames only; "))
      << fault("f.webm");
  EXPECT_NE(fault("f.webm").find("or --fields progressive"), std::string::npos);
  EXPECT_EQ(fault("f.webm", {"--fields", "progressive"}), "");
  EXPECT_TRUE(fault("f.mp4").starts_with(project + "--size 64x38: ")) << fault("f.mp4");
  // What was given is told as such.
  EXPECT_TRUE(fault("f.webm", {"--fields", "top"}).starts_with("kelto: --fields: "));
  EXPECT_TRUE(fault("f.mp4", {"--size", "64x38"}).starts_with("kelto: --size 64x38: "));
}

TEST_F(Projects, ANewProjectNeedsAPhotoAndSparesIt) {
  for (const Words& words : {Words{"new", folder_ / "no.jpg", "-o", folder_ / "p.json"},
                             Words{"new", photo_, "-o", photo_, "--force"}}) {
    const std::string before = BytesOf(photo_);
    const Outcome outcome = RunKelto(words);
    EXPECT_NE(outcome.code, 0);
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    EXPECT_EQ(BytesOf(photo_), before);
  }
  EXPECT_EQ(NamesIn(folder_), std::vector<std::string>{"photo.png"});
}

TEST_F(Projects, AProjectNeedsANameThatItIsReadBackBy) {
  for (const Words& words :
       {Words{"new", photo_, "-o", folder_ / "p.txt"},
        Words{"render", photo_, "-o", folder_ / "f.y4m", "--save-project", folder_ / "project"}}) {
    const Outcome outcome = RunKelto(words);
    EXPECT_EQ(outcome.code, 2);
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    EXPECT_NE(outcome.err.find(".json"), std::string::npos) << outcome.err;
  }
  EXPECT_EQ(NamesIn(folder_), std::vector<std::string>{"photo.png"});
}

TEST_F(Projects, AnotherSizeKeepsTheShapeThatAProjectIsShownIn) {
  std::ofstream(folder_ / "wide.json") << R"({"image": "photo.png", "film":
      {"width": 720, "height": 576, "rate": 25, "frames": 1, "displayAspect": "16:9"}})";
  struct {
    const char *size, *pixels;
  } films[] = {{"720x576", " A64:45 "}, {"640x360", " A1:1 "}, {"640x480", " A4:3 "}};
  for (const auto& film : films) {
    Run({"render", folder_ / "wide.json", "-o", folder_ / "f.y4m", "--size", film.size});
    const std::string bytes = BytesOf(folder_ / "f.y4m");
    EXPECT_NE(bytes.substr(0, 80).find(film.pixels), std::string::npos) << bytes.substr(0, 80);
  }
}

TEST_F(Projects, AnotherVideoBringsItsOwnSound) {
  // Of two lengths, and the second without sound.
  ASSERT_EQ(RunShell("cd '" + (folder_ / "") +
                     "' && ffmpeg -v error -f lavfi -i testsrc2=s=64x36:d=1 -f lavfi -i sine=d=1 "
                     "a.mp4 && ffmpeg -v error -f lavfi -i testsrc2=s=64x36:d=2 b.mp4")
                .err,
            "");
  Run({"new", photo_, "-o", folder_ / "p.json", "--over", folder_ / "a.mp4"});
  const std::string both = BytesOf(folder_ / "p.json");
  EXPECT_NE(both.find("\"audio\": \"a.mp4\""), std::string::npos) << both;
  Run({"new", folder_ / "p.json", "-o", folder_ / "q.json", "--over", folder_ / "b.mp4"});
  EXPECT_EQ(BytesOf(folder_ / "q.json").find("\"audio\""), std::string::npos);
  Run({"new", folder_ / "p.json", "-o", folder_ / "r.json", "--over", folder_ / "b.mp4", "--audio",
       folder_ / "a.mp4"});
  EXPECT_NE(BytesOf(folder_ / "r.json").find("\"audio\": \"a.mp4\""), std::string::npos);
}

TEST_F(Projects, NoCommandWritesOverAFileThatItReadsOrWritesBesides) {
  std::ofstream(folder_ / "p.json") << R"({"image": "photo.png"})";
  const std::string film = folder_ / "f.y4m", project = folder_ / "p.json";
  for (const Words& words : {Words{"storyboard", photo_, "-o", photo_},
                             {"storyboard", project, "-o", photo_},
                             {"inspect", photo_, "--plot", photo_},
                             {"render", photo_, "-o", film, "--record", photo_},
                             {"render", project, "-o", film, "--record", photo_},
                             {"render", project, "-o", project, "--format", "y4m"},
                             {"render", photo_, "-o", film, "--record", film},
                             {"render", photo_, "-o", folder_ / "f.json", "--format", "y4m",
                              "--save-project", folder_ / "f.json"}}) {
    const std::string photo = BytesOf(photo_), text = BytesOf(project);
    const Outcome outcome = RunKelto(words);
    EXPECT_EQ(outcome.code, 2) << words[0] << " " << words.back();
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    EXPECT_NE(outcome.err.find("another name"), std::string::npos) << outcome.err;
    EXPECT_EQ(BytesOf(photo_), photo);
    EXPECT_EQ(BytesOf(project), text);
  }
  EXPECT_EQ(NamesIn(folder_), (std::vector<std::string>{"p.json", "photo.png"}));
}

TEST_F(Projects, AFaultyProjectIsToldByFileAndField) {
  std::ofstream(folder_ / "p.json")
      << R"({"image": "photo.png", "parameters": {"filter": {"value": "Lens"}}})";
  const Outcome outcome = RunKelto({"render", folder_ / "p.json", "-o", folder_ / "f.bgra"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
  EXPECT_EQ(
      outcome.err.find("kelto: " + (folder_ / "p.json") +
                       ": parameters.filter.value: \"Lens\" is not one of \"Filter: Real Time\""),
      0u)
      << outcome.err;
}

TEST_F(Projects, MissingPhotosAreToldByTheirOwnName) {
  std::ofstream(folder_ / "p.json") << R"({"image": "gone.png"})";
  const Outcome outcome = RunKelto({"render", folder_ / "p.json", "-o", folder_ / "f.bgra"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_NE(outcome.err.find(folder_ / "gone.png"), std::string::npos) << outcome.err;
}

TEST_F(Projects, AnAreaOfThePhotoIsAView) {
  const auto film = Ends({"--from", "100,40,80,45", "--to", "20,0,160,90"});
  EXPECT_NEAR(Column(film[0], 0), 100, 3);
  EXPECT_NEAR(Column(film[0], 159), 179, 3);
  EXPECT_NEAR(Row(film[0], 0), 40, 3);
  EXPECT_NEAR(Row(film[0], 89), 84, 3);
  EXPECT_NEAR(Column(film[1], 0), 20, 3);
  EXPECT_NEAR(Row(film[1], 89), 89, 3);
}

TEST_F(Projects, AnAreaTooSmallForTheClosestZoomIsWidenedAloud) {
  // Zoom 1 shows 200 columns of the photo, and zoom 20 a twentieth of them.
  for (const char* option : {"--view", "--from", "--to"}) {
    const Outcome widened = Render(photo_, folder_ / "f.y4m", {option, "100,40,4,3"});
    EXPECT_EQ(widened.code, 0);
    EXPECT_EQ(widened.err, std::string("kelto: ") + option +
                               " 100,40,4,3: is widened to 10x6.667 pixels of the photo; zoom 20 "
                               "goes no closer\n");
  }
  EXPECT_EQ(Render(photo_, folder_ / "f.y4m", {"--view", "100,40,80,20"}).err, "");
  EXPECT_EQ(Render(photo_, folder_ / "f.y4m", {"--view", "20"}).err, "");
}

TEST_F(Projects, PixelsOfAPhotoTakenOnItsSideAreThoseOfTheUprightPicture) {
  // Stored lying: 100 x 200, red from top to bottom, green from right to left.
  WriteJpeg(folder_ / "lying.jpg", MakePicture(100, 200, [](int x, int y) {
              return Rgb{uint8_t(y), uint8_t(2 * (99 - x)), 128};
            }));
  std::string bytes = BytesOf(folder_ / "lying.jpg");
  // Orientation 8: to be turned left.
  const char mark[] =
      "\xff\xe1\0\x22"
      "Exif\0\0II*\0\x08\0\0\0\x01\0\x12\x01\x03\0\x01\0\0\0\x08\0\0\0\0\0\0\0";
  bytes.insert(2, mark, sizeof mark - 1);
  std::ofstream(folder_ / "lying.jpg", std::ios::binary) << bytes;
  Run({"render", folder_ / "lying.jpg", "-o", folder_ / "e%d.png", "--size", "160x90", "--frames",
       "1", "--filter", "triangle", "--view", "100,40,80,45"});
  const Picture frame = ReadPng(folder_ / "e0.png");
  EXPECT_NEAR(Column(frame, 0), 100, 4);
  EXPECT_NEAR(Column(frame, 159), 179, 4);
  EXPECT_NEAR(Row(frame, 0), 40, 4);
  EXPECT_NEAR(Row(frame, 89), 84, 4);
}

TEST_F(Projects, ViewsAreKeysEvenlySpacedAndOneStandsStill) {
  const auto still = Ends({"--view", "100,40,80,45"});
  EXPECT_EQ(still[0].bytes, still[1].bytes);
  EXPECT_NEAR(Column(still[0], 0), 100, 3);
  Run({"render", photo_, "-o", folder_ / "g%d.png", "--size", "160x90", "--frames", "5", "--filter",
       "triangle", "--view", "0,0,80,45", "--view", "120,0,80,45", "--view", "2@0,0"});
  EXPECT_NEAR(Column(ReadPng(folder_ / "g0.png"), 0), 0, 3);
  EXPECT_NEAR(Column(ReadPng(folder_ / "g2.png"), 0), 120, 3);
  EXPECT_NEAR(Column(ReadPng(folder_ / "g4.png"), 0), 50, 3);
}

TEST_F(Projects, FitShowsNothingButPhotoOrAllOfIt) {
  // Wider than the frame: whole has bars above and below.
  const auto fill = Ends({"--move", "hold", "--fit", "fill"});
  const auto whole = Ends({"--move", "hold", "--fit", "whole"});
  EXPECT_EQ(fill[0].bytes, fill[1].bytes);
  EXPECT_NEAR(Row(fill[0], 0), 0, 3);
  EXPECT_NEAR(Column(fill[0], 0), 11, 4);
  EXPECT_LE(Distance(whole[0].At(80, 1), {0, 0, 0}), 3);
  EXPECT_NEAR(Column(whole[0], 1), 1, 4);
  EXPECT_NEAR(Column(whole[0], 158), 198, 4);
}

TEST_F(Projects, AMoveAcrossGoesToThePhotosEnds) {
  const auto film = Ends({"--move", "right"});
  EXPECT_NEAR(Column(film[0], 0), 0, 3);
  EXPECT_NEAR(Column(film[1], 159), 199, 3);
  const Outcome outcome = Render(photo_, folder_ / "x.bgra", {"--move", "sideways"});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
}

TEST_F(Projects, AnAutomaticMoveIsTheSameEveryTime) {
  const Words words{"--size", "64x36", "--frames", "3", "--move", "auto"};
  EXPECT_EQ(FilmOf(photo_, words), FilmOf(photo_, words));
}

TEST_F(Projects, MovesAndViewsExcludeEachOther) {
  for (const Words& words :
       {Words{"--move", "in", "--from", "2"}, Words{"--view", "2", "--to", "2"},
        Words{"--fit", "fill", "--view", "2"}}) {
    const Outcome outcome = Render(photo_, folder_ / "x.bgra", words);
    EXPECT_EQ(outcome.code, 2);
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
  }
}

}  // namespace
}  // namespace kelto::test
