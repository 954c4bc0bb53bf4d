// A slideshow as one project: saved from options, made again, changed by hand.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/host/command/run.h"

namespace kelto::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class ShowAsProject : public testing::Test {
 protected:
  ShowAsProject() {
    for (const char* name : {"a.png", "b.png", "c.png"}) {
      const int shade = 60 * (name[0] - 'a');
      WritePng(folder_ / name, MakePicture(96, 64, [&](int x, int y) {
                 return Rgb{uint8_t(2 * x), uint8_t(3 * y), uint8_t(shade)};
               }));
    }
  }
  std::string File(const std::string& name, const std::string& text) {
    std::ofstream(folder_ / name) << text;
    return folder_ / name;
  }
  /// Makes the show of `inputs` and gives its frames.
  std::string Made(const Words& inputs, const Words& more = {}) {
    Words words{"slideshow"};
    words.insert(words.end(), inputs.begin(), inputs.end());
    words.insert(words.end(), {"-o", film_});
    words.insert(words.end(), more.begin(), more.end());
    const Outcome outcome = RunKelto(words);
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err, "");
    return BytesOf(film_);
  }
  int64_t FramesOf(const std::string& film) const {
    return static_cast<int64_t>(film.size() / (size_t{4} * 96 * 54));
  }

  TempFolder folder_;
  const std::string film_ = folder_ / "film.bgra", saved_ = folder_ / "saved.json";
  const std::string show_ = File("show.json", R"({
    "film": {"width": 96, "height": 54, "rate": 10}, "each": 1, "fade": 0.2, "move": "mixed",
    "pictures": [{"image": "a.png"}, {"image": "b.png", "each": 2, "move": "left"},
                 {"image": "c.png", "views": [{"view": "1", "go": 1}, {"view": "2@0.1,0"}]}]})");
};

TEST_F(ShowAsProject, MakesTheFilmThatItsPicturesSay) {
  const std::string film = Made({show_});
  EXPECT_EQ(FramesOf(film), 10 + 20 + 10 - 2 - 2);
  const std::string list = File("list.txt",
                                "a.png --each 1 --fade 0.2 --move mixed\n"
                                "b.png --each 2 --fade 0.2 --move left\n"
                                "c.png --each 1 --view 1 --go 1 --view 2@0.1,0 --ease smooth\n");
  EXPECT_EQ(Made({list}, {"--size", "96x54", "--fps", "10"}), film) << "as a list says it";
}

TEST_F(ShowAsProject, SavedMakesTheSameFilmAgain) {
  const std::string list = File("list.txt",
                                "a.png --move left --each 1\n"
                                "b.png --view 1 --hold 0.5 --view 2 --each 2 --fade 0.3\nc.png\n");
  const std::string film = Made(
      {list}, {"--size", "96x54", "--fps", "10", "--filter", "triangle", "--save-project", saved_});
  EXPECT_EQ(Made({saved_}), film);
  const std::string again = folder_ / "again.json";
  EXPECT_EQ(Made({saved_}, {"--save-project", again}), film);
  EXPECT_EQ(BytesOf(again), BytesOf(saved_));
  const Outcome twice = RunKelto({"slideshow", list, "-o", film_, "--save-project", saved_});
  EXPECT_THAT(twice.err, HasSubstr("already exists; --force overwrites it"));
}

TEST_F(ShowAsProject, OptionsOverruleIt) {
  EXPECT_EQ(FramesOf(Made({show_}, {"--each", "2", "--fade", "0"})), 60);
  const std::string held = Made({show_}, {"--move", "hold"});
  const size_t frame = size_t{4} * 96 * 54;
  EXPECT_EQ(held.substr(0, frame), held.substr(frame, frame)) << "nothing moves";
  EXPECT_EQ(Made({show_}, {"--size", "48x28"}).size() % (size_t{4} * 48 * 28), 0u);
}

TEST_F(ShowAsProject, IsNoFilmOfOnePictureAndNoPartOfAnotherShow) {
  for (const Words& words :
       {Words{"render", show_, "-o", film_},
        Words{"slideshow", show_, folder_ / "a.png", "--strict", "-o", film_}}) {
    const Outcome outcome = RunKelto(words);
    EXPECT_EQ(outcome.code, 1);
    EXPECT_THAT(outcome.err, StartsWith("kelto: " + show_ + ": pictures: this is a slideshow"));
  }
  EXPECT_FALSE(std::filesystem::exists(film_));
}

TEST_F(ShowAsProject, LeavesOutAPictureThatIsNotThere) {
  std::filesystem::remove(folder_ / "b.png");
  const Outcome outcome = RunKelto({"slideshow", show_, "-o", film_});
  EXPECT_EQ(outcome.code, 0);
  EXPECT_THAT(outcome.err, HasSubstr("b.png: there is no such file; it is left out"));
}

