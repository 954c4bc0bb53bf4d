// A film of each of many pictures, good and bad ones.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <thread>

#include "tests/host/command/run.h"
#include "tests/runtime/stills/encode_jpeg.h"
#include "tests/runtime/stills/encode_png.h"
#include "tests/runtime/stills/exif_block.h"

namespace kelto::test {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using stills::Bytes;
using testing::ElementsAre;
using testing::HasSubstr;

void WriteBytes(const std::string& path, const Bytes& bytes) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

Bytes Jpeg(int width, int height, Bytes exif = {}) {
  stills::JpegSpec spec = stills::JpegOf(stills::GradientPicture(width, height));
  spec.exif = std::move(exif);
  return stills::EncodeJpeg(spec);
}

Bytes CmykJpeg(int width, int height) {
  stills::JpegSpec spec;
  spec.width = width;
  spec.height = height;
  spec.kind = stills::JpegKind::kCmyk;
  for (int i = 0; i < 4 * width * height; ++i) spec.samples.push_back(uint8_t(i * 5));
  return stills::EncodeJpeg(spec);
}

Bytes Png(int width, int height) {
  return stills::EncodePng(stills::PngOf(stills::GradientPicture(width, height)));
}

Bytes Half(Bytes bytes) {
  bytes.resize(bytes.size() / 2);
  return bytes;
}

Bytes Text(const std::string& text) { return {text.begin(), text.end()}; }

/// A file as museums have them.
struct Kind {
  const char* ending;
  bool good;
  Bytes (*make)(int number);
};

const Kind kKinds[] = {
    {".jpg", true, [](int i) { return Jpeg(90 + i % 7, 60); }},   // landscape
    {".jpg", true, [](int i) { return Jpeg(40, 120 + i % 5); }},  // portrait
    {".png", true, [](int i) { return Png(400 + i % 3, 12); }},   // panorama
    {".JPG", true, [](int) { return CmykJpeg(60, 40); }},         // CMYK
    {".jpeg", true, [](int i) { return Jpeg(64, 48, stills::ExifBlock(uint16_t(1 + i % 8))); }},
    {".png", true, [](int) { return Png(1, 1); }},
    {".jpg", false, [](int) { return Half(Jpeg(300, 200)); }},  // truncated
    {".png", false, [](int) { return Half(Png(300, 200)); }},
    {".jpg", false, [](int) { return Text("Dear diary, no photographs today.\n"); }},
    {".tif", false, [](int) { return Bytes{}; }},  // empty
};

class BatchCommand : public testing::Test {
 protected:
  Words Line(Words more = {}) const {
    Words words{"batch", photos_ / "", "-o", films_ / "", "--size", "96x64", "--to", "2"};
    if (std::find(more.begin(), more.end(), "--frames") == more.end()) {
      words.insert(words.end(), {"--frames", "4"});
    }
    words.insert(words.end(), more.begin(), more.end());
    return words;
  }
  /// Writes `count` pictures of all kinds in turn.
  void WritePictures(int count) {
    for (int i = 0; i < count; ++i) {
      const Kind& kind = kKinds[i % std::size(kKinds)];
      char stem[16];
      std::snprintf(stem, sizeof stem, "scan%04d", i);
      WriteBytes(photos_ / (std::string(stem) + kind.ending), kind.make(i));
      if (kind.good) {
        good_.insert(std::string(stem) + ".mp4");
      } else {
        bad_.insert(photos_ / (std::string(stem) + kind.ending));
      }
    }
  }
  std::set<std::string> Films() const {
    std::set<std::string> films;
    for (const auto& entry : fs::directory_iterator(films_ / "")) {
      if (entry.path().filename() != ".kelto") films.insert(entry.path().filename().string());
    }
    return films;
  }
  /// Each film's file, told from one that was written again.
  std::map<std::string, uint64_t> Written() const {
    std::map<std::string, uint64_t> written;
    for (const std::string& film : Films()) {
      written[film] = uint64_t(fs::last_write_time(films_ / film).time_since_epoch().count());
    }
    return written;
  }
  void ExpectALineForEachBadOne(const std::string& err) {
    std::set<std::string> named;
    std::istringstream lines(err);
    int count = 0;
    for (std::string line; std::getline(lines, line);) {
      if (line.starts_with("kelto: film ")) continue;  // how far a slow machine is
      ++count;
      for (const std::string& bad : bad_) {
        if (line.starts_with("kelto: " + bad + ": ")) named.insert(bad);
      }
    }
    EXPECT_EQ(count, static_cast<int>(bad_.size())) << err;
    EXPECT_EQ(named, bad_) << err;
  }

