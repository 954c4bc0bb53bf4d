// Sources that are pictures of the film to be written, under whatever name: links are Linux's here.
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <span>

#include "host/film/formats.h"
#include "tests/support/photo.h"

namespace kelto::host {
namespace {

TEST(ReplacedPictures, AreKnownUnderOtherNames) {
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

TEST(ReplacedPictures, AreKnownInAFolderThatCannotBeRead) {
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

}  // namespace
}  // namespace kelto::host
