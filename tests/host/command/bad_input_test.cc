// What the command does with what it cannot do: one line, an exit code, and nothing left behind.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "tests/host/command/run.h"

namespace kelto::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr int kFailed = 1;
constexpr int kMisused = 2;

Picture Noise(int width, int height) {
  return MakePicture(width, height, [](int x, int y) {
    const unsigned mixed = (x * 7919u + y * 104729u) * 2654435761u;
    return Rgb{uint8_t(mixed >> 8), uint8_t(mixed >> 16), uint8_t(mixed >> 24)};
  });
}

class BadInput : public testing::Test {
 protected:
  BadInput() { WritePng(photo_, Noise(40, 30)); }

  /// Renders to film.mp4 and expects it to fail with one line that holds `hint`.
  void ExpectRefused(const std::string& photo, int code, const std::string& hint,
                     const Words& more = {}) {
    const Outcome outcome = Render(photo, films_ / "film.mp4", more);
    EXPECT_EQ(outcome.code, code);
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr(hint));
    EXPECT_THAT(NamesIn(films_), IsEmpty());
  }
  void ExpectMisuse(const std::string& hint, const Words& more) {
    ExpectRefused(photo_, kMisused, hint, more);
  }

  TempFolder photos_, films_;
  const std::string photo_ = photos_ / "photo.png";
};

TEST_F(BadInput, NoSuchPhoto) {
  ExpectRefused(photos_ / "none.jpg", kFailed, photos_ / "none.jpg: there is no such file");
}

TEST_F(BadInput, ATextNamedLikeAPicture) {
  std::ofstream(photos_ / "text.jpg") << "Dear diary, today I took no photographs at all.\n";
  ExpectRefused(photos_ / "text.jpg", kFailed, photos_ / "text.jpg: cannot be read as a picture");
}

TEST_F(BadInput, ThePhotoIsNamedOnce) {
  std::ofstream(photos_ / "text.jpg") << "No picture.\n";
  const std::string line = Render(photos_ / "text.jpg", films_ / "film.mp4").err;
  EXPECT_EQ(line.find(photos_ / "text.jpg"), line.rfind(photos_ / "text.jpg")) << line;
}

TEST_F(BadInput, AnEmptyFile) {
  std::ofstream(photos_ / "empty.jpg").flush();
  ExpectRefused(photos_ / "empty.jpg", kFailed, "cannot be read as a picture");
}

TEST_F(BadInput, ATruncatedJpeg) {
  const std::string path = photos_ / "cut.jpg";
  WriteJpeg(path, Noise(400, 300));
  fs::resize_file(path, fs::file_size(path) / 2);
  ExpectRefused(path, kFailed, path + ": cannot be read as a picture");
}

TEST_F(BadInput, ATruncatedPng) {
  const std::string path = photos_ / "cut.png";
  WritePng(path, Noise(400, 300));
  fs::resize_file(path, fs::file_size(path) / 2);
  ExpectRefused(path, kFailed, path + ": cannot be read as a picture");
}

TEST_F(BadInput, APngOf40000PixelsAcross) {
  WritePng(photos_ / "wide.png", MakePicture(40000, 2, [](int, int) { return Rgb{9, 9, 9}; }));
  ExpectRefused(photos_ / "wide.png", kFailed, "cannot be read as a picture");
}

TEST_F(BadInput, AFolderForAPhoto) { ExpectRefused(photos_ / "", kFailed, "is a folder"); }

TEST_F(BadInput, ATruncatedPhotoIsFoundOutInEveryFormat) {
  const std::string path = photos_ / "cut.jpg";
  WriteJpeg(path, Noise(400, 300));
  fs::resize_file(path, fs::file_size(path) / 2);
  for (const char* name : {"f.mkv", "f.mov", "f%d.png", "f.y4m", "f.yuyv", "f.bgra"}) {
    for (const char* mode : {"0", "1"}) {
      const Outcome outcome = Render(path, films_ / name, {"--play-mode", mode});
      EXPECT_EQ(outcome.code, kFailed) << name;
      EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
      EXPECT_THAT(NamesIn(films_), IsEmpty());
    }
  }
}

TEST_F(BadInput, ABlackAndAWhitePhotoAreNotTakenForMissing) {
  for (const uint8_t level : {uint8_t{0}, uint8_t{255}}) {
    WritePng(photos_ / "flat.png", MakePicture(50, 70, [&](int, int) {
               return Rgb{level, level, level};
             }));
    EXPECT_EQ(Render(photos_ / "flat.png", films_ / "film.mp4").err, "");
  }
}

TEST_F(BadInput, PhotosOfAnyShapeAreNotTakenForMissing) {
  for (const auto& [width, height] :
       {std::pair{1, 1}, {2, 2}, {1, 300}, {300, 1}, {3000, 2}, {2, 3000}, {20000, 3}, {97, 89}}) {
    WritePng(photos_ / "shape.png", Noise(width, height));
    for (const char* size : {"96x64", "64x96", "2x2"}) {
      const Outcome outcome = Render(photos_ / "shape.png", films_ / "film.mp4", {"--size", size});
      EXPECT_EQ(outcome.err, "") << width << "x" << height << " in " << size;
      EXPECT_EQ(outcome.code, 0);
    }
  }
}