  TempFolder photos_, films_;
  std::set<std::string> good_, bad_;
};

TEST_F(BatchCommand, Of200PicturesMakesAFilmOfEachGoodOneAndTellsOfEachBadOne) {
  WritePictures(200);
  const Outcome outcome = RunKelto(Line({"--jobs", "3"}));
  EXPECT_EQ(outcome.code, 1) << "some failed";
  EXPECT_EQ(Films(), good_);
  EXPECT_EQ(good_.size(), 120u);
  ExpectALineForEachBadOne(outcome.err);
}

TEST_F(BatchCommand, GoesOnAfterAKillWithoutDoingWorkAgain) {
  WritePictures(200);
  Command command(Line({"--jobs", "2", "--frames", "25"}));
  const auto finished = [&] {
    const auto films = Films();
    return std::count_if(films.begin(), films.end(),
                         [](const std::string& name) { return !name.starts_with('.'); });
  };
  for (int i = 0; i < 10000 && finished() < 30; ++i) std::this_thread::sleep_for(20ms);
  command.Signal(SIGKILL);
  EXPECT_EQ(command.Wait().signal, SIGKILL);
  // Its processes clear up what they were writing.
  const auto unfinished = [&] {
    const auto films = Films();
    return std::any_of(films.begin(), films.end(),
                       [](const std::string& name) { return name.starts_with('.'); });
  };
  for (int i = 0; i < 1200 && unfinished(); ++i) std::this_thread::sleep_for(50ms);
  const auto before = Written();
  ASSERT_GE(before.size(), 30u);
  ASSERT_LT(before.size(), 120u);

  std::this_thread::sleep_for(20ms);
  const Outcome outcome = RunKelto(Line({"--jobs", "2", "--frames", "25", "--resume"}));
  EXPECT_EQ(outcome.code, 1);
  EXPECT_EQ(Films(), good_);
  ExpectALineForEachBadOne(outcome.err);
  const auto after = Written();
  int again = 0;
  for (const auto& [film, time] : before) again += after.at(film) == time ? 0 : 1;
  // The kill may have come between a film and the note of it, once for each process.
  EXPECT_LE(again, 2);
}

TEST_F(BatchCommand, InterruptedSaysHowToGoOn) {
  WritePictures(200);
  Command command(Line({"--jobs", "2", "--frames", "25"}));
  for (int i = 0; i < 10000 && Films().size() < 5; ++i) std::this_thread::sleep_for(20ms);
  command.Signal(SIGINT);
  const Outcome outcome = command.Wait();
  EXPECT_EQ(outcome.signal, SIGINT);
  EXPECT_THAT(outcome.err,
              testing::ContainsRegex("kelto: interrupted after [0-9]+ of 200 films; use "
                                     "--resume to go on\n$"));
}

TEST_F(BatchCommand, ResumedWhenAllIsDoneDoesNothing) {
  WritePictures(6);
  EXPECT_EQ(RunKelto(Line()).code, 0);
  const auto before = Written();
  std::this_thread::sleep_for(20ms);
  EXPECT_EQ(RunKelto(Line({"--resume"})).code, 0);
  EXPECT_EQ(Written(), before);
  EXPECT_EQ(RunKelto(Line({"--resume", "--plan"})).out, "");
}

TEST_F(BatchCommand, ResumedMakesTheFilmsOfPicturesThatChanged) {
  WritePictures(3);
  EXPECT_EQ(RunKelto(Line()).code, 0);
  const auto before = Written();
  std::this_thread::sleep_for(20ms);
  WriteBytes(photos_ / "scan0001.jpg", Jpeg(33, 22));
  EXPECT_EQ(RunKelto(Line({"--resume"})).code, 0);
  const auto after = Written();
  EXPECT_EQ(after.at("scan0000.mp4"), before.at("scan0000.mp4"));
  EXPECT_NE(after.at("scan0001.mp4"), before.at("scan0001.mp4"));
}

TEST_F(BatchCommand, ResumedMakesDamagedFilmsAgain) {
  WritePictures(4);
  EXPECT_EQ(RunKelto(Line()).code, 0);
  const auto before = Written();
  const std::string whole = BytesOf(films_ / "scan0001.mp4");
  fs::resize_file(films_ / "scan0001.mp4", whole.size() / 2);
  std::ofstream(films_ / "scan0002.mp4")
      << std::string(BytesOf(films_ / "scan0002.mp4").size(), 'x');
  fs::remove(films_ / "scan0003.mp4");
  EXPECT_EQ(RunKelto(Line({"--resume"})).code, 0);
  EXPECT_EQ(BytesOf(films_ / "scan0001.mp4"), whole);
  EXPECT_NE(BytesOf(films_ / "scan0002.mp4").front(), 'x');
  EXPECT_TRUE(fs::exists(films_ / "scan0003.mp4"));
  EXPECT_EQ(Written().at("scan0000.mp4"), before.at("scan0000.mp4")) << "one that is as it was";
}

TEST_F(BatchCommand, ResumedClearsAwayWhatKilledProcessesLeft) {
  WritePictures(6);
  Command command(Line({"--jobs", "3", "--frames", "1000000"}));
  for (int i = 0; i < 6000 && Films().size() < 3; ++i) std::this_thread::sleep_for(20ms);
  const auto workers = ChildrenOf(command.Process());
  for (const pid_t worker : workers) kill(worker, SIGKILL);
  command.Signal(SIGKILL);
  command.Wait();
  for (const pid_t worker : workers) {
    for (int i = 0; i < 1000 && IsRunning(worker); ++i) std::this_thread::sleep_for(10ms);
  }
  ASSERT_GE(Films().size(), 3u) << "nothing to clear away";
  const auto parts = [&] { return fs::directory_iterator(films_ / ".kelto"); };
  EXPECT_NE(parts(), fs::directory_iterator());
  // Of other pictures, so that no process writes to the same names.
  for (const auto& entry : fs::directory_iterator(photos_ / "")) fs::remove(entry.path());
  WriteBytes(photos_ / "new.jpg", Jpeg(64, 48));
  EXPECT_EQ(RunKelto(Line({"--resume"})).code, 0);
  EXPECT_THAT(Films(), ElementsAre("new.mp4"));
  EXPECT_EQ(std::distance(begin(parts()), end(parts())), 1);
}

TEST_F(BatchCommand, ResumedWithOtherOptionsSaysSoAndChangesNothing) {
  WritePictures(3);
  EXPECT_EQ(RunKelto(Line()).code, 0);
  const auto before = Written();
  const Outcome outcome = RunKelto(Line({"--filter", "ultra", "--resume"}));
  EXPECT_EQ(outcome.code, 2);
  EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
  EXPECT_THAT(outcome.err, HasSubstr("made with other options"));
  EXPECT_EQ(Written(), before);
  EXPECT_EQ(RunKelto(Line({"--filter", "ultra"})).code, 0) << "all again, without --resume";
}

TEST_F(BatchCommand, StoppedLeavesNoUnfinishedFilm) {
  WritePictures(6);
  for (const int signal : {SIGINT, SIGTERM}) {
    Command command(Line({"--jobs", "3", "--frames", "1000000"}));
    for (int i = 0; i < 6000 && Films().empty(); ++i) std::this_thread::sleep_for(20ms);
    const auto workers = ChildrenOf(command.Process());
    ASSERT_FALSE(workers.empty());
    command.Signal(signal);
    const Outcome outcome = command.Wait();
    EXPECT_EQ(outcome.signal, signal);
    EXPECT_EQ(outcome.err, "kelto: interrupted after 0 of 6 films; use --resume to go on\n");
    EXPECT_THAT(Films(), testing::IsEmpty());
    for (const pid_t worker : workers) EXPECT_FALSE(IsRunning(worker));
  }
}

TEST_F(BatchCommand, StoppedAsAWholeGroupLeavesNoUnfinishedFilm) {
  WritePictures(6);
  for (int i = 0; i < 5; ++i) {
    Command command(Line({"--jobs", "3", "--frames", "1000000"}));
    for (int j = 0; j < 6000 && Films().empty(); ++j) std::this_thread::sleep_for(20ms);
    const auto workers = ChildrenOf(command.Process());
    ASSERT_FALSE(workers.empty());
    // As timeout(1) and service managers do: to all of them, and the owner then tells its workers.
    command.Signal(SIGTERM);
    for (const pid_t worker : workers) kill(worker, SIGTERM);
    command.Signal(SIGTERM);
    EXPECT_EQ(command.Wait().signal, SIGTERM);
    for (const pid_t worker : workers) EXPECT_FALSE(IsRunning(worker));
    EXPECT_THAT(Films(), testing::IsEmpty());
  }
}

TEST_F(BatchCommand, OfAListKeepsPicturesOfOneNameApart) {
  for (const char* folder : {"x", "y"}) {
    fs::create_directory(photos_ / folder);
    WriteBytes(photos_ / (std::string(folder) + "/it's a photo.png"), Png(30, 20));
  }
  std::ofstream(photos_ / "list.txt") << "x/it's a photo.png\ny/it's a photo.png\n";
  Words words = Line();
  words[1] = photos_ / "list.txt";
  EXPECT_EQ(RunKelto(words).err, "");
  EXPECT_THAT(Films(), ElementsAre("it's a photo.png-2.mp4", "it's a photo.png.mp4"));
}

TEST_F(BatchCommand, PlanLinesDoTheSameWorkInAShell) {
  WritePictures(6);
  WriteBytes(photos_ / "it's $HOME; \"x\".png", Png(50, 40));
  const Outcome plan = RunKelto(Line({"--plan", "--background", "#102030"}));
  EXPECT_EQ(plan.code, 0);
  EXPECT_EQ(std::count(plan.out.begin(), plan.out.end(), '\n'), 7);
  EXPECT_THAT(Films(), testing::IsEmpty()) << "a plan does nothing yet";
  const Outcome done = RunShell("mkdir -p " + (films_ / "") + "; cd /; " + plan.out);
  EXPECT_EQ(done.code, 0) << done.err;
  const auto planned = Written();
  EXPECT_EQ(planned.size(), 7u);
  // Films made by the lines count as done.
  EXPECT_EQ(RunKelto(Line({"--resume", "--background", "#102030"})).code, 0);
  EXPECT_EQ(Written(), planned);
  const std::string byLine = BytesOf(films_ / "scan0000.mp4");
  EXPECT_EQ(RunKelto(Line({"--background", "#102030"})).code, 0);
  EXPECT_EQ(BytesOf(films_ / "scan0000.mp4"), byLine);
}

TEST_F(BatchCommand, InJsonTellsOfEachFilm) {
  WritePictures(10);
  const Outcome outcome = RunKelto(Line({"--json"}));
  EXPECT_EQ(outcome.code, 1);
  int made = 0, failed = 0;
  std::istringstream lines(outcome.err);
  for (std::string line; std::getline(lines, line);) {
    const auto event = nlohmann::json::parse(line);
    if (event["event"] == "film" && event["state"] == "made") ++made;
    if (event["event"] == "film" && event["state"] == "failed") ++failed;
  }
  EXPECT_EQ(made, 6);
  EXPECT_EQ(failed, 4);
}

TEST_F(BatchCommand, WrongOptionsAreToldOnce) {
  WritePictures(10);
  for (const Words& wrong : {Words{"--filter", "best"},
                             {"--format", "png"},
                             {"--format", "avi"},
                             {"--frames", "0..3"},
                             {"--jobs", "0"},
                             {"--from", "99"}}) {
    const Outcome outcome = RunKelto(Line(wrong));
    EXPECT_EQ(outcome.code, 2) << wrong[0];
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr(wrong[0]));
    EXPECT_THAT(Films(), testing::IsEmpty());
  }
}

