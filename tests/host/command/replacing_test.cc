// What a film replaces, and what it never does; and photos that are replaced while it is made.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <thread>

#include "tests/host/command/run.h"

namespace kelto::test {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;

class Replacing : public testing::Test {
 protected:
  Replacing() {
    WritePng(photo_, MakePicture(60, 40, [](int, int) { return Rgb{200, 100, 50}; }));
  }
  void Put(const std::string& name, const std::string& text) const {
    std::ofstream(folder_ / name) << text;
  }
  std::string Content(const std::string& name) const { return BytesOf(folder_ / name); }

  TempFolder folder_;
  const std::string photo_ = folder_ / "photo.png";
};

TEST_F(Replacing, AFilmReplacesALinkAndNotWhatItLeadsTo) {
  Put("precious", "precious");
  for (const char* film : {"film.mp4", "film.y4m", "film.png"}) {
    fs::create_symlink("precious", folder_ / film);
    EXPECT_EQ(Render(photo_, folder_ / film, {"--frames", "1"}).code, 0);
    EXPECT_FALSE(fs::is_symlink(folder_ / film));
    EXPECT_EQ(Content("precious"), "precious");
  }
}

TEST_F(Replacing, RecordsNeverGoThroughALinkInPlaceOfTheirFolder) {
  fs::create_directory(folder_ / "photos");
  fs::copy_file(photo_, folder_ / "photos/a.png");
  fs::create_directory(folder_ / "elsewhere");
  fs::create_directory(folder_ / "films");
  fs::create_symlink("../elsewhere", folder_ / "films/.kelto");
  const Outcome outcome = RunKelto(
      {"batch", folder_ / "photos", "-o", folder_ / "films", "--size", "96x64", "--frames", "2"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
  EXPECT_THAT(outcome.err, HasSubstr("its folder is a symbolic link"));
  EXPECT_TRUE(fs::is_empty(folder_ / "elsewhere"));
}

TEST_F(Replacing, ARecordReplacesNothingButARecord) {
  Put("letter.txt", "Dear diary");
  fs::create_directory(folder_ / "empty");
  for (const char* name : {"letter.txt", "empty"}) {
    const Outcome outcome = Render(photo_, folder_ / "film.mp4", {"--record", folder_ / name});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr(folder_ / name));
    EXPECT_FALSE(fs::exists(folder_ / "film.mp4"));
  }
  EXPECT_EQ(Content("letter.txt"), "Dear diary");
  EXPECT_TRUE(fs::is_directory(folder_ / "empty"));
  EXPECT_EQ(Render(photo_, folder_ / "film.mp4", {"--record", folder_ / "r.json"}).code, 0);
  const std::string record = Content("r.json");
  EXPECT_EQ(
      Render(folder_ / "none.png", folder_ / "film.mp4", {"--record", folder_ / "r.json"}).code, 1);
  Put("bad.png", "no picture");
  EXPECT_EQ(
      Render(folder_ / "bad.png", folder_ / "film.mp4", {"--record", folder_ / "r.json"}).code, 1);
  EXPECT_EQ(Content("r.json"), record) << "the film that it is of is still there";
  EXPECT_THAT(NamesIn(folder_),
              ElementsAre("bad.png", "empty", "film.mp4", "letter.txt", "photo.png", "r.json"));
}

TEST_F(Replacing, AFilmKeepsThePermissionsOfTheOneBefore) {
  Put("film.mp4", "private");
  ASSERT_EQ(chmod((folder_ / "film.mp4").c_str(), 0600), 0);
  EXPECT_EQ(Render(photo_, folder_ / "film.mp4").code, 0);
  struct stat status {};
  ASSERT_EQ(stat((folder_ / "film.mp4").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST_F(Replacing, AKilledRunsPartsGoWithTheNextRun) {
  for (const char* film : {"film.mp4", "film.y4m"}) {
    Command command({"render", photo_, "-o", folder_ / film, "--size", "96x64", "--frames",
                     "1000000", "--jobs", "1"});
    const auto parts = [&] { return NamesIn(folder_).size() - 1; };
    for (int i = 0; i < 6000 && parts() == 0; ++i) usleep(20000);
    command.Signal(SIGKILL);
    command.Wait();
    ASSERT_EQ(parts(), 1u);
    EXPECT_EQ(Render(photo_, folder_ / film).code, 0);
    EXPECT_THAT(NamesIn(folder_), ElementsAre(film, "photo.png"));
    fs::remove(folder_ / film);
  }
}

/// Two photos that take turns under one name for as long as it lives.
class Swapping {
 public:
  Swapping(std::string name, std::string other)
      : name_(std::move(name)), other_(std::move(other)), thread_([this] { Swap(); }) {}
  ~Swapping() {
    done_ = true;
    thread_.join();
  }

 private:
  void Swap() const {
    while (!done_) {
      renameat2(AT_FDCWD, name_.c_str(), AT_FDCWD, other_.c_str(), RENAME_EXCHANGE);
      usleep(500);
    }
  }

  std::string name_, other_;
  std::atomic<bool> done_ = false;
  std::thread thread_;
};

TEST_F(Replacing, AFilmNeverShowsTwoPhotosOfOneName) {
  const auto write = [&](const char* name, uint8_t level) {
    WritePng(folder_ / name, MakePicture(700, 500, [&](int x, int y) {
               return Rgb{level, uint8_t(level + (x * 7 + y * 13) % 5), level};
             }));
  };
  write("photo.png", 60);
  write("other.png", 180);
  const Swapping swapping(folder_ / "photo.png", folder_ / "other.png");
  const size_t frameBytes = size_t{2} * 96 * 64;
  for (int i = 0; i < 12; ++i) {
    const Outcome outcome =
        Render(photo_, folder_ / "film.yuyv", {"--frames", "8", "--jobs", "4", "--move", "hold"});
    if (outcome.code != 0) {
      EXPECT_EQ(outcome.code, 1);
      EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
      // The sandbox keeps the command from a file that took the photo's place before the film
      // began. One that does so within the microseconds between a look and an attempt to open it is
      // refused in the system's words.
      EXPECT_THAT(outcome.err,
                  AnyOf(HasSubstr("photo.png: was changed or replaced while"),
                        HasSubstr("photo.png: was replaced while the command was using it"),
                        AllOf(HasSubstr("photo.png: cannot be read"), HasSubstr("ermission"))));
      continue;
    }
    const std::string film = Content("film.yuyv");
    ASSERT_EQ(film.size(), 8 * frameBytes);
    std::set<std::string> frames;
    for (size_t at = 0; at < film.size(); at += frameBytes)
      frames.insert(film.substr(at, frameBytes));
    EXPECT_EQ(frames.size(), 1u) << "more than one photo in film " << i;
  }
}

}  // namespace
}  // namespace kelto::test