TEST_F(BadInput, APhotoBeyondTheEffectsReach) {
  std::string deep = photos_ / "deep";
  while (deep.size() <= 255) deep.append("/").append(60, 'd');
  fs::create_directories(deep);
  fs::copy_file(photo_, deep + "/photo.png");
  ExpectRefused(deep + "/photo.png", kFailed, "the effect takes 255");
}

TEST_F(BadInput, OutputsThatCannotBe) {
  std::ofstream(films_ / "file").flush();
  fs::create_directory(films_ / "folder.mp4");
  for (const std::string& out : {films_ / "none/film.mp4", films_ / "file/film.mp4",
                                 films_ / "folder.mp4", films_ / "none/f.png"}) {
    const Outcome outcome = Render(photo_, out, {"--frames", "1"});
    EXPECT_EQ(outcome.code, kFailed) << out;
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr(out));
  }
  EXPECT_THAT(NamesIn(films_), ElementsAre("file", "folder.mp4"));
}

TEST_F(BadInput, ThePhotoItselfForOutput) {
  const std::string before = BytesOf(photo_);
  for (const Words& out : {Words{photo_}, Words{photos_ / "./photo.png"}}) {
    const Outcome outcome = Render(photo_, out[0], {"--format", "mp4"});
    EXPECT_EQ(outcome.code, kMisused);
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
  }
  EXPECT_EQ(BytesOf(photo_), before);
}

TEST_F(BadInput, SizesThatAreNone) {
  for (const char* size : {"0x0", "1x1", "abc", "1920", "-2x2", "99999x2", "", "%s%s%sx%n"}) {
    ExpectMisuse("--size", {"--size", size});
  }
}

TEST_F(BadInput, OddSizesForH264) {
  ExpectMisuse("such as 1920x1080", {"--size", "1921x1081"});
  ExpectMisuse("multiple of 4", {"--size", "720x486", "--fields", "bottom"});
}

TEST_F(BadInput, ViewsThatAreNone) {
  for (const char* option : {"--from", "--to"}) {
    for (const char* view : {"nonsense", "0", "0.09", "21", "2@", "2@1", "nan", "1@0,nan"}) {
      ExpectMisuse(option, {option, view});
    }
  }
}

TEST_F(BadInput, OtherOptionsThatAreNone) {
  ExpectMisuse("--fps", {"--fps", "0"});
  ExpectMisuse("--fps", {"--fps", "fast"});
  ExpectMisuse("--frames", {"--frames", "0"});
  ExpectMisuse("--seconds", {"--seconds", "-1"});
  ExpectMisuse("--seconds", {"--seconds", "1e12"});
  ExpectMisuse("--frames", {"--seconds", "1", "--frames", "3"});
  ExpectMisuse("realtime, triangle", {"--filter", "best"});
  ExpectMisuse("linear, ease, constant", {"--in", "hold"});
  ExpectMisuse("linear, ease, constant, hold", {"--out", "Hold"});
  ExpectMisuse("linear, spline", {"--path", "round"});
  ExpectMisuse("rgb, 601", {"--levels", "709"});
  ExpectMisuse("source, target", {"--display", "both"});
  ExpectMisuse("top, bottom, progressive", {"--fields", "both"});
  ExpectMisuse("--background", {"--background", "red"});
  ExpectMisuse("--play-mode", {"--play-mode", "x"});
  ExpectMisuse("mp4, mkv", {"--format", "avi"});
  ExpectMisuse("--wrong", {"--wrong"});
}

TEST_F(BadInput, OutputsWithoutAKind) {
  for (const char* out : {"film", "film.avi", "-"}) {
    const Outcome outcome = Render(photo_, out);
    EXPECT_EQ(outcome.code, kMisused) << out;
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr("y4m"));
    EXPECT_EQ(outcome.out, "");
  }
}

TEST_F(BadInput, PatternsThatAreNone) {
  for (const char* name : {"f%s.png", "f%n%d.png", "%d%d.png", "still.png"}) {
    const Outcome outcome = Render(photo_, films_ / name);
    EXPECT_EQ(outcome.code, kMisused) << name;
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
  }
  EXPECT_THAT(NamesIn(films_), IsEmpty());
}

TEST_F(BadInput, NoArgumentsOrTooFew) {
  for (const Words& words :
       {Words{}, {"render"}, {"render", photo_}, {"render", "-o", "x.mp4"}, {"paint", photo_}}) {
    const Outcome outcome = RunKelto(words);
    EXPECT_EQ(outcome.code, kMisused);
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
  }
}

