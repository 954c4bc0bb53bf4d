#include "image/paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "state/PanZoomState.h"
#include "state/module.h"
#include "tests/image/fake_network.h"
#include "tests/image/temporary_folder.h"

namespace kelto {
namespace {

using testing::ElementsAre;

BOOL KELTO_WINAPI AnswerTwo(OPENFILENAMEA*) { return 2; }

/// Files that must be there lie below a folder of the test's own and have no drive.
class Paths : public testing::Test {
 protected:
  Paths() { Module().knownFolders.clear(); }
  ~Paths() override { Module().knownFolders.clear(); }

  void SetBuffer(const std::string& text) {
    std::memset(buffer, 0, sizeof(buffer));
    std::memcpy(buffer, text.c_str(), text.size() + 1);
  }

  /// As texts come out on this system.
  static std::string Native(std::string text) {
#if !defined(_WIN32)
    for (char& c : text) {
      if (c == '\\') c = '/';
    }
#endif
    return text;
  }

  test::TemporaryFolder folder;
  test::FakeNetwork user;
  char buffer[kPathRecordSize] = {};
};

TEST_F(Paths, OfTwoKnownFoldersThatHoldTheFileTheFirstInOrderWins) {
  folder.Touch("A/x.jpg");
  folder.Touch("B/x.jpg");
  RememberImageFolder("B\\other.jpg");
  RememberImageFolder("A\\other.jpg");
  SetBuffer("E:\\gone\\x.jpg");
  EXPECT_TRUE(FindInKnownFolders(buffer));
  EXPECT_EQ(std::string(buffer), Native("A\\x.jpg"));
  EXPECT_EQ(user.dialogs, 0);
}

TEST_F(Paths, AKnownFolderWithoutTheFileIsPassedOver) {
  folder.Touch("B/x.jpg");
  RememberImageFolder("A\\other.jpg");
  RememberImageFolder("B\\other.jpg");
  SetBuffer("x.jpg");
  EXPECT_TRUE(FindInKnownFolders(buffer));
  EXPECT_EQ(std::string(buffer), Native("B\\x.jpg"));
}

TEST_F(Paths, AFileInNoKnownFolderLeavesTheBuffer) {
  RememberImageFolder("A\\other.jpg");
  SetBuffer("E:\\gone\\x.jpg");
  EXPECT_FALSE(FindInKnownFolders(buffer));
  EXPECT_STREQ(buffer, "E:\\gone\\x.jpg");
}

TEST_F(Paths, AnEmptyPathIsFoundNowhere) {
  folder.Touch("A/x.jpg");
  RememberImageFolder("A/x.jpg");
  SetBuffer("");
  EXPECT_FALSE(FindInKnownFolders(buffer));
  EXPECT_FALSE(LocateImageFile(buffer, sizeof(buffer)));
  EXPECT_EQ(user.dialogs, 0);
}

#if !defined(_WIN32)
TEST_F(Paths, AFoundPathTooLongForARecordIsPassedOver) {
  std::string deep = std::filesystem::current_path().string();
  while (deep.size() < 2030) {
    const std::string name(std::min<size_t>(200, 2030 - deep.size()), 'n');
    std::filesystem::create_directory(name);
    std::filesystem::current_path(name);
    deep += "/" + name;
  }
  const std::string shortName = "x.jpg", longName(30, 'x');
  folder.Touch(shortName);
  folder.Touch(longName);
  RememberImageFolder((deep + "/other.jpg").c_str());
  SetBuffer(shortName);
  EXPECT_TRUE(FindInKnownFolders(buffer));
  EXPECT_EQ(std::string(buffer), deep + "/" + shortName);
  SetBuffer(longName);
  EXPECT_FALSE(FindInKnownFolders(buffer));
  EXPECT_EQ(std::string(buffer), longName);
}
#endif

TEST_F(Paths, FoldersAreKeptOnceEachInOrderOfBytes) {
  for (const char* path :
       {"D:\\b\\1.jpg", "D:/a/2.jpg", "D:\\B\\3.jpg", "D:/b/4.jpg", "\xC3\xA4/5"}) {
    RememberImageFolder(path);
  }
  EXPECT_THAT(Module().knownFolders,
              ElementsAre(Native("D:\\B"), Native("D:\\a"), Native("D:\\b"), "\xC3\xA4"));
}

TEST_F(Paths, BothSeparatorsCountInOnePath) {
  RememberImageFolder("C:\\one/two\\three.jpg");
  EXPECT_THAT(Module().knownFolders, ElementsAre(Native("C:\\one\\two")));
}

TEST_F(Paths, ChoosingOpensADialogThatOffersTheBuffersText) {
  Module().handle = static_cast<HINSTANCE>(static_cast<void*>(&user));
  SetBuffer("C:\\A\\x.jpg");
  user.pick = "C:\\B\\y.jpg";
  EXPECT_TRUE(ChooseImageFile(buffer, sizeof(buffer), nullptr));
  EXPECT_STREQ(buffer, "C:\\B\\y.jpg");
  EXPECT_EQ(user.offered, "C:\\A\\x.jpg");
  EXPECT_EQ(user.title, "Please choose an image:");
  EXPECT_EQ(user.record.lStructSize, 88u);
  EXPECT_EQ(user.record.hwndOwner, win32().GetDesktopWindow());
  EXPECT_EQ(user.record.hInstance, Module().handle);
  EXPECT_EQ(user.record.lpstrFilter, nullptr);
  EXPECT_EQ(user.record.nFilterIndex, 1u);
  EXPECT_EQ(user.record.lpstrFile, buffer);
  EXPECT_EQ(user.record.nMaxFile, 2048u);
  EXPECT_EQ(user.record.lpstrFileTitle, nullptr);
  EXPECT_EQ(user.record.lpstrInitialDir, nullptr);
  EXPECT_EQ(user.record.Flags, 0x1800u);
  Module().handle = nullptr;
}

TEST_F(Paths, ACancelledChoiceIsFalseAndRemembersNothing) {
  SetBuffer("C:\\A\\x.jpg");
  EXPECT_FALSE(ChooseImageFile(buffer, sizeof(buffer), "Title"));
  EXPECT_EQ(user.title, "Title");
  EXPECT_TRUE(Module().knownFolders.empty());
}

TEST_F(Paths, OnlyAnAnswerOfOneCountsAsAPick) {
  win32().GetOpenFileNameA = AnswerTwo;
  EXPECT_FALSE(ChooseImageFile(buffer, sizeof(buffer), nullptr));
}

TEST_F(Paths, LocatingAsksNobodyWhenAKnownFolderHoldsTheFile) {
  folder.Touch("A/x.jpg");
  RememberImageFolder("A/other.jpg");
  SetBuffer("E:\\gone\\x.jpg");
  EXPECT_TRUE(LocateImageFile(buffer, sizeof(buffer)));
  EXPECT_EQ(std::string(buffer), Native("A\\x.jpg"));
  EXPECT_EQ(user.dialogs, 0);
}

TEST_F(Paths, LocatingAsksForTheBareNameAndRemembersTheFolderOfThePick) {
  SetBuffer("E:\\gone\\x.jpg");
  user.pick = "C:\\found\\y.jpg";
  EXPECT_TRUE(LocateImageFile(buffer, sizeof(buffer)));
  EXPECT_EQ(user.title, "Please locate the image: x.jpg");
  EXPECT_EQ(user.offered, "x.jpg");
  EXPECT_STREQ(buffer, "C:\\found\\y.jpg");
  EXPECT_THAT(Module().knownFolders, ElementsAre(Native("C:\\found")));
}

TEST_F(Paths, ACancelledLocateLeavesTheBareNameAndRemembersNothing) {
  SetBuffer("E:\\gone\\x.jpg");
  EXPECT_FALSE(LocateImageFile(buffer, sizeof(buffer)));
  EXPECT_STREQ(buffer, "x.jpg");
  EXPECT_TRUE(Module().knownFolders.empty());
}

}  // namespace
}  // namespace kelto
