#include "host/film/formats.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <span>

#include "host/base/error.h"
#include "host/film/coded_films.h"
#include "tests/host/film/misuse.h"
#include "tests/host/support/effect_frames.h"

namespace kelto::host {
namespace {

using test::MisuseOf;
using testing::HasSubstr;

TEST(Formats, AreChosenByTheNamesEnding) {
  EXPECT_STREQ(KindFor("frame-%04d.png", "").name, "png");
  EXPECT_STREQ(KindFor("film.mp4.y4m", "").name, "y4m");
  EXPECT_STREQ(KindFor("a/FILM.YUYV", "").name, "yuyv");
}

TEST(Formats, ANamedFormatGoesBeforeTheEnding) {
  EXPECT_STREQ(KindFor("film.dat", "bgra").name, "bgra");
  EXPECT_STREQ(KindFor("film.y4m", "png").name, "png");
  EXPECT_STREQ(KindFor("-", "yuyv").name, "yuyv");
}

TEST(Formats, AnUnknownOneIsAnsweredWithTheKnown) {
  for (const FilmKind& kind : FilmKinds()) {
    EXPECT_THAT(MisuseOf([] { KindFor("film.avi", ""); }), HasSubstr(kind.name));
    EXPECT_THAT(MisuseOf([] { KindFor("film", ""); }), HasSubstr(kind.name));
    EXPECT_THAT(MisuseOf([] { KindFor(".y4m", ""); }), HasSubstr(kind.name));
    EXPECT_THAT(MisuseOf([] { KindFor("film.y4m", "avi"); }), HasSubstr(kind.name));
    EXPECT_THAT(MisuseOf([] { KindFor("-", ""); }), HasSubstr("--format"));
  }
}

std::string SizeMisuse(const char* kind, FrameSize size, FieldOrder fields) {
  return MisuseOf([&] { CheckRequest(KindFor("-", kind), {"-", {size, {25, 1}, fields}, 1}); });
}

TEST(Formats, OddSizesAreAnsweredWithOnesThatWork) {
  constexpr FieldOrder kProgressive = FieldOrder::kProgressive;
  EXPECT_THAT(SizeMisuse("yuyv", {3, 3}, kProgressive), HasSubstr("such as 2x3"));
  EXPECT_EQ(SizeMisuse("y4m", {4, 3}, kProgressive), "none");
  EXPECT_EQ(SizeMisuse("png", {3, 3}, kProgressive), "none");
  EXPECT_EQ(SizeMisuse("bgra", {3, 3}, kProgressive), "none");
}

TEST(Formats, FieldsNeedHeightsThatTheyDivide) {
  constexpr FieldOrder kTop = FieldOrder::kTopFirst;
  EXPECT_EQ(SizeMisuse("y4m", {720, 486}, kTop), "none");
  EXPECT_THAT(SizeMisuse("png", {720, 485}, kTop), HasSubstr("such as 720x484"));
}

TEST(Formats, SoundIsRefusedWithoutNamingKindsThatThereAreNot) {
  if (!CodedFilmKinds().empty()) GTEST_SKIP() << "this build has kinds of film with sound";
  EXPECT_EQ(MisuseOf([] {
              CheckRequest(KindFor("-", "y4m"), {"-", {}, 1, "", "a.wav"});
            }),
            "--audio a.wav: y4m films have no sound, nor have the others that this command writes");
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
  EXPECT_TRUE(WouldReplace(KindFor("-", "y4m"), {folder / "./frame-0007.png", {}, 1}, photo));
  EXPECT_FALSE(WouldReplace(KindFor("-", "y4m"), {folder / "film.y4m", {}, 1}, photo));
  EXPECT_FALSE(WouldReplace(png, {"-", {}, 1}, photo));
}

// As many comparisons as pictures and sources would take hours here.
TEST(Formats, KnowTheirPicturesWithoutAskingForEach) {
  const test::TempFolder folder;
  std::vector<std::string> sources;
  for (int i = 0; i < 1000; ++i) {
    sources.push_back(folder / ("photo" + std::to_string(i) + ".png"));
    std::ofstream(sources.back()) << "x";
  }
  const FilmKind& png = KindFor("-", "png");
  EXPECT_FALSE(WouldReplaceAny(png, {folder / "f%d.png", {}, 10'000'000}, sources));
}

}  // namespace
}  // namespace kelto::host