TEST_F(BadInput, WordsTooManyAreNamedWithThePageToRead) {
  ExpectMisuse("unknown option --zoom; see kelto render --help", {"--zoom", "3", "other.jpg"});
  ExpectMisuse("unknown option --sise; did you mean --size?; see kelto render --help",
               {"--sise=3x3"});
  ExpectMisuse("unknown option -dash.jpg; if it is a file, write ./-dash.jpg; see", {"-dash.jpg"});
  EXPECT_EQ(RunKelto({"render", "-dash.jpg", "-o", "f.mp4"}).err,
            "kelto: unknown option -dash.jpg; if it is a file, write ./-dash.jpg; see kelto render "
            "--help\n");
  ExpectMisuse(
      "not expected: other.jpg; a film is made of one photo; kelto slideshow and kelto "
      "batch take many",
      {"other.jpg"});
  const Outcome none = RunKelto({"doctor", "--frames", "2"});
  EXPECT_EQ(none.err, "kelto: unknown option --frames; see kelto doctor --help\n");
  EXPECT_THAT(RunKelto({"render"}).err, HasSubstr("; see kelto render --help\n"));
  EXPECT_THAT(RunKelto({"--bogus"}).err, HasSubstr("unknown option --bogus; see kelto --help\n"));
}

TEST_F(BadInput, TheFilmBehindTheOptionOfMotionIsUnderstood) {
  const std::string hint =
      "kelto: --out film.mp4: --out says how the move leaves the first view; name the film with "
      "-o film.mp4\n";
  EXPECT_EQ(RunKelto({"render", photo_, "--out", "film.mp4"}).err, hint);
  EXPECT_EQ(RunKelto({"slideshow", photo_, "--out=film.mp4"}).err, hint);
}

TEST_F(BadInput, AnOptionWhereAFileShouldBe) {
  for (const char* command : {"render", "slideshow", "new"}) {
    const Outcome outcome = RunKelto({command, photo_, "-o", "--frames", "2"});
    EXPECT_EQ(outcome.code, kMisused);
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr("--output: lacks its FILE; --frames is an option"));
  }
}

TEST_F(BadInput, TwoFilesForTheStandardOutput) {
  for (const char* option : {"--save-project", "--record"}) {
    const Outcome outcome = Render(photo_, "-", {"--format", "y4m", option, "-"});
    EXPECT_EQ(outcome.code, kMisused);
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr(std::string("-o and ") + option + " cannot both be -"));
  }
}

TEST_F(BadInput, ACommandThatIsNone) {
  const Outcome outcome = RunKelto({"redner", photo_});
  EXPECT_EQ(outcome.code, kMisused);
  EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
  EXPECT_THAT(outcome.err,
              HasSubstr("there is no command \"redner\"; there are render, new, batch"));
}

TEST_F(BadInput, AReaderThatHasSeenEnoughIsNone) {
  const Outcome outcome =
      RunShell("\"$0\" inspect '" + photo_ + "' --csv --frames 20000 | head -n 2");
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 2) << outcome.out;
}

TEST_F(BadInput, EmptyNames) {
  for (const auto& [photo, out] : {std::pair{std::string(), films_ / "film.mp4"}, {photo_, ""}}) {
    const Outcome outcome = Render(photo, out, {"--format", "mp4"});
    EXPECT_EQ(outcome.code, kMisused);
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr("is empty"));
  }
}

TEST_F(BadInput, AModuleThatIsNone) {
  ExpectRefused(photo_, kFailed, "no such file", {"--module", photos_ / "none.hfx"});
  ExpectRefused(photo_, kFailed, photo_, {"--module", photo_});
}

TEST_F(BadInput, AFullDisk) {
  for (const char* format : {"bgra", "y4m", "mkv", "mp4", "png"}) {
    const Outcome outcome = RunKelto(
        {"render", photo_, "-o", "-", "--format", format, "--size", "96x64", "--frames", "3"},
        "/dev/full");
    EXPECT_EQ(outcome.code, kFailed) << format;
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr("standard output"));
  }
}

TEST_F(BadInput, AFullDiskUnderAListOrAScript) {
  for (const Words& words : {Words{"inspect", photo_, "--csv"},
                             {"batch", photos_ / "", "-o", films_ / "", "--plan"},
                             {"completion", "bash"},
                             {"doctor"},
                             {"--version"},
                             {"render", "--help"}}) {
    const Outcome outcome = RunKelto(words, "/dev/full");
    EXPECT_EQ(outcome.code, kFailed) << words[0];
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr("standard output: cannot be written"));
  }
}

TEST_F(BadInput, AFailureKeepsTheFilmThatWasThere) {
  std::ofstream(films_ / "film.mp4") << "old";
  EXPECT_EQ(Render(photos_ / "none.jpg", films_ / "film.mp4").code, kFailed);
  const std::string cut = photos_ / "cut.jpg";
  WriteJpeg(cut, Noise(400, 300));
  fs::resize_file(cut, fs::file_size(cut) / 2);
  EXPECT_EQ(Render(cut, films_ / "film.mp4").code, kFailed);
  EXPECT_EQ(BytesOf(films_ / "film.mp4"), "old");
  EXPECT_THAT(NamesIn(films_), ElementsAre("film.mp4"));
}

}  // namespace
}  // namespace kelto::test
