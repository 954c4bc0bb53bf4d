// Shows of pictures that people have: named one by one, numbered, some of them broken.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>

#include "tests/host/command/run.h"
#include "tests/host/support/film_reader.h"
#include "tests/host/support/sounds.h"

namespace kelto::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr Rgb kRed{200, 40, 40}, kGreen{40, 200, 40}, kBlue{40, 40, 200};

class Shows : public testing::Test {
 protected:
  Shows() {
    Photo("IMG_1.png", kRed);
    Photo("IMG_2.png", kGreen);
    Photo("IMG_10.png", kBlue);
  }
  void Photo(const std::string& name, Rgb colour) {
    WritePng(photos_ / name, MakePicture(48, 32, [&](int, int) { return colour; }));
  }
  Outcome Show(const Words& inputs, const Words& more = {"--fade", "0"}) {
    Words words{"slideshow"};
    words.insert(words.end(), inputs.begin(), inputs.end());
    words.insert(words.end(), {"-o", film_, "--size", "96x64", "--each", "0.08"});
    words.insert(words.end(), more.begin(), more.end());
    return RunKelto(words);
  }
  /// The film's frames as letters: r, g, b, or a point for a mixture.
  std::string Seen() {
    const std::string bytes = BytesOf(film_);
    constexpr size_t kFrame = size_t{4} * 96 * 64;
    std::string letters;
    for (size_t at = kFrame / 2 + 2 * 96; at < bytes.size(); at += kFrame) {
      const Rgb colour{uint8_t(bytes[at + 2]), uint8_t(bytes[at + 1]), uint8_t(bytes[at])};
      letters += Distance(colour, kRed) < 6     ? 'r'
                 : Distance(colour, kGreen) < 6 ? 'g'
                 : Distance(colour, kBlue) < 6  ? 'b'
                                                : '.';
    }
    return letters;
  }
  std::string List(const std::string& text) {
    std::ofstream(photos_ / "list.txt") << text;
    return photos_ / "list.txt";
  }

  TempFolder photos_, films_;
  const std::string film_ = films_ / "f.bgra";
};

TEST_F(Shows, OfAFolderOrAShellsNamesCountAsPeopleDo) {
  ASSERT_EQ(Show({photos_ / ""}).err, "");
  EXPECT_EQ(Seen(), "rrggbb");
  // As a shell orders *.png.
  ASSERT_EQ(Show({photos_ / "IMG_1.png", photos_ / "IMG_10.png", photos_ / "IMG_2.png"}).err, "");
  EXPECT_EQ(Seen(), "rrggbb");
}

TEST_F(Shows, OfNamesInAnOrderOfTheirOwnKeepIt) {
  ASSERT_EQ(Show({photos_ / "IMG_2.png", photos_ / "IMG_1.png"}).err, "");
  EXPECT_EQ(Seen(), "ggrr");
  ASSERT_EQ(
      Show({photos_ / "IMG_10.png", photos_ / "IMG_2.png"}, {"--fade", "0", "--order", "given"})
          .err,
      "");
  EXPECT_EQ(Seen(), "bbgg");
  EXPECT_EQ(Show({photos_ / ""}, {"--order", "size"}).err,
            "kelto: --order size: choose one of natural, given\n");
}

TEST_F(Shows, LeaveOutAPictureWhoseFileEndsEarlyAlsoWhereNothingLooksAtIt) {
  const std::string whole = BytesOf(photos_ / "IMG_2.png");
  std::ofstream(photos_ / "IMG_2.png", std::ios::binary | std::ios::trunc)
      << whole.substr(0, whole.size() * 2 / 3);
  const Outcome outcome = Show({photos_ / ""}, {"--fade", "0", "--move", "in"});
  EXPECT_EQ(outcome.code, 0);
  EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
  EXPECT_THAT(outcome.err, HasSubstr("IMG_2.png: cannot be read as a picture: "));
  EXPECT_THAT(outcome.err, HasSubstr("; it is left out"));
  EXPECT_EQ(Seen(), "rrbb");
}

TEST_F(Shows, LeaveOutABadPictureAndSaySo) {
  std::ofstream(photos_ / "IMG_3.jpg") << "not a picture";
  const Outcome outcome = Show({photos_ / ""});
  EXPECT_EQ(outcome.code, 0);
  EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
  EXPECT_THAT(outcome.err, HasSubstr((photos_ / "IMG_3.jpg") + ": "));
  EXPECT_THAT(outcome.err, HasSubstr("; it is left out"));
  EXPECT_EQ(Seen(), "rrggbb");
}

