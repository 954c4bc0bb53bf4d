// Many pictures in one film.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>

#include "tests/host/command/run.h"
#include "tests/host/support/film_reader.h"
#include "tests/host/support/sounds.h"

namespace kelto::test {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

constexpr int kWidth = 96, kHeight = 64;

class SlideshowCommand : public testing::Test {
 protected:
  SlideshowCommand() {
    int i = 0;
    for (const Rgb colour : {Rgb{200, 40, 40}, Rgb{40, 200, 40}, Rgb{40, 40, 200}}) {
      WritePng(photos_ / ("p" + std::to_string(++i) + ".png"),
               MakePicture(48, 32, [&](int, int) { return colour; }));
    }
  }
  Outcome Show(const std::string& out, Words more) {
    Words words{"slideshow", photos_ / "", "-o", out, "--size", "96x64"};
    words.insert(words.end(), more.begin(), more.end());
    return RunKelto(words);
  }
  /// The middle pixel of each frame of a raw film.
  std::vector<Rgb> Middles(const std::string& film) {
    const std::string bytes = BytesOf(film);
    std::vector<Rgb> colours;
    constexpr size_t kFrame = size_t{4} * kWidth * kHeight;
    for (size_t at = kFrame / 2 + 2 * kWidth; at < bytes.size(); at += kFrame) {
      colours.push_back({uint8_t(bytes[at + 2]), uint8_t(bytes[at + 1]), uint8_t(bytes[at])});
    }
    return colours;
  }