TEST_F(ShowAsProject, ADipIsKeptWithIt) {
  const std::string film = Made({show_}, {"--fade-kind", "dip", "--save-project", saved_});
  EXPECT_NE(Made({show_}), film);
  EXPECT_EQ(Made({saved_}), film);
}

TEST_F(ShowAsProject, IsInspectedAsAWhole) {
  const std::string expected =
      "show:   3 pictures, 3.60 s, 36 frames at 10 fps, 96x54\n\n"
      "  begins     seen     fade  fastest enlargement  photo\n";
  const Outcome outcome = RunKelto({"inspect", show_});
  EXPECT_EQ(outcome.err, "");
  EXPECT_THAT(outcome.out, StartsWith(expected));
  EXPECT_THAT(outcome.out, HasSubstr("\n    0.80     2.00     0.20 "));
  EXPECT_THAT(outcome.out, HasSubstr("b.png, 96x64\n"));
  const Outcome folder = RunKelto({"inspect", folder_ / "", "--each", "2", "--fade", "0"});
  EXPECT_THAT(folder.out, StartsWith("show:   3 pictures, 6.00 s, 150 frames at 25 fps"));
  EXPECT_THAT(RunKelto({"inspect", show_, "--csv"}).err,
              HasSubstr("--csv: is for the film of one"));
  EXPECT_THAT(RunKelto({"inspect", folder_ / "a.png", "--each", "2"}).err,
              HasSubstr("--each: is for shows"));
  EXPECT_THAT(RunKelto({"inspect", show_, "--seconds", "2"}).err,
              HasSubstr("--each says how long those of a show are seen"));
}

TEST_F(ShowAsProject, HasAStoryboardOfAllPictures) {
  const std::string sheet = folder_ / "sheet.png", small = folder_ / "small.png";
  ASSERT_EQ(RunKelto({"storyboard", show_, "-o", sheet}).err, "");
  const std::string list = File("list.txt", "a.png\n");
  ASSERT_EQ(RunKelto({"storyboard", list, "-o", small, "--size", "96x54"}).err, "");
  const Picture three = ReadPng(sheet), one = ReadPng(small);
  EXPECT_EQ(three.width, one.width);
  // A row of frames for each picture, each as tall as the other.
  EXPECT_GT(three.height, 2 * one.height);
  EXPECT_THAT(RunKelto({"storyboard", list, "-o", folder_ / "a.png"}).err, HasSubstr("a.png"));
}

TEST_F(ShowAsProject, IsSeveralPhotographs) {
  const std::string sheet = folder_ / "sheet.png", listed = folder_ / "listed.png";
  const std::string a = folder_ / "a.png", b = folder_ / "b.png", film = folder_ / "ab.bgra";
  const Words size{"--size", "96x54", "--each", "1", "--fade", "0.2"};
  const auto run = [&](Words words) {
    words.insert(words.end(), size.begin(), size.end());
    return RunKelto(words);
  };
  ASSERT_EQ(run({"storyboard", a, b, "-o", sheet}).err, "");
  const std::string list = File("a.png and 1 more", a + "\n" + b + "\n");
  ASSERT_EQ(run({"storyboard", list, "-o", listed}).err, "");
  EXPECT_EQ(BytesOf(sheet), BytesOf(listed)) << "as a list of that name";
  EXPECT_EQ(run({"inspect", a, b}).out, run({"inspect", list}).out);
  EXPECT_THAT(run({"storyboard", a, b, "-o", b}).err, HasSubstr("b.png"));
}

TEST_F(ShowAsProject, HasAStoryboardWithItsCaptions) {
  const std::string list = File("list.txt", "a.png\n");
  const auto sheet = [&](const Words& more) {
    Words words{"storyboard", list, "-o", folder_ / "sheet.png", "--size", "96x54", "--strip", "1"};
    words.insert(words.end(), more.begin(), more.end());
    EXPECT_EQ(RunKelto(words).err, "");
    return ReadPng(folder_ / "sheet.png");
  };
  const Picture without = sheet({}), with = sheet({"--caption", "Sea and sky\\nin May"});
  ASSERT_EQ(without.bytes.size(), with.bytes.size());
  // The frame ends in row 220; its caption, too small to be read there, is written below it, too.
  int inFrame = 0, below = 0;
  for (int y = 0; y < with.height; ++y) {
    for (int x = 0; x < with.width; ++x) {
      if (Distance(with.At(x, y), without.At(x, y)) > 50) ++(y < 220 ? inFrame : below);
    }
  }
  EXPECT_GT(inFrame, 20);
  EXPECT_GT(below, 100);
}

}  // namespace
}  // namespace kelto::test
