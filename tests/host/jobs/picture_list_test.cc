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

std::vector<std::string> Pictures(const std::string& input) { return PathsOf(PicturesOf({input})); }

void Touch(const std::string& path) { std::ofstream(path) << "x"; }

TEST(PictureList, OfAFolderHasTheFilesThatEndAsPicturesDoInOrder) {
  const TempFolder folder;
  for (const char* name : {"b.JPG", "a.tiff", "c.heic", "notes.txt", ".hidden.jpg", "Thumbs.db"}) {
    Touch(folder / name);
  }
  std::filesystem::create_directory(folder / "d.png");
  EXPECT_THAT(Pictures(folder / ""),
              ElementsAre(folder / "a.tiff", folder / "b.JPG", folder / "c.heic"));
}

TEST(PictureList, OfAListHasItsLinesFromTheListsFolder) {
  const TempFolder folder;
  std::ofstream(folder / "list.txt") << "x/1.jpg\r\n\n/else/where 2.png\nlast.tif";
  // On Windows a path may be absolute but for its drive: the list's.
  const std::string drive = std::filesystem::path(folder / "").root_name().string();
  EXPECT_THAT(Pictures(folder / "list.txt"),
              ElementsAre(folder / "x/1.jpg", drive + "/else/where 2.png", folder / "last.tif"));
}

TEST(PictureList, OfAListThatBeginsWithAByteOrderMarkHasItsFirstLine) {
  const TempFolder folder;
  std::ofstream(folder / "list.txt") << "\xef\xbb\xbf"
                                     << "a.jpg\n";
  EXPECT_THAT(Pictures(folder / "list.txt"), ElementsAre(folder / "a.jpg"));
}

TEST(PictureList, WithoutPicturesIsAnError) {
  const TempFolder folder;
  EXPECT_THROW(Pictures(folder / ""), Error) << "an empty folder";
  EXPECT_THROW(Pictures(folder / "none"), Error) << "nothing there";
  std::ofstream(folder / "photo") << std::string("\xff\xd8\0\0", 4);
  EXPECT_THROW(Pictures(folder / "photo"), Error) << "a picture is not a list";
  std::ofstream(folder / "blank.txt") << "\n\n";
  EXPECT_THROW(Pictures(folder / "blank.txt"), Error);
}

TEST(PictureList, WithoutEndOrThatCannotBeReadIsAnError) {
  const TempFolder folder;
  std::ofstream(folder / "long.txt") << std::string(100000, 'a') << "\n";
  EXPECT_THAT([&] { Pictures(folder / "long.txt"); },
              testing::ThrowsMessage<Error>(testing::HasSubstr("is not a list")));
#if defined(__linux__)
  EXPECT_THAT([] { Pictures("/dev/zero"); },
              testing::ThrowsMessage<Error>(testing::HasSubstr("is not a list")));
  // Opens, and cannot be read.
  EXPECT_THAT([] { Pictures("/proc/self/mem"); },
              testing::ThrowsMessage<Error>(testing::HasSubstr("cannot be read to its end")));
#endif
}

TEST(PictureList, OfAProjectIsAnErrorThatSaysWhatToDo) {
  const TempFolder folder;
  std::ofstream(folder / "p.JSON") << "{\n\"image\": \"a.jpg\"\n}\n";
  try {
    Pictures(folder / "p.JSON");
    FAIL() << "read as a list";
  } catch (const Error& error) {
    EXPECT_EQ(error.what(), (folder / "p.JSON") +
                                ": is a project, not a list; render it, or write its path into a "
                                "list");
  }
  std::filesystem::create_directory(folder / "folder.json");
  Touch(folder / "folder.json/a.jpg");
  EXPECT_THAT(Pictures(folder / "folder.json/"), ElementsAre(folder / "folder.json/a.jpg"));
}

TEST(PictureList, OfAFolderCountsAsPeopleDo) {
  const TempFolder folder;
  for (const char* name : {"IMG_10.jpg", "IMG_2.jpg", "IMG_1.jpg"}) Touch(folder / name);
  EXPECT_THAT(Pictures(folder / ""),
              ElementsAre(folder / "IMG_1.jpg", folder / "IMG_2.jpg", folder / "IMG_10.jpg"));
}

TEST(PictureList, OfOperandsHasPhotographsProjectsFoldersAndLists) {
  const TempFolder folder;
  std::filesystem::create_directory(folder / "more");
  Touch(folder / "more/x.png");
  std::ofstream(folder / "list.txt") << "y.jpg\n";
  std::ofstream(folder / "p.json") << "{}";
  EXPECT_THAT(
      PathsOf(PicturesOf({folder / "p.json", "b.JPG", folder / "more", folder / "list.txt"})),
      ElementsAre(folder / "p.json", "b.JPG",
                  (std::filesystem::path(folder / "more") / "x.png").string(), folder / "y.jpg"));
}

TEST(PictureList, OfOperandsThatAShellPutInOrderCountsAsPeopleDo) {
  EXPECT_THAT(PathsOf(PicturesOf({"f10.jpg", "f2.jpg", "d/a.jpg", "d/a10.jpg", "d/a9.jpg"})),
              ElementsAre("f2.jpg", "f10.jpg", "d/a.jpg", "d/a9.jpg", "d/a10.jpg"));
  EXPECT_THAT(PathsOf(PicturesOf({"f3.jpg", "f10.jpg", "f2.jpg"})),
              ElementsAre("f3.jpg", "f10.jpg", "f2.jpg"))
      << "somebody's own order";
  EXPECT_THAT(PathsOf(PicturesOf({"f10.jpg", "f2.jpg"}, PictureOrder::kGiven)),
              ElementsAre("f10.jpg", "f2.jpg"));
}

TEST(PictureList, HasCommentsAndOptionsInItsLines) {
  const TempFolder folder;
  std::ofstream(folder / "list.txt") << "# summer\n"
                                     << "  a b.jpg   --move left --amount 1.2 \n"
                                     << "\t# --move in\n"
                                     << "c--d e.jpg\n"
                                     << "\"#1 --x.jpg\" --to 2\n"
                                     << "'f.jpg'\n";
  const std::vector<ListedPicture> pictures = PicturesOf({folder / "list.txt"});
  EXPECT_THAT(PathsOf(pictures), ElementsAre(folder / "a b.jpg", folder / "c--d e.jpg",
                                             folder / "#1 --x.jpg", folder / "f.jpg"));
  ASSERT_EQ(pictures.size(), 4u);
  EXPECT_EQ(pictures[0].options, "--move left --amount 1.2");
  EXPECT_EQ(pictures[0].place, (folder / "list.txt") + ": line 2");
  EXPECT_EQ(pictures[1].options, "");
  EXPECT_EQ(pictures[2].options, "--to 2");
  EXPECT_EQ(pictures[3].options, "");
}

TEST(PictureList, WithALineThatCannotBeReadNamesTheLine) {
  const TempFolder folder;
  const auto fault = [&](const std::string& line) -> std::string {
    std::ofstream(folder / "list.txt") << "a.jpg\n" << line << "\n";
    try {
      Pictures(folder / "list.txt");
    } catch (const Error& error) {
      return error.what();
    }
    return "";
  };
  const std::string place = (folder / "list.txt") + ": line 2: ";
  EXPECT_EQ(fault("\"b.jpg"), place + "the quotation mark before the path has no other behind it");
  EXPECT_EQ(fault("'b.jpg' c"),
            place + "behind the path are options, such as --move left, or nothing");
  EXPECT_EQ(fault("'' --move in"), place + "names no picture");
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