  TempFolder photos_, films_;
};

TEST_F(SlideshowCommand, ShowsEachPictureInTurnWithFadesBetween) {
  // 10 frames each, 4 of them shared by neighbours.
  const Outcome outcome = Show(films_ / "f.bgra", {"--each", "0.4", "--fade", "0.16"});
  ASSERT_EQ(outcome.code, 0) << outcome.err;
  const std::vector<Rgb> seen = Middles(films_ / "f.bgra");
  ASSERT_EQ(seen.size(), 3u * 10 - 2 * 4);
  const Rgb first{200, 40, 40}, second{40, 200, 40}, third{40, 40, 200};
  const auto expect = [&](int frame, Rgb wanted) {
    EXPECT_LE(Distance(seen[frame], wanted), 4) << frame << ": " << ToString(seen[frame]);
  };
  for (int i = 0; i < 6; ++i) expect(i, first);
  for (int i = 0; i < 4; ++i) {
    const int risen = 160 * (i + 1) / 5;
    expect(6 + i, {uint8_t(200 - risen), uint8_t(40 + risen), 40});
    expect(12 + i, {40, uint8_t(200 - risen), uint8_t(40 + risen)});
  }
  expect(10, second);
  expect(11, second);
  for (int i = 16; i < 22; ++i) expect(i, third);
}

TEST_F(SlideshowCommand, MixedMovesAlternateByAFixedRuleAndMoveWhileTheyFade) {
  for (int i = 1; i <= 3; ++i) {
    WritePng(photos_ / ("p" + std::to_string(i) + ".png"), MakePicture(384, 256, [](int x, int y) {
               return Rgb{uint8_t(x / 2), uint8_t(y), 128};
             }));
  }
  const Words mixed{"--each", "0.4", "--fade", "0.16", "--move", "mixed"};
  ASSERT_EQ(Show(films_ / "a.bgra", mixed).err, "");
  ASSERT_EQ(Show(films_ / "b.bgra", mixed).err, "");
  const std::string film = BytesOf(films_ / "a.bgra");
  EXPECT_EQ(film, BytesOf(films_ / "b.bgra"));
  constexpr size_t kFrame = size_t{4} * kWidth * kHeight;
  ASSERT_EQ(film.size(), kFrame * 22);
  // Also from its first frame to its second, and while two are seen.
  for (size_t i = 1; i < 22; ++i) {
    EXPECT_NE(film.substr((i - 1) * kFrame, kFrame), film.substr(i * kFrame, kFrame)) << i;
  }
  // The second picture pans to the right, so red rises; the third goes out, over the middle.
  const std::vector<Rgb> seen = Middles(films_ / "a.bgra");
  EXPECT_GT(seen[11].r, seen[10].r);
}

TEST_F(SlideshowCommand, WithoutFadesCutsFromOneToTheNext) {
  ASSERT_EQ(Show(films_ / "f.bgra", {"--each", "0.2", "--fade", "0"}).err, "");
  EXPECT_EQ(Middles(films_ / "f.bgra").size(), 15u);
}

TEST_F(SlideshowCommand, FadesOfHalfAPhotographsTimeFitWhereHalfIsNoWholeFrame) {
  ASSERT_EQ(Show(films_ / "f.bgra", {"--each", "0.2", "--fade", "0.1"}).err, "");
  EXPECT_EQ(Middles(films_ / "f.bgra").size(), 11u) << "5 frames each, 2 of a fade";
}

TEST_F(SlideshowCommand, FadesThatNobodyAskedForAreAsLongAsFits) {
  ASSERT_EQ(Show(films_ / "f.bgra", {"--each", "0.4"}).err, "");
  EXPECT_EQ(Middles(films_ / "f.bgra").size(), 20u) << "10 frames each, 5 of a fade";
  ASSERT_EQ(Show(films_ / "f.bgra", {"--each", "3"}).err, "");
  EXPECT_EQ(Middles(films_ / "f.bgra").size(), 175u) << "75 frames each, 25 of a fade";
}

TEST_F(SlideshowCommand, FadesThatAreTooLongAreToldTheLongest) {
  EXPECT_EQ(Show(films_ / "f.bgra", {"--each", "0.3", "--fade", "1"}).err,
            "kelto: --fade 1: two fades do not fit into --each 0.3; --fade 0.15 is the longest\n");
  EXPECT_EQ(Show(films_ / "f.bgra", {"--each", "0.3", "--fade", "0.15"}).err, "");
}

TEST_F(SlideshowCommand, ReadsItsListFromAPipe) {
  const Outcome outcome = RunShell(
      "printf '%s\n' " + (photos_ / "p1.png") + " " + (photos_ / "p2.png") +
      " | \"$0\" slideshow /dev/stdin --size 96x64 --each 0.2 --fade 0 -o " + (films_ / "f.bgra"));
  ASSERT_EQ(outcome.err, "");
  EXPECT_EQ(Middles(films_ / "f.bgra").size(), 10u);
}

TEST_F(SlideshowCommand, InterruptedWhileItLooksAtThePhotosEndsThere) {
  const std::string pipe = films_ / "list";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  Command command({"slideshow", pipe, "-o", films_ / "f.mp4", "--size", "96x64", "--each", "1",
                   "--fade", "0.6", "--move", "auto"});
  // Opens once the command waits for its list.
  int list = -1;
  for (int i = 0; i < 1200 && list < 0; ++i) {
    list = open(pipe.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    if (list < 0) std::this_thread::sleep_for(50ms);
  }
  ASSERT_GE(list, 0);
  command.Signal(SIGINT);
  const std::string line = (photos_ / "p1.png") + "\n";
  EXPECT_EQ(write(list, line.data(), line.size()), static_cast<ssize_t>(line.size()));
  close(list);
  const Outcome outcome = command.Wait();
  EXPECT_EQ(outcome.signal, SIGINT) << "went on to the fades, which do not fit: " << outcome.err;
  EXPECT_EQ(outcome.err, "");
}

TEST_F(SlideshowCommand, TellsOfTheSoundOfItsProjectsThatItLeavesOut) {
  WriteWav(films_ / "tone.wav", 0.5, 48000, 1, [](int, double) { return 0.25; });
  const auto project = [&](const char* name, const std::string& audio) {
    std::ofstream(films_ / name) << R"({"image": ")" << photos_ / "p1.png" << '"' << audio << "}";
  };
  project("a.json", R"(, "audio": "tone.wav")");
  project("b.json", "");
  project("c.json", R"(, "audio": "tone.wav")");
  const auto show = [&](const char* list, const char* film, Words more = {}) {
    std::ofstream(films_ / "list.txt") << list;
    Words words{"slideshow", films_ / "list.txt", "-o", films_ / film, "--size", "96x64", "--each",
                "0.2"};
    words.insert(words.end(), more.begin(), more.end());
    return RunKelto(words).err;
  };
  const std::string a = "kelto: " + (films_ / "a.json");
  const std::string advice = " left out; give the show its sound with --audio\n";
  EXPECT_EQ(show("b.json\na.json\na.json\n", "f.mkv"), a + ": its sound is" + advice);
  EXPECT_EQ(show("a.json\nb.json\nc.json\n", "f.mkv"),
            a + " and another project: their sound is" + advice);
  EXPECT_EQ(show("b.json\n", "f.mkv"), "");
  EXPECT_EQ(show("a.json\n", "f.yuyv"), "") << "a film without sound";
  EXPECT_EQ(show("a.json\n", "f.mkv", {"--audio", films_ / "tone.wav"}), "");
}

TEST_F(SlideshowCommand, OfAProjectSaysWhatToDoWithIt) {
  std::ofstream(films_ / "p.json") << "{\n\"image\": \"x.png\"\n}\n";
  const Outcome outcome = RunKelto({"slideshow", films_ / "p.json", "-o", films_ / "f.mp4"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
  EXPECT_THAT(outcome.err, HasSubstr("p.json: is a project, not a list"));
}

TEST_F(SlideshowCommand, IsTheSameForEveryNumberOfJobs) {
  const Words words{"--each", "0.4", "--fade", "0.2", "--from", "1", "--to", "1.5", "--jobs"};
  std::string first;
  for (const char* jobs : {"1", "2", "5"}) {
    Words asked = words;
    asked.push_back(jobs);
    ASSERT_EQ(Show(films_ / "f.mp4", asked).err, "");
    if (first.empty()) first = BytesOf(films_ / "f.mp4");
    EXPECT_EQ(BytesOf(films_ / "f.mp4"), first);
  }
  EXPECT_EQ(ReadFilm(films_ / "f.mp4").frames.size(), 20u);
}

TEST_F(SlideshowCommand, OfOnePictureIsItsFilm) {
  std::ofstream(photos_ / "list.txt") << "p2.png\n";
  ASSERT_EQ(RunKelto({"slideshow", photos_ / "list.txt", "-o", films_ / "a.yuyv", "--size", "96x64",
                      "--each", "0.4", "--fade", "0.1", "--to", "2"})
                .err,
            "");
  ASSERT_EQ(Render(photos_ / "p2.png", films_ / "b.yuyv", {"--frames", "10", "--to", "2"}).err, "");
  EXPECT_EQ(BytesOf(films_ / "a.yuyv"), BytesOf(films_ / "b.yuyv"));
}

TEST_F(SlideshowCommand, ReplacesNothingThatItIsMadeOf) {
  const std::string tone = films_ / "tone.mkv";
  std::ofstream(tone) << "dear";
  for (const std::string& source : {tone, photos_ / "p2.png"}) {
    const std::string before = BytesOf(source);
    const Outcome outcome = Show(source, {"--fade", "0", "--audio", tone, "--format", "mkv"});
    EXPECT_EQ(outcome.code, 2);
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr(source + ": is what the film is made of"));
    EXPECT_EQ(BytesOf(source), before);
  }
}

TEST_F(SlideshowCommand, OfFilmsShownInTwoShapesIsMisuse) {
  for (const char* shape : {"4:3", "16:9"}) {
    std::ofstream(films_ / (std::string("p") + shape[0] + ".json"))
        << R"({"image": ")" << photos_ / "p1.png"
        << R"(", "film": {"width": 720, "height": 576, )"
        << R"("rate": 25, "frames": 10, "displayAspect": ")" << shape << "\"}}";
  }
  std::ofstream(films_ / "list.txt") << "p4.json\np1.json\n";
  const Outcome outcome =
      RunKelto({"slideshow", films_ / "list.txt", "-o", films_ / "f.mp4", "--fade", "0"});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
  EXPECT_THAT(outcome.err, HasSubstr("p1.png: would be another kind"));
  EXPECT_THAT(outcome.err, HasSubstr("displayAspect"));
}

TEST_F(SlideshowCommand, TimesThatMakeNoSenseAreMisuse) {
  for (const Words& times : {Words{"--each", "0"},
                             {"--each", "x"},
                             {"--fade", "-1"},
                             {"--fade", "x"},
                             {"--each", "1", "--fade", "0.6"}}) {
    const Outcome outcome = Show(films_ / "f.mp4", times);
    EXPECT_EQ(outcome.code, 2) << times[0] << " " << times[1];
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr(times[times.size() - 2]));
  }
}

}  // namespace
}  // namespace kelto::test
