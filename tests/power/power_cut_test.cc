// What a power cut at any moment leaves of films, pictures, projects and records: the command runs
// with its calls logged, and every moment of the log is replayed on a disk that drops what was not
// synchronised.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/host/command/run.h"
#include "tests/power/cut_disk.h"

namespace kelto::test {
namespace {

namespace fs = std::filesystem;

uint64_t InodeOf(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
  return status.st_ino;
}

/// A file that the command writes, and what had its name before.
struct Written {
  std::string path;
  bool wasThere = false;
  std::string before{};

  uint64_t Folder() const { return InodeOf(fs::path(path).parent_path().string()); }
  std::string Name() const { return fs::path(path).filename().string(); }
};

class PowerCut : public testing::Test {
 protected:
  void SetUp() override {
    WritePng(photo_, MakePicture(60, 40, [](int x, int y) {
               return Rgb{uint8_t(x * 4), uint8_t(y * 6), 99};
             }));
    std::ofstream(log_).flush();
    setenv(kWriteLogVariable, log_.c_str(), 1);
    setenv("LD_PRELOAD", KELTO_WRITE_LOG, 1);
    // The sanitizer's own library would come first otherwise.
    const char* options = std::getenv("ASAN_OPTIONS");
    options_ = options == nullptr ? "" : options;
    setenv("ASAN_OPTIONS", ("verify_asan_link_order=0:" + options_).c_str(), 1);
  }
  void TearDown() override {
    unsetenv("LD_PRELOAD");
    unsetenv(kWriteLogVariable);
    setenv("ASAN_OPTIONS", options_.c_str(), 1);
  }

  static void Put(Written& file) {
    file.wasThere = true;
    file.before = "what was there before";
    std::ofstream(file.path) << file.before;
  }

  Outcome Run(const Words& words) {
    const Outcome outcome = RunKelto(words);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    return outcome;
  }

  /// Checks every moment of the log: each file is as it was before or whole. At the end it is
  /// there, and never was `later` there before `file` was there for good.
  void ExpectWholeAtEveryMoment(const std::vector<Written>& files) {
    const std::vector<LoggedStep> steps = ReadWriteLog(log_);
    ASSERT_FALSE(steps.empty()) << "nothing was logged";
    CutDisk disk;
    for (const Written& file : files) {
      disk.Put(file.Folder(), file.Name(), file.wasThere ? &file.before : nullptr);
    }
    for (size_t moment = 0; moment < steps.size(); ++moment) {
      disk.Replay(steps[moment]);
      for (const Written& file : files) ExpectWhole(disk, file, moment);
    }
    for (const Written& file : files) {
      const auto outcomes = disk.After(file.Folder(), file.Name());
      ASSERT_EQ(outcomes.size(), 1u) << file.path << " may be lost after all was done";
      const auto last = *outcomes.begin();
      ASSERT_NE(last, nullptr) << file.path;
      EXPECT_EQ(last->synced, BytesOf(file.path)) << "the log is not all that was done";
    }
  }

  /// Whether at some moment a power cut could leave the new `later` without the new `first`.
  bool MayComeBefore(const Written& later, const Written& first) {
    CutDisk disk;
    for (const Written& file : {later, first}) {
      disk.Put(file.Folder(), file.Name(), file.wasThere ? &file.before : nullptr);
    }
    const auto isNew = [](const Written& file, const auto& outcome) {
      return outcome != nullptr && !(file.wasThere && outcome->synced == file.before);
    };
    for (const LoggedStep& step : ReadWriteLog(log_)) {
      disk.Replay(step);
      const auto laters = disk.After(later.Folder(), later.Name());
      const auto firsts = disk.After(first.Folder(), first.Name());
      const bool there =
          std::any_of(laters.begin(), laters.end(), [&](const auto& o) { return isNew(later, o); });
      const bool sure =
          std::all_of(firsts.begin(), firsts.end(), [&](const auto& o) { return isNew(first, o); });
      if (there && !sure) return true;
    }
    return false;
  }

