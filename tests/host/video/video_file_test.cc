#include "host/video/video_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/base/error.h"
#include "tests/host/support/sounds.h"
#include "tests/host/support/videos.h"

namespace kelto::host {
namespace {

using test::GreyFrame;
using test::RunFfmpeg;
using test::WriteVideo;
using testing::HasSubstr;
using testing::StartsWith;

constexpr FrameSize kSize{64, 48};

class VideoFiles : public testing::Test {
 protected:
  /// Frame i is of grey 4 i.
  std::string Video(const std::string& name, int frames, FrameRate rate = {25, 1},
                    const std::string& codec = "ffv1", const std::string& audio = "") const {
    return WriteVideo(
        folder_ / name, {kSize, rate}, frames, [](int i) { return GreyFrame(kSize, 4 * i); }, codec,
        audio);
  }
  std::string Wav(double seconds) const {
    test::WriteWav(folder_ / "sound.wav", seconds, 48000, 2, test::Clicks({0.5}, 48000));
    return folder_ / "sound.wav";
  }
  static int NumberOf(const AVFrame& frame) {
    const int luma = frame.data[0][20 * frame.linesize[0] + 30];
    return static_cast<int>(std::lround((luma - 16) * 255.0 / 219.0 / 4.0));
  }
  void Truncate(const std::string& path, double part) const {
    const auto size = static_cast<double>(std::filesystem::file_size(path));
    std::filesystem::resize_file(path, static_cast<uintmax_t>(size * part));
  }
  static std::string ErrorOf(const std::string& path) {
    try {
      VideoFile file(path);
    } catch (const Error& error) {
      return error.what();
    }
    return "none";
  }
  test::TempFolder folder_;
};

TEST_F(VideoFiles, TellWhatTheyAre) {
  struct {
    const char* name;
    const char* codec;
  } videos[] = {{"a.mp4", "h264"}, {"a.mov", "prores"}, {"a.mkv", "ffv1"}, {"a.webm", "vp9"}};
  for (const auto& each : videos) {
    const VideoInfo info = LookAtVideo(Video(each.name, 40, {30000, 1001}, each.codec));
    EXPECT_EQ(info.size, kSize) << each.name;
    EXPECT_EQ(info.rate, (FrameRate{30000, 1001})) << each.name;
    EXPECT_NEAR(info.seconds, 40 * 1001.0 / 30000.0, 0.002) << each.name;
    EXPECT_EQ(info.frames, 40) << each.name;
    EXPECT_EQ(info.sampleAspect, SampleAspect{}) << each.name;
    EXPECT_EQ(info.fields, FieldOrder::kProgressive) << each.name;
    EXPECT_FALSE(info.sound);
  }
}

TEST_F(VideoFiles, TellOfSoundFieldsAndTheShapeOfPixels) {
  const VideoInfo info = LookAtVideo(WriteVideo(
      folder_ / "a.mkv", {{64, 48}, {25, 1}, FieldOrder::kBottomFirst, {16, 11}}, 10,
      [](int) {
        return GreyFrame({64, 48}, 50);
      },
      "ffv1", Wav(3.0)));
  EXPECT_TRUE(info.sound);
  EXPECT_EQ(info.fields, FieldOrder::kBottomFirst);
  EXPECT_NEAR(info.sampleAspect.Ratio(), 16.0 / 11.0, 0.02);
}

TEST_F(VideoFiles, AreAsLongAsTheirPicturesNotTheirSound) {
  Wav(5.0);
  Video("silent.mkv", 25);
  RunFfmpeg("-i " + folder_ / "silent.mkv" + " -i " + folder_ / "sound.wav" + " -c copy " +
            folder_ / "long.mkv");
  const VideoInfo info = LookAtVideo(folder_ / "long.mkv");
  EXPECT_NEAR(info.seconds, 1.0, 0.002);
  EXPECT_EQ(info.frames, 25);
}

TEST_F(VideoFiles, ShowEachPictureInItsTime) {
  for (const char* name : {"a.mkv", "a.mp4"}) {
    VideoFile file(Video(name, 30, {25, 1}, name == std::string("a.mkv") ? "ffv1" : "h264"));
    for (int i = 0; i < 30; ++i) {
      EXPECT_EQ(NumberOf(file.At(i / 25.0)), i) << name;
      EXPECT_EQ(NumberOf(file.At((i + 0.9) / 25.0)), i) << name;
    }
  }
}

TEST_F(VideoFiles, AnyOrderShowsTheSamePictures) {
  for (const char* name : {"a.mp4", "a.mkv", "a.webm"}) {
    const bool webm = name == std::string("a.webm");
    // Long enough for several places to begin at.
    const std::string path = WriteVideo(
        folder_ / name, {kSize, {25, 1}}, 600, [](int i) { return GreyFrame(kSize, 4 * (i % 60)); },
        webm ? "vp9" : "h264");
    VideoFile file(path);
    for (const int i : {599, 0, 598, 300, 299, 301, 302, 12, 11, 450, 450, 5, 1, 0}) {
      EXPECT_EQ(NumberOf(file.At(i / 25.0)), i % 60) << name << " frame " << i;
    }
  }
}

TEST_F(VideoFiles, WhosePacketsLieInAnotherOrderAreShownFromFirstToLast) {
  const std::string h264 = "-c:v libx264 -qp 2 -x264-params b-adapt=0 -bf 2 ";
  const std::string h265 = "-c:v libx265 -x265-params qp=4:b-adapt=0:bframes=2:log-level=none";
  struct {
    const char* name;
    std::string coding;
  } videos[] = {{"short-groups.ts", h264 + "-g 12"},
                {"one-group.ts", h264},
                {"one-group.m2ts", h264},
                {"h265.ts", h265 + ":keyint=12"},
                {"h265-one-group.ts", h265},
                {"mpeg2.ts", "-c:v mpeg2video -q:v 1 -bf 2"},
                {"mpeg2.mpg", "-c:v mpeg2video -q:v 1 -bf 2"},
                {"mpeg4.ts", "-c:v mpeg4 -q:v 1 -bf 2"},
                {"no-index.flv", h264},
                {"mpeg4.avi", "-c:v mpeg4 -q:v 1 -bf 2"},
                {"h264.avi", h264},
                {"bare.264", h264}};
  Video("source.mkv", 50);
  for (const auto& [name, coding] : videos) {
    const std::string path = folder_ / name;
    RunFfmpeg("-i " + folder_ / "source.mkv" + " " + coding + " -pix_fmt yuv420p " + path);
    ASSERT_EQ(ErrorOf(path), "none");
    VideoFile file(path);
    EXPECT_EQ(file.Info().frames, 50) << name;
    for (int i = 0; i < 50; ++i) EXPECT_EQ(NumberOf(file.At((i + 0.5) / 25.0)), i) << name;
  }
}

TEST_F(VideoFiles, OfStreamsForSendingShowTheSameInAnyOrder) {
  const std::string source = WriteVideo(folder_ / "source.mkv", {kSize, {25, 1}}, 600,
                                        [](int i) { return GreyFrame(kSize, 4 * (i % 60)); });
  struct {
    const char* name;
    const char* coding;
  } videos[] = {{"a.ts", "-c:v libx264 -qp 2 -bf 2 -g 50"},
                {"open.ts", "-c:v libx264 -qp 2 -bf 2 -g 50 -x264-params open-gop=1"},
                {"one-group.ts", "-c:v libx264 -qp 2 -bf 2 -g 900"},
                {"mpeg4.ts", "-c:v mpeg4 -q:v 1 -bf 2"},
                {"mpeg2.mpg", "-c:v mpeg2video -q:v 1 -bf 2"},
                {"mpeg4.avi", "-c:v mpeg4 -q:v 1 -bf 2"},
                {"a.flv", "-c:v libx264 -qp 2 -bf 2 -g 50"}};
  for (const auto& [name, coding] : videos) {
    RunFfmpeg("-i " + source + " " + coding + " -pix_fmt yuv420p " + folder_ / name);
    VideoFile file(folder_ / name);
    for (const int i : {599, 0, 598, 300, 299, 301, 302, 12, 11, 450, 450, 5, 1, 0}) {
      EXPECT_EQ(NumberOf(file.At((i + 0.5) / 25.0)), i % 60) << name << " frame " << i;
    }
  }
}

TEST_F(VideoFiles, NamedLikeAPatternAreTheFilesOfThatName) {
  const auto grey = [](uint8_t level) {
    return test::MakePicture(16, 16, [=](int, int) { return test::Rgb{level, level, level}; });
  };
  test::WritePng(folder_ / "photo%d.png", grey(200));
  test::WritePng(folder_ / "photo1.png", grey(100));
  VideoFile file(folder_ / "photo%d.png");
  EXPECT_EQ(file.Info().frames, 1);
  EXPECT_EQ(file.At(0.0).data[0][0], 200);
}

TEST_F(VideoFiles, TheLastPictureStaysAndTheFirstOneIsThereBefore) {
  VideoFile file(Video("a.mkv", 10));
  EXPECT_EQ(NumberOf(file.At(7.0)), 9);
  EXPECT_EQ(NumberOf(file.At(1e6)), 9);
  EXPECT_EQ(NumberOf(file.At(-1.0)), 0);
  EXPECT_EQ(NumberOf(file.At(0.0)), 0);
}

TEST_F(VideoFiles, OfVariableRateGoByTheirTimes) {
  // Frame i begins at i * i / 25 seconds.
  Video("even.mkv", 8);
  RunFfmpeg("-i " + folder_ / "even.mkv" + " -vf 'settb=1/1000,setpts=N*N/25/TB' -vsync vfr -c:v " +
            "ffv1 -enc_time_base -1 " + folder_ / "odd.mkv");
  VideoFile file(folder_ / "odd.mkv");
  for (int i = 0; i < 8; ++i) {
    EXPECT_EQ(NumberOf(file.At(i * i / 25.0)), i);
    EXPECT_EQ(NumberOf(file.At(((i + 1) * (i + 1) - 0.5) / 25.0)), i);
  }
}

TEST_F(VideoFiles, ThatBeginLateBeginAtTheirFirstPicture) {
  Video("a.mkv", 20);
  RunFfmpeg("-itsoffset 3 -i " + folder_ / "a.mkv" + " -c copy " + folder_ / "late.mkv");
  VideoFile file(folder_ / "late.mkv");
  for (int i = 0; i < 20; ++i) EXPECT_EQ(NumberOf(file.At(i / 25.0)), i);
}

TEST_F(VideoFiles, ThatBeginAtTheEndOfTimeAreReadAllTheSame) {
  Video("a.mkv", 5);
  RunFfmpeg("-i " + folder_ / "a.mkv" + " -c copy -output_ts_offset 9223372036000 " +
            folder_ / "late.mkv");
  VideoFile file(folder_ / "late.mkv");
  EXPECT_EQ(NumberOf(file.At(0.0)), 0);
}

TEST_F(VideoFiles, CutOutOfALongerStreamKeepTheTimesOfTheirPictures) {
  Video("a.mkv", 50);
  RunFfmpeg("-i " + folder_ / "a.mkv" + " -c:v libx264 -qp 2 -g 20 -pix_fmt yuv420p " +
            folder_ / "whole.ts");
  // The first picture lacks its beginning, and so all that are built on it.
  std::ifstream in(folder_ / "whole.ts", std::ios::binary);
  const std::string whole{std::istreambuf_iterator<char>(in), {}};
  std::ofstream(folder_ / "cut.ts", std::ios::binary)
      << whole.substr(0, size_t{3} * 188) << whole.substr(size_t{6} * 188);
  VideoFile file(folder_ / "cut.ts");
  const int last = file.Info().frames - 1;
  const int missing = 49 - last;
  for (const int i : {last, 19 - missing, 0, 20 - missing, last, 25 - missing}) {
    EXPECT_EQ(NumberOf(file.At((i + 0.5) / 25.0)), std::max(i + missing, 20)) << i;
  }
}

TEST_F(VideoFiles, BareStreamsWithoutTimesAreCountedOut) {
  Video("a.mp4", 20, {25, 1}, "h264");
  RunFfmpeg("-i " + folder_ / "a.mp4" + " -c copy -bsf:v h264_mp4toannexb -f h264 " +
            folder_ / "bare.h264");
  VideoFile file(folder_ / "bare.h264");
  EXPECT_EQ(file.Info().frames, 20);
  for (int i = 0; i < 20; ++i) EXPECT_EQ(NumberOf(file.At(i / 25.0)), i);
}

TEST_F(VideoFiles, TurnedByAQuarterAreAsHighAsTheyWereWide) {
  Video("a.mp4", 5, {25, 1}, "h264");
  RunFfmpeg("-i " + folder_ / "a.mp4" + " -c copy -metadata:s:v rotate=90 " + folder_ / "turn.mp4");
  VideoFile file(folder_ / "turn.mp4");
  EXPECT_EQ(file.Info().size, (FrameSize{48, 64}));
  EXPECT_TRUE(file.Turn().transposed);
}

TEST_F(VideoFiles, CutShortAreRefusedByName) {
  const std::string sound = Wav(20.0);
  // An index in front promises all the frames; one behind is lost.
  const auto noisy = [](int i) {
    return test::MakeYCbYCr(kSize, [=](int x, int y) {
      return test::Rgb{uint8_t(x * 37 + i * 5), uint8_t(y * 91 + i), uint8_t(x * y * 7)};
    });
  };
  for (const char* name : {"a.mp4", "a.mkv", "b.mkv", "a.mov"}) {
    const bool mkv = std::string(name).ends_with("mkv");
    const std::string path =
        WriteVideo(folder_ / name, {kSize, {25, 1}}, 250, noisy, mkv ? "ffv1" : "h264",
                   name == std::string("b.mkv") ? sound : "");
    EXPECT_EQ(ErrorOf(path), "none");
    Truncate(path, 0.5);
    EXPECT_EQ(ErrorOf(path),
              path + ": ends before its 10.00 seconds are over; it is damaged or not whole");
  }
  Video("c.mp4", 50, {25, 1}, "h264");
  Truncate(folder_ / "c.mp4", 0.01);
  EXPECT_THAT(ErrorOf(folder_ / "c.mp4"),
              StartsWith(folder_ / "c.mp4" + ": cannot be read as a video: "));
}

TEST_F(VideoFiles, OfSoundOnlyAreRefused) {
  EXPECT_EQ(ErrorOf(Wav(1.0)), folder_ / "sound.wav" + ": has no moving pictures, only sound");
  // A cover is a picture, but none that moves.
  test::WritePng(folder_ / "cover.png", test::MakePicture(16, 16, [](int, int) {
                   return test::Rgb{200, 100, 0};
                 }));
  RunFfmpeg("-i " + folder_ / "sound.wav" + " -i " + folder_ / "cover.png" +
            " -map 0 -map 1 -c:a aac -c:v copy -disposition:v attached_pic " +
            folder_ / "song.m4a");
  EXPECT_EQ(ErrorOf(folder_ / "song.m4a"),
            folder_ / "song.m4a" + ": has no moving pictures, only sound");
}

TEST_F(VideoFiles, ThatAreNoneAreRefusedByName) {
  EXPECT_EQ(ErrorOf(folder_ / "no.mp4"), folder_ / "no.mp4" + ": there is no such file");
  EXPECT_EQ(ErrorOf(folder_ / ""), folder_ / "" + ": is a folder, not a video");
  std::ofstream(folder_ / "empty.mp4").close();
  EXPECT_THAT(ErrorOf(folder_ / "empty.mp4"),
              StartsWith(folder_ / "empty.mp4" + ": cannot be read as a video: "));
  std::ofstream(folder_ / "notes.txt") << "A text is no video.\n";
  EXPECT_THAT(ErrorOf(folder_ / "notes.txt"),
              StartsWith(folder_ / "notes.txt" + ": cannot be read as a video: "));
  std::ofstream(folder_ / "list.m3u8")
      << "#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXTINF:1,\nhttp://localhost:9/a.ts\n";
  EXPECT_THAT(ErrorOf(folder_ / "list.m3u8"), HasSubstr("cannot be read as a video"));
  EXPECT_EQ(ErrorOf("/dev/null"), "/dev/null: is not an ordinary file");
}

TEST_F(VideoFiles, DamagedInTheMiddleNeverCrash) {
  Video("a.mp4", 50, {25, 1}, "h264");
  for (const std::string form : {"mp4", "ts", "mpg", "avi", "flv"}) {
    const std::string path = folder_ / "a." + form;
    if (form != "mp4") RunFfmpeg("-i " + folder_ / "a.mp4" + " -c:v copy " + path);
    std::ifstream in(path, std::ios::binary);
    const std::string whole{std::istreambuf_iterator<char>(in), {}};
    for (unsigned seed = 1; seed <= 40; ++seed) {
      std::string bytes = whole;
      unsigned state = seed * 2654435761u;
      for (int i = 0; i < 12; ++i) {
        state = state * 1664525u + 1013904223u;
        bytes[(state >> 4) % bytes.size()] = static_cast<char>(state >> 24);
      }
      const std::string damaged = folder_ / "b." + form;
      std::ofstream(damaged, std::ios::binary) << bytes;
      try {
        VideoFile file(damaged);
        for (int i = 0; i < 50; i += 3) EXPECT_GT(file.At(i / 25.0).width, 0);
        EXPECT_GT(file.At(0.2).width, 0);
      } catch (const Error& error) {
        EXPECT_THAT(error.what(), StartsWith(damaged + ": "));
      }
    }
  }
}

}  // namespace
}  // namespace kelto::host
