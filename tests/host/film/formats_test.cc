#include "host/film/formats.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <span>

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

#if !defined(KELTO_FFMPEG)
TEST(Formats, SoundIsRefusedWithoutNamingKindsThatThereAreNot) {
  EXPECT_EQ(MisuseOf([] {
              CheckRequest(KindFor("-", "y4m"), {"-", {}, 1, "", "a.wav"});
            }),
            "--audio a.wav: y4m films have no sound, nor have the others that this command writes");
}
#endif

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

TEST(Formats, KnowTheirPicturesUnderOtherNames) {
  namespace fs = std::filesystem;
  const test::TempFolder folder;
  const FilmKind& png = KindFor("-", "png");
  const FilmRequest request{folder / "out/f%d.png", {}, 10};
  fs::create_directory(folder / "out");
  std::ofstream(folder / "photo.png") << "photo";
  std::ofstream(folder / "out/f3.png") << "other";  // of the same size
  const auto replaces = [&](const std::string& path) { return WouldReplace(png, request, path); };
  EXPECT_FALSE(replaces(folder / "photo.png"));
  EXPECT_TRUE(replaces(folder / "out/f9.png")) << "yet to be made";
  EXPECT_FALSE(replaces(folder / "out/f10.png"));
  EXPECT_FALSE(replaces(folder / "f3.png")) << "elsewhere";
  EXPECT_FALSE(replaces(""));
  fs::create_hard_link(folder / "photo.png", folder / "out/f10.png");
  EXPECT_FALSE(replaces(folder / "photo.png")) << "behind the last";
  for (const char* picture : {"out/f4.png", "out/f0.png"}) {
    fs::create_symlink(folder / "photo.png", folder / picture);
    EXPECT_TRUE(replaces(folder / "photo.png"));
    fs::remove(folder / picture);
    fs::create_hard_link(folder / "photo.png", folder / picture);
    EXPECT_TRUE(replaces(folder / "photo.png"));
    const std::string paths[] = {"", folder / "none.png", folder / "photo.png"};
    EXPECT_TRUE(WouldReplaceAny(png, request, paths));
    EXPECT_FALSE(WouldReplaceAny(png, request, std::span(paths).first(2)));
    fs::remove(folder / picture);
  }
  EXPECT_FALSE(WouldReplace(png, {folder / "none/f%d.png", {}, 10}, folder / "photo.png"));
}

TEST(Formats, KnowTheirPicturesInAFolderThatCannotBeRead) {
  if (geteuid() == 0) GTEST_SKIP() << "nothing keeps root from reading";
  namespace fs = std::filesystem;
  const test::TempFolder folder;
  fs::create_directory(folder / "out");
  std::ofstream(folder / "photo.png") << "photo";
  fs::create_hard_link(folder / "photo.png", folder / "out/f4.png");
  fs::permissions(folder / "out", fs::perms::owner_write | fs::perms::owner_exec);
  const FilmKind& png = KindFor("-", "png");
  EXPECT_TRUE(WouldReplace(png, {folder / "out/f%d.png", {}, 5}, folder / "photo.png"));
  EXPECT_FALSE(WouldReplace(png, {folder / "out/f%d.png", {}, 4}, folder / "photo.png"));
  fs::permissions(folder / "out", fs::perms::owner_all);
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
