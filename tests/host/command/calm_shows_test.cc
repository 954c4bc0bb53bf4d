// Shows whose times come from music keep to the limits of speed, too.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/host/command/run.h"
#include "tests/host/support/sounds.h"

namespace kelto::test {
namespace {

// The commands' sandbox keeps the sanitizer from its list of leaks that are others'.
[[maybe_unused]] const int kCalmWithoutLeakCheck = setenv("LSAN_OPTIONS", "detect_leaks=0", 1);

class CalmShows : public testing::Test {
 protected:
  CalmShows() {
    for (const char* name : {"a.png", "b.png"}) {
      WritePng(folder_ / name, MakePicture(384, 216, [](int x, int y) {
                 return (x - 300) * (x - 300) + (y - 60) * (y - 60) < 400 ? Rgb{240, 40, 40}
                                                                          : Rgb{40, 60, 50};
               }));
    }
    std::ofstream(folder_ / "list.txt") << "a.png\nb.png\n";
  }

  std::string Music(double seconds) {
    const std::string path = folder_ / "music.wav";
    WriteWav(path, seconds, 8000, 1, [](int, double at) { return std::sin(2000 * at) / 4; });
    return path;
  }

  /// What the pictures of a show show, and for how long, as its project has it.
  nlohmann::json PicturesOf(const Words& more, const std::string& list = "list.txt",
                            const std::string& path = "") {
    const std::string project = folder_ / "show.json";
    std::string line = path + "\"$0\" slideshow '" + (folder_ / list) + "' -o '" +
                       (folder_ / "show.mkv") + "' --size 96x54 --fps 5 --fade 0 --quiet --force" +
                       " --save-project '" + project + "'";
    for (const std::string& word : more) line += " '" + word + "'";
    const Outcome outcome = RunShell(line);
    EXPECT_EQ(outcome.err, "");
    if (outcome.code != 0) return {};
    const nlohmann::json show = nlohmann::json::parse(BytesOf(project));
    nlohmann::json pictures = show.at("pictures");
    for (nlohmann::json& picture : pictures) {
      if (!picture.contains("each")) picture["each"] = show.at("each");
    }
    return pictures;
  }

  TempFolder folder_;
};

TEST_F(CalmShows, FittedToMusicMoveAsThoseOfTheSameTimes) {
  const Words limits{"--move", "in", "--max-zoom-rate", "0.05"};
  const auto with = [&](Words words) {
    words.insert(words.end(), limits.begin(), limits.end());
    return PicturesOf(words);
  };
  // Quicker than five seconds, which a picture has otherwise, and slower.
  const nlohmann::json usual = with({});
  for (const auto& [each, seconds] : {std::pair("1.6", 3.2), {"8", 16.0}}) {
    const nlohmann::json timed = with({"--each", each});
    EXPECT_NE(timed.at(0).at("views"), usual.at(0).at("views")) << "the limits matter";
    EXPECT_EQ(with({"--fit-audio", "--audio", Music(seconds)}), timed);
  }
}

TEST_F(CalmShows, FittedToMusicKeepToTheUsualLimits) {
  // A second is the least for which they hold.
  const nlohmann::json timed = PicturesOf({"--each", "1", "--move", "auto"});
  EXPECT_EQ(PicturesOf({"--move", "auto", "--fit-audio", "--audio", Music(2)}), timed);
}

TEST_F(CalmShows, CutOnBeatsMoveAsThoseOfTheSameTimes) {
  const std::string finder = folder_ / "aubiotrack";
  std::ofstream(finder) << "#!/bin/sh\nprintf '1.2\\n'\n";
  std::filesystem::permissions(finder, std::filesystem::perms::owner_all);
  const Words limits{"--move", "in", "--max-zoom-rate", "0.1", "--each", "2", "--audio", Music(4)};
  Words beats = limits;
  beats.emplace_back("--beats");
  std::ofstream(folder_ / "timed.txt") << "a.png --each 1.2\nb.png --each 2.8\n";
  EXPECT_EQ(PicturesOf(beats, "list.txt", "PATH='" + (folder_ / "") + "':$PATH "),
            PicturesOf(limits, "timed.txt"));
}

}  // namespace
}  // namespace kelto::test
