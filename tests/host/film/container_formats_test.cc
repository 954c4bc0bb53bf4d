// Films with codecs and sound: what they may be asked for.
#include "host/film/formats.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/base/error.h"
#include "tests/host/film/misuse.h"

namespace kelto::host {
namespace {

using test::MisuseOf;
using testing::HasSubstr;

TEST(ContainerFormats, AreChosenByTheNamesEnding) {
  EXPECT_STREQ(KindFor("a/film.mp4", "").name, "mp4");
  EXPECT_STREQ(KindFor("FILM.MKV", "").name, "mkv");
  EXPECT_STREQ(KindFor("film.webm", "").name, "webm");
  EXPECT_STREQ(KindFor("film.mp4", "mkv").name, "mkv");
}

TEST(PictureFormats, OfTheCodecLibrariesHaveTwoEndings) {
  EXPECT_STREQ(KindFor("f%d.tif", "").name, "tiff");
  EXPECT_STREQ(KindFor("f%d.TIFF", "").name, "tiff");
  EXPECT_STREQ(KindFor("f%d.jpg", "").name, "jpeg");
  EXPECT_STREQ(KindFor("f%d.jpeg", "").name, "jpeg");
}

std::string SizeMisuse(const char* kind, FrameSize size, FieldOrder fields,
                       const char* codec = "") {
  return MisuseOf([&] {
    CheckRequest(KindFor("-", kind), {"-", {size, {25, 1}, fields}, 1, codec});
  });
}

TEST(ContainerFormats, OddSizesAreAnsweredWithOnesThatWork) {
  constexpr FieldOrder kProgressive = FieldOrder::kProgressive;
  EXPECT_THAT(SizeMisuse("mp4", {1921, 1081}, kProgressive), HasSubstr("such as 1920x1080"));
  EXPECT_THAT(SizeMisuse("mp4", {1921, 1080}, kProgressive), HasSubstr("an even width, such"));
  EXPECT_THAT(SizeMisuse("mkv", {1920, 1081}, kProgressive), HasSubstr("an even height, such"));
}

TEST(ContainerFormats, FieldsNeedHeightsThatTheyDivide) {
  constexpr FieldOrder kTop = FieldOrder::kTopFirst;
  EXPECT_THAT(SizeMisuse("mp4", {720, 486}, kTop), HasSubstr("multiple of 4, such as 720x484"));
  EXPECT_EQ(SizeMisuse("mp4", {720, 480}, kTop), "none");
}

TEST(ContainerFormats, FramesOf422NeedNoEvenHeight) {
  constexpr FieldOrder kProgressive = FieldOrder::kProgressive, kTop = FieldOrder::kTopFirst;
  EXPECT_EQ(SizeMisuse("mkv", {720, 485}, kProgressive, "ffv1"), "none");
  EXPECT_EQ(SizeMisuse("mov", {720, 486}, kTop, "prores"), "none");
  EXPECT_THAT(SizeMisuse("mkv", {720, 485}, kTop, "ffv1"), HasSubstr("720x484"));
  EXPECT_THAT(SizeMisuse("mkv", {720, 485}, kProgressive, "h265"), HasSubstr("720x484"));
}

TEST(ContainerFormats, AloneHaveCodecsAndSound) {
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

TEST(ContainerFormats, CodecsWithoutFieldsSaySo) {
  const FilmRequest request{"-", {{64, 64}, {25, 1}, FieldOrder::kTopFirst}, 1, "vp9"};
  EXPECT_EQ(MisuseOf([&] { CheckRequest(KindFor("-", "webm"), request); }),
            "--fields: vp9 holds whole frames only; use --codec h264, prores, ffv1, or "
            "--fields progressive");
}

}  // namespace
}  // namespace kelto::host