TEST_F(BatchCommand, FilesThatDoNotServeAreToldOnce) {
  WritePictures(6);
  WriteBytes(films_ / "text.txt", Text("Dear diary\n"));
  for (const char* option : {"--audio", "--over"}) {
    for (const char* name : {"none.mkv", "text.txt"}) {
      for (const char* plan : {"--quiet", "--plan"}) {
        const std::string file = films_ / name;
        Words words = Line({option, file, plan});
        words[3] = films_ / "films";
        const Outcome outcome = RunKelto(words);
        EXPECT_EQ(outcome.code, 1) << option;
        EXPECT_EQ(outcome.out, "");
        EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
        EXPECT_THAT(outcome.err, HasSubstr(file));
        EXPECT_FALSE(fs::exists(films_ / "films"));
      }
    }
  }
}

TEST_F(BatchCommand, PlansNothingThatItWouldNotDo) {
  WritePictures(3);
  const Outcome jobs = RunKelto(Line({"--plan", "--jobs", "0"}));
  EXPECT_EQ(jobs.code, 2);
  EXPECT_THAT(jobs.err, HasSubstr("--jobs 0"));
  const Outcome module = RunKelto(Line({"--plan", "--module", films_ / "none.hfx"}));
  EXPECT_EQ(module.code, 1);
  EXPECT_THAT(module.err, HasSubstr("none.hfx: there is no such file"));
  for (const Outcome& outcome : {jobs, module}) {
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
  }
}

TEST_F(BatchCommand, FoldersThatAreNoneAreFailures) {
  WritePictures(1);
  std::ofstream(films_ / "file") << "x";
  Words words = Line();
  words[3] = films_ / "file";
  EXPECT_TRUE(IsOneLine(RunKelto(words).err));
  words[1] = photos_ / "none";
  EXPECT_THAT(RunKelto(words).err, HasSubstr("there is no such folder or list"));
}

}  // namespace
}  // namespace kelto::test
