#include "host/film/formats.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "host/error.h"
#include "tests/host/support/effect_frames.h"

namespace kelto::host {
namespace {

using testing::HasSubstr;

template <typename Step>
std::string MisuseOf(Step step) {
  try {
    step();
  } catch (const UsageError& error) {
    return error.what();
  }
  return "none";
}

TEST(Formats, AreChosenByTheNamesEnding) {
  EXPECT_STREQ(KindFor("a/film.mp4", "").name, "mp4");
  EXPECT_STREQ(KindFor("FILM.MKV", "").name, "mkv");
  EXPECT_STREQ(KindFor("frame-%04d.png", "").name, "png");
  EXPECT_STREQ(KindFor("film.mp4.y4m", "").name, "y4m");
  EXPECT_STREQ(KindFor("film.webm", "").name, "webm");
  EXPECT_STREQ(KindFor("f%d.tif", "").name, "tiff");
  EXPECT_STREQ(KindFor("f%d.TIFF", "").name, "tiff");
  EXPECT_STREQ(KindFor("f%d.jpg", "").name, "jpeg");
  EXPECT_STREQ(KindFor("f%d.jpeg", "").name, "jpeg");
}

TEST(Formats, ANamedFormatGoesBeforeTheEnding) {
  EXPECT_STREQ(KindFor("film.dat", "bgra").name, "bgra");
  EXPECT_STREQ(KindFor("film.mp4", "mkv").name, "mkv");
  EXPECT_STREQ(KindFor("-", "yuyv").name, "yuyv");
}

TEST(Formats, AnUnknownOneIsAnsweredWithTheKnown) {
  for (const FilmKind& kind : FilmKinds()) {
    EXPECT_THAT(MisuseOf([] { KindFor("film.avi", ""); }), HasSubstr(kind.name));
    EXPECT_THAT(MisuseOf([] { KindFor("film", ""); }), HasSubstr(kind.name));
    EXPECT_THAT(MisuseOf([] { KindFor(".mp4", ""); }), HasSubstr(kind.name));
    EXPECT_THAT(MisuseOf([] { KindFor("film.mp4", "avi"); }), HasSubstr(kind.name));
    EXPECT_THAT(MisuseOf([] { KindFor("-", ""); }), HasSubstr("--format"));
  }
}

std::string SizeMisuse(const char* kind, FrameSize size, FieldOrder fields) {
  return MisuseOf([&] { CheckRequest(KindFor("-", kind), {"-", {size, {25, 1}, fields}, 1}); });
}

TEST(Formats, OddSizesAreAnsweredWithOnesThatWork) {
  constexpr FieldOrder kProgressive = FieldOrder::kProgressive;
  EXPECT_THAT(SizeMisuse("mp4", {1921, 1081}, kProgressive), HasSubstr("such as 1920x1080"));
  EXPECT_THAT(SizeMisuse("mp4", {1921, 1080}, kProgressive), HasSubstr("an even width, such"));
  EXPECT_THAT(SizeMisuse("mkv", {1920, 1081}, kProgressive), HasSubstr("an even height, such"));
  EXPECT_THAT(SizeMisuse("yuyv", {3, 3}, kProgressive), HasSubstr("such as 2x3"));
  EXPECT_EQ(SizeMisuse("y4m", {4, 3}, kProgressive), "none");
  EXPECT_EQ(SizeMisuse("png", {3, 3}, kProgressive), "none");
  EXPECT_EQ(SizeMisuse("bgra", {3, 3}, kProgressive), "none");
}

TEST(Formats, FieldsNeedHeightsThatTheyDivide) {
  constexpr FieldOrder kTop = FieldOrder::kTopFirst;
  EXPECT_THAT(SizeMisuse("mp4", {720, 486}, kTop), HasSubstr("multiple of 4, such as 720x484"));
  EXPECT_EQ(SizeMisuse("mp4", {720, 480}, kTop), "none");
  EXPECT_EQ(SizeMisuse("y4m", {720, 486}, kTop), "none");
  EXPECT_THAT(SizeMisuse("png", {720, 485}, kTop), HasSubstr("such as 720x484"));
}

TEST(Formats, FramesOf422NeedNoEvenHeight) {
  const auto misuse = [](const char* kind, const char* codec, FrameSize size, FieldOrder fields) {
    return MisuseOf([&] {
      CheckRequest(KindFor("-", kind), {"-", {size, {25, 1}, fields}, 1, codec});
    });
  };
  EXPECT_EQ(misuse("mkv", "ffv1", {720, 485}, FieldOrder::kProgressive), "none");
  EXPECT_EQ(misuse("mov", "prores", {720, 486}, FieldOrder::kTopFirst), "none");
  EXPECT_THAT(misuse("mkv", "ffv1", {720, 485}, FieldOrder::kTopFirst), HasSubstr("720x484"));
  EXPECT_THAT(misuse("mkv", "h265", {720, 485}, FieldOrder::kProgressive), HasSubstr("720x484"));
}

TEST(Formats, CodecsAndSoundAreForContainers) {
  const auto misuse = [](const char* kind, const char* codec, const char* audio) {
    return MisuseOf([&] { CheckRequest(KindFor("-", kind), {"-", {}, 1, codec, audio}); });
  };
  EXPECT_EQ(misuse("png", "h264", ""),
            "--codec h264: png films have no codec; use one of mp4, mkv, mov, webm");
  EXPECT_EQ(misuse("y4m", "", "a.wav"),
            "--audio a.wav: y4m films have no sound; use one of mp4, mkv, mov, webm");
  EXPECT_EQ(misuse("mp4", "ffv1", ""), "--codec ffv1: does not go into mp4; use mkv");
  EXPECT_THAT(misuse("mp4", "mpeg2", ""), HasSubstr("choose one of h264, h265"));
  EXPECT_EQ(misuse("mp4", "h265", "a.wav"), "none");
  EXPECT_EQ(misuse("webm", "", "a.wav"), "none");
}

TEST(Formats, CodecsWithoutFieldsSaySo) {
  const FilmRequest request{"-", {{64, 64}, {25, 1}, FieldOrder::kTopFirst}, 1, "vp9"};
  EXPECT_EQ(MisuseOf([&] { CheckRequest(KindFor("-", "webm"), request); }),
            "--fields: vp9 holds whole frames only; use --codec h264, prores, ffv1, or leave "
            "--fields out");
}

TEST(Formats, ManyPicturesNeedANumberInTheirName) {
  const FilmKind& png = KindFor("-", "png");
  const auto misuse = [&](const char* output, int32_t frames) {
    return MisuseOf([&] { CheckRequest(png, {output, {}, frames}); });
  };
  EXPECT_THAT(misuse("still.png", 2), HasSubstr("frame-%04d.png"));
  EXPECT_EQ(misuse("still.png", 1), "none");
  EXPECT_EQ(misuse("f%d.png", 2), "none");
  EXPECT_EQ(misuse("-", 2), "none");
  EXPECT_THAT(misuse("%s%n.png", 1), HasSubstr("%s%n.png"));
}

TEST(Formats, KnowsWhenAFilmWouldReplaceThePhoto) {
  const test::TempFolder folder;
  const std::string photo = folder / "frame-0007.png";
  std::ofstream(photo) << "x";
  const FilmKind& png = KindFor("-", "png");
  EXPECT_TRUE(WouldReplace(png, {folder / "frame-%04d.png", {}, 8}, photo));
  EXPECT_FALSE(WouldReplace(png, {folder / "frame-%04d.png", {}, 7}, photo));
  EXPECT_TRUE(WouldReplace(KindFor("-", "mp4"), {folder / "./frame-0007.png", {}, 1}, photo));
  EXPECT_FALSE(WouldReplace(KindFor("-", "mp4"), {folder / "film.mp4", {}, 1}, photo));
  EXPECT_FALSE(WouldReplace(png, {"-", {}, 1}, photo));
}

}  // namespace
}  // namespace kelto::host
