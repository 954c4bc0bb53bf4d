#include "host/effect/photo.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/base/error.h"
#include "host/effect/effect_name.h"
#include "host/files/path_text.h"
#include "host/files/work_file.h"
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

/// A photo's name whose path in a deep folder has 257 characters, two more than the effect takes
/// and two fewer than Windows does.
constexpr const char* kDeepName = "a-deep-photo.bmp";
constexpr size_t kDeepFolder = 240;

/// Makes folders in folders until the path of the innermost has 240 characters.
std::string DeepFolder(const test::TempFolder& folder) {
  std::string path = folder / "deep";
  for (size_t left; (left = kDeepFolder - path.size()) > 0;) {
    // No last one without a name.
    const size_t letters = left > 62 ? 60 : left - 1;
    path.append("/").append(letters, 'd');
  }
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
#if !defined(_WIN32)  // whose devices are no files
  EXPECT_THAT(ErrorOf("/dev/zero"), HasSubstr("not an ordinary file"));
#endif
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
  const std::string photo = deep + "/" + kDeepName;
  WriteSmallPhoto(photo);
  const InFolder here(deep);
  EXPECT_EQ(OpenPhoto(photo).path, kDeepName);
  EXPECT_EQ(OpenPhoto(photo).given, photo);
}

#if !defined(_WIN32)  // which takes no path of this length
TEST(Photo, WithALongRelativePathIsReachedByTheAbsoluteOne) {
  const test::TempFolder folder;
  const std::string deep = DeepFolder(folder);
  WriteSmallPhoto(folder / "a.bmp");
  const InFolder here(deep);
  std::string around = "..";
  while (around.size() <= 255)
    around.append("/").append(fs::path(deep).filename().string()).append("/..");
  // As many steps up as there are folders between the two photos.
  for (fs::path at = fs::path(deep).parent_path();
       at != fs::path(folder / "a.bmp").parent_path();) {
    around.append("/..");
    at = at.parent_path();
  }
  EXPECT_LE(OpenPhoto(around + "/a.bmp").path.size(), 255u);
}
#endif

#if defined(_WIN32)
/// A photo in so many folders that no form of its path is short enough.
std::string DeepestPhoto(const test::TempFolder& folder) {
  std::string deep = folder / "folders";
  for (int i = 0; i < 35; ++i) deep += "\\abcdefgh";
  MakeFolders(deep);
  WriteSmallPhoto(folder / "a.bmp");
  fs::copy_file(folder / "a.bmp", ForCalls(PathOf(deep + "\\a.bmp")));
  return deep + "\\a.bmp";
}

TEST(Photo, BeyondTheReachOfTheEffectIsLinkedForAsLongAsItIsUsed) {
  const test::TempFolder folder;
  const std::string photo = DeepestPhoto(folder);
  std::string name;
  {
    const Photo opened = OpenPhoto(photo);
    name = opened.path;
    EXPECT_LE(name.size(), 255u);
    EXPECT_EQ(opened.given, photo);
    const Photo copy = opened;
    EXPECT_EQ(FindFault(copy), std::nullopt);
  }
  EXPECT_FALSE(fs::exists(name));
  EXPECT_TRUE(fs::exists(StatusOf(PathOf(photo))));
}

TEST(Photo, ThatIsMarkedReadOnlyStaysSo) {
  const test::TempFolder folder;
  const std::string photo = DeepestPhoto(folder);
  fs::permissions(ForCalls(PathOf(photo)), fs::perms::owner_read);
  const std::string name = OpenPhoto(photo).path;
  EXPECT_FALSE(fs::exists(name));
  EXPECT_EQ(fs::status(ForCalls(PathOf(photo))).permissions() & fs::perms::owner_write,
            fs::perms::none);
  fs::permissions(ForCalls(PathOf(photo)), fs::perms::all);
}
#else
TEST(Photo, BeyondTheReachOfTheEffectIsToldSo) {
  const test::TempFolder folder;
  const std::string deep = DeepFolder(folder);
  const std::string photo = deep + "/" + kDeepName;
  WriteSmallPhoto(photo);
  EXPECT_THAT(ErrorOf(photo), HasSubstr("the effect takes 255"));
}
#endif

TEST(Photo, NetworkPathsStayAsTheyAre) {
  const std::string path = "\\\\server\\share\\..\\" + std::string(300, 'x');
  EXPECT_EQ(ShortestForm(path), path);
}

}  // namespace
}  // namespace kelto::host
