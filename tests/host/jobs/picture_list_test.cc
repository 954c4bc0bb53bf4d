#include "host/jobs/picture_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>

#include "host/base/error.h"
#include "tests/support/photo.h"

namespace kelto::host {
namespace {

using test::TempFolder;
using testing::ElementsAre;

void Touch(const std::string& path) { std::ofstream(path) << "x"; }

TEST(PictureList, OfAFolderHasTheFilesThatEndAsPicturesDoInOrder) {
  const TempFolder folder;
  for (const char* name : {"b.JPG", "a.tiff", "c.heic", "notes.txt", ".hidden.jpg", "Thumbs.db"}) {
    Touch(folder / name);
  }
  std::filesystem::create_directory(folder / "d.png");
  EXPECT_THAT(PicturesOf(folder / ""),
              ElementsAre(folder / "a.tiff", folder / "b.JPG", folder / "c.heic"));
}

TEST(PictureList, OfAListHasItsLinesFromTheListsFolder) {
  const TempFolder folder;
  std::ofstream(folder / "list.txt") << "x/1.jpg\r\n\n/else/where 2.png\nlast.tif";
  // On Windows a path may be absolute but for its drive: the list's.
  const std::string drive = std::filesystem::path(folder / "").root_name().string();
  EXPECT_THAT(PicturesOf(folder / "list.txt"),
              ElementsAre(folder / "x/1.jpg", drive + "/else/where 2.png", folder / "last.tif"));
}

TEST(PictureList, OfAListThatBeginsWithAByteOrderMarkHasItsFirstLine) {
  const TempFolder folder;
  std::ofstream(folder / "list.txt") << "\xef\xbb\xbf"
                                     << "a.jpg\n";
  EXPECT_THAT(PicturesOf(folder / "list.txt"), ElementsAre(folder / "a.jpg"));
}

TEST(PictureList, WithoutPicturesIsAnError) {
  const TempFolder folder;
  EXPECT_THROW(PicturesOf(folder / ""), Error) << "an empty folder";
  EXPECT_THROW(PicturesOf(folder / "none"), Error) << "nothing there";
  Touch(folder / "photo.jpg");
  std::ofstream(folder / "photo.jpg") << std::string("\xff\xd8\0\0", 4);
  EXPECT_THROW(PicturesOf(folder / "photo.jpg"), Error) << "a picture is no list";
  std::ofstream(folder / "blank.txt") << "\n\n";
  EXPECT_THROW(PicturesOf(folder / "blank.txt"), Error);
}

TEST(PictureList, WithoutEndOrThatCannotBeReadIsAnError) {
  const TempFolder folder;
  std::ofstream(folder / "long.txt") << std::string(100000, 'a') << "\n";
  EXPECT_THAT([&] { PicturesOf(folder / "long.txt"); },
              testing::ThrowsMessage<Error>(testing::HasSubstr("is no list")));
#if defined(__linux__)
  EXPECT_THAT([] { PicturesOf("/dev/zero"); },
              testing::ThrowsMessage<Error>(testing::HasSubstr("is no list")));
  // Opens, and cannot be read.
  EXPECT_THAT([] { PicturesOf("/proc/self/mem"); },
              testing::ThrowsMessage<Error>(testing::HasSubstr("cannot be read to its end")));
#endif
}

TEST(PictureList, OfAProjectIsAnErrorThatSaysWhatToDo) {
  const TempFolder folder;
  std::ofstream(folder / "p.JSON") << "{\n\"image\": \"a.jpg\"\n}\n";
  try {
    PicturesOf(folder / "p.JSON");
    FAIL() << "read as a list";
  } catch (const Error& error) {
    EXPECT_EQ(error.what(), (folder / "p.JSON") +
                                ": is a project, not a list; render it, or write its path into a "
                                "list");
  }
  std::filesystem::create_directory(folder / "folder.json");
  Touch(folder / "folder.json/a.jpg");
  EXPECT_THAT(PicturesOf(folder / "folder.json/"), ElementsAre(folder / "folder.json/a.jpg"));
}

TEST(FilmNames, AreThePicturesWithAnotherEnding) {
  EXPECT_THAT(FilmNames({"x/a.jpg", "x/b.c.png"}, "mp4"), ElementsAre("a.mp4", "b.c.mp4"));
}

TEST(FilmNames, KeepTheEndingOfPicturesThatShareAName) {
  EXPECT_THAT(FilmNames({"a.jpg", "a.png", "b.png"}, "mp4"),
              ElementsAre("a.jpg.mp4", "a.png.mp4", "b.mp4"));
}

TEST(FilmNames, NeverClash) {
  const std::vector<std::string> pictures = {"x/a.jpg",   "y/a.jpg",     "A.JPG",         "a.png",
                                             "a.jpg.tif", "a.jpg-2.tif", "z/a.jpg-2.gif", "a.jpg"};
  const std::vector<std::string> names = FilmNames(pictures, "mp4");
  std::set<std::string> lowered;
  for (std::string name : names) {
    for (char& c : name) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    EXPECT_TRUE(lowered.insert(name).second) << name;
  }
  EXPECT_EQ(names.size(), pictures.size());
}

TEST(FilmNames, ManyPicturesOfOneNameAreNumberedInOnePass) {
  // Tried from 2 on for each of them, the numbers would take hours.
  constexpr size_t kCount = 200000;
  const std::vector<std::string> names =
      FilmNames(std::vector<std::string>(kCount, "a.jpg"), "mp4");
  EXPECT_EQ(names.front(), "a.jpg.mp4");
  EXPECT_EQ(names[1], "a.jpg-2.mp4");
  EXPECT_EQ(names.back(), "a.jpg-200000.mp4");
}

}  // namespace
}  // namespace kelto::host