TEST_F(Shows, AreTheSameHoweverManyProcessesLookAtPhotographs) {
  // The second is left out, so that the moves of those behind it are others than by their numbers.
  std::ofstream(photos_ / "IMG_1b.png") << "no picture";
  const auto show = [&](const char* jobs, const char* move) {
    const std::string project = films_ / (std::string(move) + jobs + ".json");
    const Outcome outcome = Show(
        {photos_ / ""}, {"--fade", "0", "--move", move, "--jobs", jobs, "--save-project", project});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_THAT(outcome.err, HasSubstr("IMG_1b.png")) << "is said to be left out";
    return std::vector<std::string>{outcome.err, BytesOf(project), BytesOf(film_)};
  };
  for (const char* move : {"auto", "mixed"}) {
    const auto alone = show("1", move);
    EXPECT_EQ(show("3", move), alone) << move;
  }
}

TEST_F(Shows, EndWithABadPictureWhereStrictIsAsked) {
  std::ofstream(photos_ / "IMG_3.jpg") << "not a picture";
  const Outcome outcome = Show({photos_ / ""}, {"--strict"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
  EXPECT_THAT(outcome.err, HasSubstr("IMG_3.jpg: "));
  EXPECT_THAT(NamesIn(films_), testing::IsEmpty());
}

TEST_F(Shows, OfBadPicturesAloneFail) {
  const Outcome outcome = Show({photos_ / "none.jpg", photos_ / "nothing.png"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_THAT(outcome.err, HasSubstr("kelto: none of the pictures can be shown\n"));
}

TEST_F(Shows, TakeOptionsOfEachPictureFromTheirList) {
  // The second one is seen for twice as long, and fades.
  const std::string list = List(
      "# a comment\n"
      "IMG_1.png\n"
      "IMG_2.png --each 0.24 --fade 0.08\n"
      "IMG_10.png --each 0.16\n");
  ASSERT_EQ(Show({list}).err, "");
  EXPECT_EQ(Seen(), "rrgggg..bb");
}

TEST_F(Shows, TakeTheViewOfALineInPlaceOfTheCommonOne) {
  WritePng(photos_ / "half.png",
           MakePicture(96, 64, [](int x, int) { return x < 48 ? kRed : kBlue; }));
  const std::string list = List(
      "half.png\n"
      "half.png --view 0,0,36,24\n"
      "half.png --view 60,0,36,24 --background '#102030'\n");
  ASSERT_EQ(Show({list}, {"--fade", "0", "--from", "2@-0.2,0", "--to", "2@-0.2,0"}).err, "");
  EXPECT_EQ(Seen(), "rrrrbb");
}

TEST_F(Shows, TakeWhatALineSaysIsBesideThePhotoInPlaceOfTheCommonWord) {
  const std::string colour = List("IMG_1.png --background '#102030'\nIMG_2.png\n");
  EXPECT_EQ(Show({colour}, {"--beside", "blur"}).err, "");
  const std::string blur = List("IMG_1.png --beside blur\nIMG_2.png\n");
  EXPECT_EQ(Show({blur}, {"--background", "#102030"}).err, "");
}

TEST_F(Shows, NameTheLineWhoseOptionsAreWrong) {
  const auto fault = [&](const std::string& options) {
    const Outcome outcome = Show({List("IMG_1.png\nIMG_2.png " + options + "\n")});
    EXPECT_EQ(outcome.code, 2) << options;
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr("list.txt: line 2: ")) << options;
    return outcome.err;
  };
  EXPECT_THAT(fault("--move sideways"), HasSubstr("--move sideways: choose one of"));
  EXPECT_THAT(fault("--size 96x64"), HasSubstr("--size is no option of a picture"));
  EXPECT_THAT(fault("--each 0"), HasSubstr("--each 0: "));
  EXPECT_THAT(fault("--move"), HasSubstr("--move"));
  EXPECT_THAT(fault("--view 0,0,9,6 --from 2"), HasSubstr("--from"));
}

TEST_F(Shows, InBatchesTakeOptionsOfEachPictureFromTheirList) {
  const std::string list = List("IMG_1.png\nIMG_2.png --seconds 0.2 --move left\n");
  const Words batch{"batch",    list, "-o",     films_ / "", "--size",   "96x64",
                    "--frames", "3",  "--move", "in",        "--format", "bgra"};
  ASSERT_EQ(RunKelto(batch).err, "");
  constexpr size_t kFrame = size_t{4} * 96 * 64;
  EXPECT_EQ(std::filesystem::file_size(films_ / "IMG_1.bgra"), 3 * kFrame);
  EXPECT_EQ(std::filesystem::file_size(films_ / "IMG_2.bgra"), 5 * kFrame);
  // A film of its own with the same options is the same, and what is made stays.
  Words plan = batch;
  plan.insert(plan.end(), {"--plan"});
  const std::string tasks = RunKelto(plan).out;
  EXPECT_THAT(tasks, HasSubstr("--seconds 0.2 --move left\n"));
  EXPECT_THAT(tasks, HasSubstr("--frames 3 --move in\n"));
  plan.emplace_back("--resume");
  EXPECT_EQ(RunKelto(plan).out, "");
  List("IMG_1.png\nIMG_2.png --seconds 0.2 --move right\n");
  EXPECT_THAT(RunKelto(plan).err, HasSubstr("IMG_2.bgra has been made with other options"));
}

TEST_F(Shows, InBatchesTakeManyNames) {
  ASSERT_EQ(RunKelto({"batch", photos_ / "IMG_1.png", photos_ / "IMG_2.png", "-o", films_ / "",
                      "--size", "96x64", "--frames", "1", "--format", "bgra"})
                .err,
            "");
  EXPECT_THAT(NamesIn(films_), ElementsAre(".kelto", "IMG_1.bgra", "IMG_2.bgra"));
}

/// A show whose times come from its music.
class ShowsToMusic : public Shows {
 protected:
  std::string Music(double seconds) {
    const std::string path = films_ / "music.wav";
    WriteWav(path, seconds, 8000, 1, [](int, double at) { return std::sin(2000 * at) / 4; });
    return path;
  }
  Outcome ShowTo(double seconds, const Words& inputs, const Words& more) {
    Words words{"slideshow", "-o",          film_ + ".mkv", "--size",
                "96x64",     "--fit-audio", "--audio",      Music(seconds)};
    words.insert(words.end(), inputs.begin(), inputs.end());
    words.insert(words.end(), more.begin(), more.end());
    return RunKelto(words);
  }
  size_t Frames() { return ReadFilm(film_ + ".mkv").frames.size(); }
};

TEST_F(ShowsToMusic, AreAsLongAsItWithoutAWarning) {
  for (const double seconds : {1.0, 1.48}) {
    for (const Words& fade : {Words{}, {"--fade", "0"}, {"--fade", "0.16"}}) {
      const Outcome outcome = ShowTo(seconds, {photos_ / ""}, fade);
      EXPECT_EQ(outcome.err, "");
      EXPECT_EQ(Frames(), std::lround(seconds * 25)) << seconds;
    }
  }
}

TEST_F(ShowsToMusic, AreSeenMostOfTheTimeWithoutAFade) {
  ASSERT_EQ(ShowTo(2.4, {photos_ / ""}, {}).err, "");
  const DecodedFilm film = ReadFilm(film_ + ".mkv");
  ASSERT_EQ(film.frames.size(), 60u);
  int alone = 0;
  for (const DecodedFrame& frame : film.frames) {
    const Rgb seen = ColourAt(frame, film.matrix, 48, 32);
    for (const Rgb colour : {kRed, kGreen, kBlue}) alone += Distance(seen, colour) < 14 ? 1 : 0;
  }
  EXPECT_GE(alone, 44) << "two fades of five frames, where half of each would be ten and more";
}

TEST_F(ShowsToMusic, LeaveALineItsOwnTime) {
  const std::string list = List("IMG_1.png --each 0.2\nIMG_2.png\n");
  ASSERT_EQ(ShowTo(1.0, {list}, {"--fade", "0"}).err, "");
  const DecodedFilm film = ReadFilm(film_ + ".mkv");
  ASSERT_EQ(film.frames.size(), 25u);
  for (size_t i = 0; i < 25; ++i) {
    const Rgb seen = ColourAt(film.frames[i], film.matrix, 48, 32);
    EXPECT_LT(Distance(seen, i < 5 ? kRed : kGreen), 24) << i << ": " << ToString(seen);
  }
}

TEST_F(ShowsToMusic, AreCutOnItsBeats) {
  // What stands in for the finder of beats says that they are in frames 3, 6 and 9.
  const std::string finder = films_ / "aubiotrack";
  std::ofstream(finder) << "#!/bin/sh\n[ \"$1\" = -i ] && [ -f \"$2\" ] && "
                           "printf '0.12\\n0.24\\n0.36\\n'\n";
  std::filesystem::permissions(finder, std::filesystem::perms::owner_all);
  const std::string music = Music(0.6), project = films_ / "show.json";
  const std::string show = "\"$0\" slideshow '" + (photos_ / "") + "' -o '" + (films_ / "f.mkv") +
                           "' --size 96x64 --each 0.2 --fade 0 --force " +
                           "--quiet --save-project '" + project + "' --audio '" + music + "'";
  const auto eaches = [&] {
    const std::string text = BytesOf(project);
    std::string found;
    for (size_t at = 0; (at = text.find("\"each\": ", at)) != std::string::npos;) {
      at += 8;
      found += text.substr(at, text.find_first_of(",\n", at) - at) + " ";
    }
    return found;
  };
  EXPECT_EQ(RunShell(show).err, "");
  EXPECT_EQ(eaches(), "0.2 ");
  const std::string path = "PATH='" + (films_ / "") + "':$PATH ";
  EXPECT_EQ(RunShell(path + show + " --beats").err, "");
  EXPECT_EQ(eaches(), "0.24 0.12 0.24 ") << "cuts in frames 6 and 9 in place of 5 and 10";
  EXPECT_THAT(
      RunShell(path + "\"$0\" inspect '" + (photos_ / "") + "' --beats --audio '" + music + "'")
          .out,
      HasSubstr("beats:  3 beats, 500.0 a minute\n"));
  const Outcome missing = RunShell("PATH=/nowhere " + show + " --beats");
  EXPECT_NE(missing.code, 0);
  EXPECT_TRUE(IsOneLine(missing.err)) << missing.err;
  EXPECT_THAT(missing.err, HasSubstr("the package aubio-tools has it"));
  EXPECT_THAT(Show({photos_ / ""}, {"--beats"}).err, HasSubstr("--beats: there is no sound"));
}

TEST_F(ShowsToMusic, SayWhatDoesNotFit) {
  EXPECT_EQ(ShowTo(0.08, {photos_ / ""}, {"--fade", "0"}).err,
            "kelto: --fit-audio: 3 pictures do not fit into the 2 frames of the sound\n");
  EXPECT_THAT(ShowTo(1, {photos_ / ""}, {"--each", "2"}).err, HasSubstr("excludes"));
  EXPECT_EQ(
      ShowTo(1, {photos_ / ""}, {"--fade", "0.4"}).err,
      "kelto: --fade 0.4: two fades do not fit into --each 0.48; --fade 0.24 is the longest\n");
  EXPECT_EQ(Show({photos_ / ""}, {"--fit-audio"}).code, 2);
}

TEST_F(ShowsToMusic, AndFilmsOfOnePhotographAreAsLongAsTheirs) {
  const Outcome outcome = RunKelto({"render", photos_ / "IMG_1.png", "-o", film_ + ".mkv", "--size",
                                    "96x64", "--audio", Music(0.8), "--fit-audio"});
  ASSERT_EQ(outcome.err, "");
  EXPECT_EQ(Frames(), 20u);
  EXPECT_EQ(RunKelto({"render", photos_ / "IMG_1.png", "-o", film_, "--fit-audio"}).err,
            "kelto: --fit-audio: there is no sound; name it with --audio\n");
}

TEST_F(Shows, DipIntoAColourBetweenPictures) {
  const Outcome outcome = RunKelto({"slideshow", photos_ / "IMG_1.png", photos_ / "IMG_2.png", "-o",
                                    film_, "--size", "96x64", "--each", "0.4", "--fade", "0.2",
                                    "--fade-kind", "dip", "--fade-colour", "#2828c8"});
  ASSERT_EQ(outcome.err, "");
  // Ten frames each, five of which are the dip: red, mixtures, the colour alone, mixtures, green.
  EXPECT_EQ(Seen(), "rrrrr..b..ggggg");
}

TEST_F(Shows, OfAListWithOptionsFadeAsTheCommandLineSays) {
  const std::string list = List("IMG_1.png --each 0.16\nIMG_2.png\n");
  ASSERT_EQ(Show({list}, {"--fade-kind", "none"}).err, "");
  EXPECT_EQ(Seen(), "rrrrgg");
}

TEST_F(Shows, AreCutWhereTheFadeIsNone) {
  const Words both{photos_ / "IMG_1.png", photos_ / "IMG_2.png"};
  ASSERT_EQ(Show(both, {"--fade-kind", "none"}).err, "");
  EXPECT_EQ(Seen(), "rrgg");
  EXPECT_EQ(Show(both, {"--fade-kind", "none", "--fade", "1"}).err,
            "kelto: --fade-kind none: --fade 1 says otherwise; give one of them\n");
  EXPECT_EQ(Show(both, {"--fade-kind", "wipe"}).err,
            "kelto: --fade-kind wipe: choose one of cross, dip, none\n");
}

}  // namespace
}  // namespace kelto::test
