#include "host/session/photo.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/error.h"
#include "tests/support/photo.h"

namespace kelto::host {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

/// Works in a folder for the time of a test.
class InFolder {
 public:
  explicit InFolder(const fs::path& folder) : before_(fs::current_path()) {
    fs::current_path(folder);
  }
  ~InFolder() { fs::current_path(before_); }

 private:
  fs::path before_;
};

std::string ErrorOf(const std::string& path) {
  try {
    OpenPhoto(path);
  } catch (const Error& error) {
    return error.what();
  }
  return "none";
}

/// Makes folders in folders until a path below `folder` has more than 255 characters.
std::string DeepFolder(const test::TempFolder& folder) {
  std::string path = folder / "deep";
  while (path.size() <= 255) path.append("/").append(60, 'd');
  fs::create_directories(path);
  return path;
}

void WriteSmallPhoto(const std::string& path) {
  test::WritePhoto(path, 6, 4, [](int, int) { return test::Rgb{1, 2, 3}; });
}

TEST(Photo, IsOpenedWithItsSize) {
  const test::TempFolder folder;
  WriteSmallPhoto(folder / "a.bmp");
  const Photo photo = OpenPhoto(folder / "a.bmp");
  EXPECT_EQ(photo.width, 6);
  EXPECT_EQ(photo.height, 4);
  EXPECT_EQ(photo.path, folder / "a.bmp");
  EXPECT_EQ(FindFault(photo), std::nullopt);
}

TEST(Photo, ThatIsNotThereIsNamed) {
  const test::TempFolder folder;
  EXPECT_THAT(ErrorOf(folder / "no.jpg"), HasSubstr(folder / "no.jpg: there is no such file"));
  EXPECT_THAT(ErrorOf(""), HasSubstr("no such file"));
}

TEST(Photo, IsNoFolderAndNoDevice) {
  const test::TempFolder folder;
  EXPECT_THAT(ErrorOf(folder / ""), HasSubstr("is a folder"));
  EXPECT_THAT(ErrorOf("/dev/zero"), HasSubstr("not an ordinary file"));
}

TEST(Photo, IsNoText) {
  const test::TempFolder folder;
  std::ofstream(folder / "text.jpg") << "This is no picture, whatever its name says.";
  EXPECT_THAT(ErrorOf(folder / "text.jpg"), HasSubstr("cannot be read as a picture"));
}

TEST(Photo, ThatEndsTooEarlyHasAFault) {
  const test::TempFolder folder;
  WriteSmallPhoto(folder / "a.bmp");
  fs::resize_file(folder / "a.bmp", 70);
  Photo photo{folder / "a.bmp", folder / "a.bmp", 6, 4};
  EXPECT_NE(FindFault(photo), std::nullopt);
}

TEST(Photo, WithALongPathIsReachedByAShorterOne) {
  const test::TempFolder folder;
  const std::string deep = DeepFolder(folder);
  WriteSmallPhoto(deep + "/a.bmp");
  const InFolder here(deep);
  EXPECT_EQ(OpenPhoto(deep + "/a.bmp").path, "a.bmp");
  EXPECT_EQ(OpenPhoto(deep + "/a.bmp").given, deep + "/a.bmp");
}

TEST(Photo, WithALongRelativePathIsReachedByTheAbsoluteOne) {
  const test::TempFolder folder;
  const std::string deep = DeepFolder(folder);
  WriteSmallPhoto(folder / "a.bmp");
  const InFolder here(deep);
  std::string around = "..";
  while (around.size() <= 255)
    around.append("/").append(fs::path(deep).filename().string()).append("/..");
  EXPECT_EQ(OpenPhoto(around + "/../../../../a.bmp").path.size() <= 255, true);
}

TEST(Photo, BeyondTheReachOfTheEffectIsToldSo) {
  const test::TempFolder folder;
  const std::string deep = DeepFolder(folder);
  WriteSmallPhoto(deep + "/a.bmp");
  EXPECT_THAT(ErrorOf(deep + "/a.bmp"), HasSubstr("the effect takes 255"));
}

TEST(Photo, NetworkPathsStayAsTheyAre) {
  const std::string path = "\\\\server\\share\\..\\" + std::string(300, 'x');
  EXPECT_EQ(ShortestForm(path), path);
}

}  // namespace
}  // namespace kelto::host
