#include "host/video/video_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

#include "host/base/error.h"
#include "tests/host/support/film_reader.h"
#include "tests/host/support/videos.h"

namespace kelto::host {
namespace {

using test::EffectFrame;
using test::GreyFrame;
using test::Rgb;
using test::RunFfmpeg;
using test::WriteVideo;

/// Smooth, so that nothing but levels changes, and full of colours.
EffectFrame Colours(FrameSize size, int number = 0) {
  return test::MakeYCbYCr(size, [=](int x, int y) {
    const auto wave = [](double phase) {
      return uint8_t(std::lround(127.5 + 127.5 * std::sin(phase)));
    };
    return Rgb{wave(x * 0.02 + number), wave(y * 0.023 + 1.0), wave((x + y) * 0.017 + 2.0)};
  });
}

int GreatestDifference(const EffectFrame& a, const FrameView& b) {
  int greatest = 0;
  for (int32_t y = 0; y < a.size.height; ++y) {
    for (int32_t i = 0; i < a.View().rowBytes; ++i) {
      greatest = std::max(greatest, std::abs(int{a.View().Row(y)[i]} - int{b.Row(y)[i]}));
    }
  }
  return greatest;
}

class VideoReaders : public testing::Test {
 protected:
  test::TempFolder folder_;
};

Rgb ColourOf(const FrameView& frame, int x, int y) {
  const uint8_t* pixel = frame.Row(y) + 4 * x;
  return {pixel[2], pixel[1], pixel[0]};
}

TEST_F(VideoReaders, GiveBackTheFramesThatAFilmWasMadeOf) {
  for (const FrameSize size : {FrameSize{320, 240}, FrameSize{320, 720}}) {
    const FilmFormat format{size, {25, 1}};
    const std::string path =
        WriteVideo(folder_ / "a.mkv", format, 3, [&](int i) { return Colours(size, i); });
    VideoReader reader(path, format, PixelLayout::kYCbYCr);
    for (int i = 0; i < 3; ++i) {
      EXPECT_LE(GreatestDifference(Colours(size, i), reader.Frame(i)), 1) << size.height;
    }
  }
}

TEST_F(VideoReaders, AVideoReadAndWrittenAgainHasItsOwnColours) {
  for (const FrameSize size : {FrameSize{320, 240}, FrameSize{320, 720}}) {
    const FilmFormat format{size, {25, 1}};
    const std::string first =
        WriteVideo(folder_ / "a.mkv", format, 2, [&](int i) { return Colours(size, i); });
    VideoReader reader(first, format, PixelLayout::kYCbYCr);
    const std::string second = WriteVideo(folder_ / "b.mkv", format, 2, [&](int i) {
      const FrameView view = reader.Frame(i);
      return EffectFrame{size, {view.pixels, view.Row(size.height)}};
    });
    const test::DecodedFilm a = test::ReadFilm(first), b = test::ReadFilm(second);
    ASSERT_EQ(a.frames.size(), b.frames.size());
    for (size_t i = 0; i < a.frames.size(); ++i) {
      for (int plane = 0; plane < 3; ++plane) {
        int greatest = 0;
        for (size_t at = 0; at < a.frames[i].planes[plane].size(); ++at) {
          greatest = std::max(greatest, std::abs(int{a.frames[i].planes[plane][at]} -
                                                 int{b.frames[i].planes[plane][at]}));
        }
        EXPECT_LE(greatest, 2) << "plane " << plane << " at " << size.height << " rows";
      }
    }
  }
}

TEST_F(VideoReaders, ColourBarsOfEveryCodingAreTheEffectsOwn) {
  // Bars in other people's codings, made by ffmpeg from RGB.
  const FrameSize size{256, 64};
  const std::vector<Rgb> bars = test::BarColours();
  test::WritePng(folder_ / "bars.png", test::MakePicture(size.width, size.height, [&](int x, int) {
                   return bars[static_cast<size_t>(x) * bars.size() / 256];
                 }));
  const auto read = [&](const std::string& options, PixelLayout layout) {
    RunFfmpeg("-i " + folder_ / "bars.png" + " " + options + " -c:v ffv1 " + folder_ / "v.mkv");
    VideoReader reader(folder_ / "v.mkv", {size, {25, 1}}, layout);
    const FrameView frame = reader.Frame(0);
    return EffectFrame{size, {frame.pixels, frame.Row(size.height)}};
  };
  const auto scaled = [](const std::string& matrix, const std::string& range,
                         const std::string& format) {
    return "-vf scale=out_color_matrix=" + matrix + ":out_range=" + range +
           ":flags=accurate_rnd+full_chroma_int,format=" + format + " -colorspace " +
           (matrix == "bt2020"  ? "bt2020nc"
            : matrix == "bt601" ? "smpte170m"
                                : matrix) +
           " -color_range " + range;
  };
  for (const std::string& options :
       {scaled("bt709", "tv", "yuv444p"), scaled("bt601", "tv", "yuv444p"),
        scaled("bt601", "pc", "yuv444p"), scaled("bt709", "pc", "yuv422p"),
        scaled("bt2020", "tv", "yuv422p10"), scaled("smpte240m", "tv", "yuv420p"),
        std::string("-pix_fmt bgr0"), std::string("-pix_fmt gbrp16")}) {
    const EffectFrame luma = read(options, PixelLayout::kYCbYCr);
    const EffectFrame rgb = read(options, PixelLayout::kBGRA);
    for (size_t i = 0; i < bars.size(); ++i) {
      const int x = static_cast<int>((2 * i + 1) * 256 / (2 * bars.size())) & ~1;
      const std::vector<uint8_t> wanted = test::EffectPair(bars[i]);
      for (int part = 0; part < 4; ++part) {
        EXPECT_NEAR(luma.View().Row(30)[2 * x + part], wanted[static_cast<size_t>(part)], 2)
            << options << ": " << test::ToString(bars[i]);
      }
      EXPECT_LE(test::Distance(ColourOf(rgb.View(), x, 30), bars[i]), 3)
          << options << ": " << test::ToString(bars[i]) << " became "
          << test::ToString(ColourOf(rgb.View(), x, 30));
      EXPECT_EQ(rgb.View().Row(30)[4 * x + 3], 255);
    }
  }
}

TEST_F(VideoReaders, WordsHoldAllBitsOfAVideo) {
  // Frame i is grey, i quarters of white or nearly so: `step` more than the frame before.
  const struct {
    const char* format;
    int black, step, white, chroma;
    const char* range;
  } kVideos[] = {{"yuv420p10", 64, 219, 876, 512, "tv"},    {"yuv422p10", 64, 219, 876, 512, "tv"},
                 {"yuv444p12", 256, 876, 3504, 2048, "tv"}, {"yuv420p10", 0, 255, 1023, 512, "pc"},
                 {"gray10", 0, 255, 1023, 0, "pc"},         {"gbrp10", 0, 255, 1023, 0, "pc"},
                 {"gbrp16", 0, 16383, 65535, 0, "pc"},      {"yuv420p", 16, 54, 219, 128, "tv"}};
  for (const auto& video : kVideos) {
    const std::string format = video.format;
    const std::string level =
        "'" + std::to_string(video.black) + "+" + std::to_string(video.step) + "*N'";
    const std::string chroma = std::to_string(video.chroma);
    const bool rgb = format.starts_with("gbrp");
    RunFfmpeg("-f lavfi -i color=gray:size=64x48:rate=25:duration=0.2,format=" + format + ",geq=" +
              (rgb ? "r=" + level + ":g=" + level + ":b=" + level
                   : "lum=" + level + (video.chroma > 0 ? ":cb=" + chroma + ":cr=" + chroma : "")) +
              " -c:v ffv1 -color_range " + video.range + " " + folder_ / "v.mkv");
    // As it is; scaled; with black above and below.
    for (const FrameSize size : {FrameSize{64, 48}, FrameSize{96, 72}, FrameSize{64, 64}}) {
      VideoReader reader(folder_ / "v.mkv", {size, {25, 1}}, PixelLayout::kRgba16);
      for (int i = 0; i < 5; ++i) {
        const FrameView frame = reader.Frame(i);
        const void* row = frame.Row(size.height / 2);
        const uint16_t* pixel = static_cast<const uint16_t*>(row) + 4 * (size.width / 2);
        for (int c = 0; c < 3; ++c) {
          EXPECT_NEAR(pixel[c], 65535.0 * i * video.step / video.white,
                      format == "yuv420p" ? 140 : 16)
              << format << " " << video.range << ", frame " << i << " at " << size.height;
        }
        EXPECT_EQ(pixel[3], 65535);
        const void* top = frame.Row(0);
        if (size.width == size.height) {
          EXPECT_THAT(std::vector<uint16_t>(static_cast<const uint16_t*>(top),
                                            static_cast<const uint16_t*>(top) + 4),
                      testing::ElementsAre(0, 0, 0, 65535));
        }
      }
    }
  }
}

TEST_F(VideoReaders, WordsAreTurnedAsBytesAre) {
  RunFfmpeg(
      "-f lavfi -i testsrc2=size=96x64:rate=25:duration=0.04 -pix_fmt yuv420p10 -c:v libx265 "
      "-x265-params log-level=none -f mp4 " +
      folder_ / "a.mp4");
  RunFfmpeg("-i " + folder_ / "a.mp4" + " -c copy -metadata:s:v rotate=90 " + folder_ / "b.mp4");
  const FrameSize size{64, 96};
  VideoReader words(folder_ / "b.mp4", {size, {25, 1}}, PixelLayout::kRgba16);
  VideoReader bytes(folder_ / "b.mp4", {size, {25, 1}}, PixelLayout::kBGRA);
  const FrameView deep = words.Frame(0), flat = bytes.Frame(0);
  for (int y = 0; y < size.height; ++y) {
    const void* row = deep.Row(y);
    const auto* pixel = static_cast<const uint16_t*>(row);
    for (int x = 0; x < size.width; ++x, pixel += 4) {
      for (int c = 0; c < 3; ++c) {
        ASSERT_NEAR(pixel[c] / 257.0, flat.Row(y)[4 * x + 2 - c], 1.5) << x << "," << y;
      }
    }
  }
}

TEST_F(VideoReaders, FilmsOfAnotherRateShowWhatTheVideoShowsAtThatTime) {
  const FrameSize size{64, 48};
  const std::string path = WriteVideo(folder_ / "a.mkv", {size, {25, 1}}, 20,
                                      [&](int i) { return GreyFrame(size, 10 * i); });
  const auto numbers = [&](FrameRate rate, const std::vector<int>& frames) {
    VideoReader reader(path, {size, rate}, PixelLayout::kBGRA);
    std::vector<int> shown;
    shown.reserve(frames.size());
    for (const int frame : frames) {
      shown.push_back(static_cast<int>(std::lround(reader.Frame(frame).Row(9)[40] / 10.0)));
    }
    return shown;
  };
  using Numbers = std::vector<int>;
  EXPECT_EQ(numbers({25, 1}, {0, 1, 2, 19, 20, 99}), (Numbers{0, 1, 2, 19, 19, 19}));
  EXPECT_EQ(numbers({50, 1}, {0, 1, 2, 3, 4, 39}), (Numbers{0, 0, 1, 1, 2, 19}));
  EXPECT_EQ(numbers({25, 2}, {0, 1, 2, 9, 3}), (Numbers{0, 2, 4, 18, 6}));
  EXPECT_EQ(numbers({30000, 1001}, {0, 1, 2, 3, 4, 5, 6}), (Numbers{0, 0, 1, 2, 3, 4, 5}));
}

TEST_F(VideoReaders, ScaleToTheFilmsSize) {
  const FrameSize small{160, 90}, large{320, 180};
  const std::string path =
      WriteVideo(folder_ / "a.mkv", {large, {25, 1}}, 1, [&](int) { return Colours(large); });
  VideoReader reader(path, {small, {25, 1}}, PixelLayout::kYCbYCr);
  const FrameView frame = reader.Frame(0);
  const EffectFrame whole = Colours(large);
  for (int y = 2; y < small.height - 2; y += 5) {
    for (int x = 2; x < small.width - 2; x += 6) {
      EXPECT_NEAR(frame.Row(y)[2 * x], whole.View().Row(2 * y)[4 * x], 4);
      EXPECT_NEAR(frame.Row(y)[2 * x + 1], whole.View().Row(2 * y)[4 * x + 1], 4);
    }
  }
}

TEST_F(VideoReaders, OfAnotherShapeFitWithBlackOrFill) {
  // White with a red rim of a tenth.
  const FrameSize wide{200, 100}, square{100, 100};
  const std::string path = WriteVideo(folder_ / "a.mkv", {wide, {25, 1}}, 1, [&](int) {
    return test::MakeYCbYCr(wide, [](int x, int y) {
      const bool rim = x < 20 || x >= 180 || y < 10 || y >= 90;
      return rim ? Rgb{200, 0, 0} : Rgb{230, 230, 230};
    });
  });
  VideoReader whole(path, {square, {25, 1}}, PixelLayout::kBGRA);
  const FrameView boxed = whole.Frame(0);
  EXPECT_EQ(test::Distance(ColourOf(boxed, 50, 5), {0, 0, 0}), 0);
  EXPECT_EQ(test::Distance(ColourOf(boxed, 50, 95), {0, 0, 0}), 0);
  EXPECT_LE(test::Distance(ColourOf(boxed, 3, 50), {200, 0, 0}), 4);
  EXPECT_LE(test::Distance(ColourOf(boxed, 50, 50), {230, 230, 230}), 3);
  VideoReader fill(path, {square, {25, 1}}, PixelLayout::kBGRA, VideoFit::kFill);
  const FrameView filled = fill.Frame(0);
  EXPECT_LE(test::Distance(ColourOf(filled, 50, 3), {200, 0, 0}), 4);
  EXPECT_LE(test::Distance(ColourOf(filled, 2, 50), {230, 230, 230}), 3);
  // Pixels twice as high as wide make the wide video a square.
  VideoReader shaped(path, {square, {25, 1}, FieldOrder::kProgressive, {2, 1}}, PixelLayout::kBGRA);
  EXPECT_LE(test::Distance(ColourOf(shaped.Frame(0), 50, 3), {200, 0, 0}), 4);
  VideoReader black(path, {square, {25, 1}}, PixelLayout::kYCbYCr);
  EXPECT_EQ(black.Frame(0).Row(3)[60], 16);
  EXPECT_EQ(black.Frame(0).Row(3)[61], 128);
}

TEST_F(VideoReaders, TurnedVideosAreShownAsOtherPlayersShowThem) {
  const FrameSize stored{96, 64};
  WriteVideo(
      folder_ / "a.mp4", {stored, {25, 1}}, 2,
      [&](int) {
        return test::MakeYCbYCr(stored, [](int x, int y) {
          if (x < 28) return Rgb{0, 0, 200};
          return y < 32 ? Rgb{200, 0, 0} : Rgb{0, 200, 0};
        });
      },
      "h264");
  for (const std::string& angle : {std::string("90"), std::string("180"), std::string("270")}) {
    RunFfmpeg("-i " + folder_ / "a.mp4" + " -c copy -metadata:s:v rotate=" + angle + " " +
              folder_ / "b.mp4");
    // ffmpeg turns what it decodes, as players do.
    RunFfmpeg("-i " + folder_ / "b.mp4" + " -frames:v 1 " + folder_ / "b.png");
    const test::Picture shown = test::ReadPng(folder_ / "b.png");
    const FrameSize size{shown.width, shown.height};
    EXPECT_EQ(size, angle == "180" ? stored : (FrameSize{64, 96}));
    VideoReader rgb(folder_ / "b.mp4", {size, {25, 1}}, PixelLayout::kBGRA);
    VideoReader luma(folder_ / "b.mp4", {size, {25, 1}}, PixelLayout::kYCbYCr);
    const FrameView frame = rgb.Frame(0), coded = luma.Frame(0);
    for (int y = 8; y < size.height; y += 16) {
      for (int x = 8; x < size.width; x += 16) {
        EXPECT_LE(test::Distance(ColourOf(frame, x, y), shown.At(x, y)), 8)
            << angle << " at " << x << ", " << y << ": " << test::ToString(ColourOf(frame, x, y))
            << " for " << test::ToString(shown.At(x, y));
        const std::vector<uint8_t> pair = test::EffectPair(shown.At(x, y));
        for (int i = 0; i < 4; ++i) {
          EXPECT_NEAR(coded.Row(y)[2 * x + i], pair[static_cast<size_t>(i)], 5) << angle;
        }
      }
    }
  }
}

/// A frame whose fields are of two greys.
EffectFrame Woven(FrameSize size, int top, int bottom) {
  return test::MakeYCbYCr(size, [=](int, int y) {
    const auto level = uint8_t(y % 2 == 0 ? top : bottom);
    return Rgb{level, level, level};
  });
}

class VideoFields : public VideoReaders {
 protected:
  /// Fields count up in time: frame i has 10 i first, then 10 i + 5.
  std::string Video(FieldOrder order, FrameSize size) const {
    return WriteVideo(folder_ / "a.mkv", {size, {25, 1}, order}, 12, [=](int i) {
      const int first = 20 * i, second = 20 * i + 10;
      return order == FieldOrder::kTopFirst ? Woven(size, first, second)
                                            : Woven(size, second, first);
    });
  }
  /// Halves of frames since the beginning at which the two fields of a frame were.
  static std::pair<int, int> FieldTimes(const FrameView& frame) {
    const auto time = [&](int row) {
      return static_cast<int>(std::lround((frame.Row(row)[20] - 16) * 255.0 / 219.0 / 10.0));
    };
    return {time(20), time(21)};
  }
};

TEST_F(VideoFields, OfInterlacedFilmsAreTheVideosOwn) {
  for (const FrameSize size : {FrameSize{64, 48}, FrameSize{48, 96}}) {
    for (const FieldOrder order : {FieldOrder::kTopFirst, FieldOrder::kBottomFirst}) {
      const bool topFirst = order == FieldOrder::kTopFirst;
      const FilmFormat film{size, {25, 1}, order};
      VideoReader reader(Video(order, {64, 48}), film, PixelLayout::kYCbYCr, VideoFit::kFill);
      for (const int i : {0, 1, 2, 7, 3}) {
        const auto [top, bottom] = FieldTimes(reader.Frame(i));
        EXPECT_EQ(top, topFirst ? 2 * i : 2 * i + 1);
        EXPECT_EQ(bottom, topFirst ? 2 * i + 1 : 2 * i);
      }
    }
  }
}

TEST_F(VideoFields, OfTheOtherOrderComeFromTheFrameBefore) {
  const FrameSize size{64, 48};
  VideoReader reader(Video(FieldOrder::kBottomFirst, size), {size, {25, 1}, FieldOrder::kTopFirst},
                     PixelLayout::kYCbYCr);
  for (const int i : {1, 2, 5}) {
    const auto [top, bottom] = FieldTimes(reader.Frame(i));
    EXPECT_EQ(top, 2 * i - 1);
    EXPECT_EQ(bottom, 2 * i);
  }
}

TEST_F(VideoFields, OfFilmsOfWholeFramesAreTheFirstOnes) {
  const FrameSize size{64, 48};
  for (const FieldOrder order : {FieldOrder::kTopFirst, FieldOrder::kBottomFirst}) {
    VideoReader reader(Video(order, size), {size, {25, 1}}, PixelLayout::kYCbYCr);
    for (const int i : {0, 3, 11}) {
      EXPECT_EQ(FieldTimes(reader.Frame(i)), (std::pair{2 * i, 2 * i}));
    }
  }
}

TEST_F(VideoFields, OfAVideoOfWholeFramesAreEachAtItsTime) {
  const FrameSize size{64, 48};
  const std::string path = WriteVideo(folder_ / "a.mkv", {size, {50, 1}}, 24,
                                      [&](int i) { return GreyFrame(size, 10 * i); });
  VideoReader reader(path, {size, {25, 1}, FieldOrder::kBottomFirst}, PixelLayout::kYCbYCr);
  for (const int i : {0, 1, 6, 11}) {
    EXPECT_EQ(FieldTimes(reader.Frame(i)), (std::pair{2 * i + 1, 2 * i}));
  }
}

}  // namespace
}  // namespace kelto::host