  TempFolder folder_;
  const std::string photo_ = folder_ / "photo.png", log_ = folder_ / "log";

 private:
  static void ExpectWhole(const CutDisk& disk, const Written& file, size_t moment) {
    for (const auto& outcome : disk.After(file.Folder(), file.Name())) {
      if (outcome == nullptr) {
        EXPECT_FALSE(file.wasThere) << file.path << " is gone after step " << moment;
      } else if (!file.wasThere || outcome->synced != file.before) {
        ASSERT_TRUE(outcome->Safe() && outcome->synced == BytesOf(file.path))
            << file.path << " has " << outcome->synced.size() << " bytes after step " << moment;
      }
    }
  }

  std::string options_;
};

TEST_F(PowerCut, LeavesAFilmWholeOrNotThere) {
  for (const char* name : {"film.mp4", "film.mkv", "film.y4m"}) {
    for (const bool wasThere : {false, true}) {
      Written film{folder_ / name};
      if (wasThere) Put(film);
      std::ofstream(log_).flush();
      Run({"render", photo_, "-o", film.path, "--size", "96x64", "--frames", "60", "--jobs", "2"});
      ExpectWholeAtEveryMoment({film});
      fs::remove(film.path);
    }
  }
}

TEST_F(PowerCut, LeavesNoRecordOfAFilmThatItTook) {
  Written film{folder_ / "film.mp4"}, record{folder_ / "record.json"};
  Put(film);
  Run({"render", photo_, "-o", film.path, "--size", "96x64", "--frames", "4", "--record",
       record.path});
  ExpectWholeAtEveryMoment({film, record});
  EXPECT_FALSE(MayComeBefore(record, film));
  EXPECT_TRUE(MayComeBefore(film, record)) << "the test sees nothing";
}

TEST_F(PowerCut, LeavesEachNumberedPictureWholeOrNotThere) {
  std::vector<Written> pictures;
  for (int i = 0; i < 5; ++i) pictures.push_back({folder_ / ("f" + std::to_string(i) + ".png")});
  Put(pictures[3]);
  Run({"render", photo_, "-o", folder_ / "f%d.png", "--size", "96x64", "--frames", "5"});
  ExpectWholeAtEveryMoment(pictures);
}

TEST_F(PowerCut, LeavesAProjectWholeOrAsItWas) {
  Written project{folder_ / "project.json"};
  Put(project);
  Run({"new", photo_, "-o", project.path, "--force"});
  ExpectWholeAtEveryMoment({project});
}

TEST_F(PowerCut, LeavesNothingOfABatchToBeTakenForDone) {
  fs::create_directory(folder_ / "photos");
  for (const char* name : {"a.png", "b.png", "c.png"}) {
    fs::copy_file(photo_, folder_ / "photos/" + name);
  }
  // The log lies where the sandbox of a film lets nothing be written.
  Run({"batch", folder_ / "photos", "-o", folder_ / "new/films", "--size", "96x64", "--frames", "4",
       "--jobs", "2", "--no-sandbox"});
  std::vector<Written> all;
  for (const char* name : {"a.mp4", "b.mp4", "c.mp4"}) {
    const Written film{folder_ / "new/films/" + name};
    const Written record{folder_ / "new/films/.kelto/" + name + ".json"};
    EXPECT_FALSE(MayComeBefore(record, film));
    all.insert(all.end(), {film, record});
  }
  ExpectWholeAtEveryMoment(all);
  // The folders that were made are there for good, too.
  CutDisk disk;
  for (const LoggedStep& step : ReadWriteLog(log_)) disk.Replay(step);
  for (const char* name : {"new", "new/films", "new/films/.kelto"}) {
    const Written folder{folder_ / name};
    const auto outcomes = disk.After(folder.Folder(), folder.Name());
    EXPECT_TRUE(outcomes.size() == 1 && *outcomes.begin() != nullptr) << name;
  }
}

}  // namespace
}  // namespace kelto::test
