// Photos over videos, and films with sound.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/host/command/run.h"
#include "tests/host/support/film_reader.h"
#include "tests/host/support/sounds.h"

namespace kelto::test {
namespace {

using testing::HasSubstr;

class Over : public testing::Test {
 protected:
  Over() {
    WritePng(photo_, MakePicture(64, 64, [](int, int) { return Rgb{250, 250, 250}; }));
    // Dark at first, lighter with each frame; a tone for as long.
    WriteWav(folder_ / "tone.wav", 0.5, 48000, 1,
             [](int, double seconds) { return std::sin(2764.6 * seconds) / 2; });
    const Outcome made = RunShell(
        "ffmpeg -nostdin -v error -f lavfi -i "
        "color=gray:size=96x64:rate=30:duration=0.5,geq=lum='20+10*N':cb=128:cr=128 -i " +
        (folder_ / "tone.wav") + " -c:v ffv1 -c:a pcm_s16le -y " + video_);
    EXPECT_EQ(made.code, 0) << made.err;
  }
  Outcome RenderOver(const std::string& film, Words more = {}) {
    Words words{"render", photo_,   "-o",    folder_ / film, "--over",
                video_,   "--size", "96x64", "--view",       "0.5"};
    words.insert(words.end(), more.begin(), more.end());
    return RunKelto(words);
  }
  /// Luma in a corner of each frame.
  std::vector<int> CornersOf(const std::string& film) {
    std::vector<int> levels;
    const std::string bytes = BytesOf(folder_ / film);
    for (size_t at = 0; at < bytes.size(); at += size_t{2} * 96 * 64) {
      levels.push_back(uint8_t(bytes[at]));
    }
    return levels;
  }

  TempFolder folder_;
  const std::string photo_ = folder_ / "photo.png", video_ = folder_ / "video.mkv";
};

TEST_F(Over, TheVideoIsSeenBesideThePhoto) {
  ASSERT_EQ(RenderOver("f.yuyv").err, "");
  const std::vector<int> corners = CornersOf("f.yuyv");
  ASSERT_EQ(corners.size(), 15u) << "as many frames as the video";
  for (int i = 0; i < 15; ++i) EXPECT_NEAR(corners[i], 20 + 10 * i, 2) << i;
  const std::string bytes = BytesOf(folder_ / "f.yuyv");
  EXPECT_GT(uint8_t(bytes[size_t{2} * (32 * 96 + 48)]), 220) << "the photo in the middle";
}

TEST_F(Over, RateLengthAndSoundAreTheVideos) {
  ASSERT_EQ(RenderOver("f.mkv", {"--codec", "ffv1"}).err, "");
  const Outcome probe = RunShell(
      "ffprobe -v error -show_entries stream=codec_type,r_frame_rate "
      "-count_frames -show_entries stream=nb_read_frames -of csv " +
      (folder_ / "f.mkv"));
  EXPECT_THAT(probe.out, HasSubstr("video,30/1,15"));
  EXPECT_THAT(probe.out, HasSubstr("audio"));
  const DecodedSound sound = ReadSound(folder_ / "f.mkv");
  EXPECT_NEAR(sound.end, 0.5, 0.05);
}

TEST_F(Over, RateAndLengthMayBeAskedForOtherwise) {
  ASSERT_EQ(RenderOver("f.yuyv", {"--fps", "15"}).err, "");
  EXPECT_EQ(CornersOf("f.yuyv").size(), 8u) << "as long, 0.5 s";
  ASSERT_EQ(RenderOver("f.yuyv", {"--frames", "4"}).err, "");
  EXPECT_EQ(CornersOf("f.yuyv").size(), 4u);
}

TEST_F(Over, EveryNumberOfJobsMakesTheSameFilm) {
  ASSERT_EQ(RenderOver("1.mkv", {"--jobs", "1"}).err, "");
  ASSERT_EQ(RenderOver("3.mkv", {"--jobs", "3"}).err, "");
  EXPECT_EQ(BytesOf(folder_ / "1.mkv"), BytesOf(folder_ / "3.mkv"));
}

TEST_F(Over, AProjectThatNamesNoVideoHasBlackThere) {
  const std::string project = folder_ / "p.json";
  std::ofstream(project) << R"({"image": "photo.png",
    "film": {"width": 96, "height": 64, "frames": 9},
    "parameters": {"display": {"value": "Display: Target"}, "size": {"value": 0.4},
                   "compositeover": {"value": "Background: Video"}}})";
  for (const char* jobs : {"1", "3"}) {
    const Outcome outcome =
        RunKelto({"render", project, "-o", folder_ / std::string(jobs) + ".bgra", "--jobs", jobs});
    ASSERT_EQ(outcome.err, "");
  }
  const std::string film = BytesOf(folder_ / "1.bgra");
  EXPECT_EQ(film, BytesOf(folder_ / "3.bgra")) << "a frame is the same whichever came before it";
  ASSERT_EQ(film.size(), size_t{9} * 96 * 64 * 4);
  for (size_t frame = 0; frame < 9; ++frame) {
    EXPECT_LE(uint8_t(film[frame * 96 * 64 * 4 + 1]), 1) << frame;
  }
}

TEST_F(Over, PartsJoinWithoutASeam) {
  ASSERT_EQ(RenderOver("whole.yuyv").err, "");
  std::string joined;
  for (const char* part : {"0..6", "6..15"}) {
    ASSERT_EQ(RenderOver("part.yuyv", {"--frames", part}).err, "");
    joined += BytesOf(folder_ / "part.yuyv");
  }
  EXPECT_EQ(joined, BytesOf(folder_ / "whole.yuyv"));
}

TEST_F(Over, WhatCannotBeIsToldInOneLine) {
  const auto expect = [&](const Outcome& outcome, int code, const std::string& hint) {
    EXPECT_EQ(outcome.code, code);
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr(hint));
  };
  expect(RenderOver("f.mp4", {"--background", "#ffffff"}), 2, "--background");
  expect(RunKelto({"render", photo_, "-o", folder_ / "f.mp4", "--over", folder_ / "none.mp4"}), 1,
         "none.mp4");
  expect(RunKelto({"render", photo_, "-o", folder_ / "f.mp4", "--over", photo_ + "x"}), 1, "x");
  const std::string before = BytesOf(video_);
  expect(RunKelto({"render", photo_, "-o", video_, "--over", video_}), 2, "another name");
  EXPECT_EQ(BytesOf(video_), before);
}

TEST_F(Over, SoundGoesIntoAnyFilmThatHoldsSome) {
  ASSERT_EQ(
      Render(photo_, folder_ / "f.mp4", {"--audio", folder_ / "tone.wav", "--frames", "10"}).err,
      "");
  EXPECT_NEAR(ReadSound(folder_ / "f.mp4").end, 0.4, 0.05) << "cut where the pictures end";
  const Outcome outcome = Render(photo_, folder_ / "f.y4m", {"--audio", folder_ / "tone.wav"});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_THAT(outcome.err, HasSubstr("--audio"));
}

TEST_F(Over, PartsAreSilent) {
  const Outcome outcome =
      Render(photo_, folder_ / "f.mp4", {"--audio", folder_ / "tone.wav", "--frames", "0..2"});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_THAT(outcome.err, HasSubstr("parts of a film are silent"));
}

}  // namespace
}  // namespace kelto::test
