#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "platform/win32.h"
#include "state/module.h"
#include "tests/support/instance.h"
#include "tests/support/photo.h"

namespace kelto {
namespace {

using test::Instance;

/// Answers dialogs from a script and keeps what they showed.
struct Dialogs {
  std::string answer;  // empty: cancel
  HINSTANCE owner = nullptr;
  std::vector<std::string> titles, offered, messages, captions;
  static Dialogs* current;
};
Dialogs* Dialogs::current = nullptr;

BOOL KELTO_WINAPI AnswerOpen(OPENFILENAMEA* dialog) {
  Dialogs& d = *Dialogs::current;
  d.titles.push_back(dialog->lpstrTitle);
  d.offered.push_back(dialog->lpstrFile);
  if (d.answer.empty()) return 0;
  // As real dialogs may: scraps behind the terminator.
  std::memset(dialog->lpstrFile, '#', dialog->nMaxFile);
  std::memcpy(dialog->lpstrFile, d.answer.c_str(), d.answer.size() + 1);
  return 1;
}

BOOL KELTO_WINAPI KeepOwner(OPENFILENAMEA* dialog) {
  Dialogs::current->owner = dialog->hInstance;
  EXPECT_EQ(dialog->lStructSize, 88u);
  EXPECT_EQ(dialog->Flags, 0x1800u);
  EXPECT_EQ(dialog->nMaxFile, 2048u);
  EXPECT_EQ(dialog->nFilterIndex, 1u);
  return 0;
}

int KELTO_WINAPI KeepMessage(HWND owner, const char* text, const char* caption, unsigned type) {
  EXPECT_EQ(owner, nullptr);
  EXPECT_EQ(type, unsigned{MB_OK});
  Dialogs::current->messages.push_back(text);
  Dialogs::current->captions.push_back(caption);
  return IDOK;
}

class ChooseImage : public testing::Test {
 protected:
  ChooseImage() {
    Dialogs::current = &dialogs;
    win32().GetOpenFileNameA = AnswerOpen;
    win32().MessageBoxA = KeepMessage;
    test::WritePhoto(folder / "good.bmp", 12, 8, [](int32_t, int32_t) {
      return test::Rgb{200, 10, 10};
    });
    std::ofstream(folder / "bad.bmp") << "no picture at all";
  }
  ~ChooseImage() override { win32() = DefaultWin32Calls(); }

  std::string Record() {
    int32_t length = 0;
    const void* record = instance.GetInstanceData(&length);
    return record ? std::string(static_cast<const char*>(record), length) : std::string();
  }
  std::string RecordOf(const std::string& path) {
    return path + std::string(kPathRecordSize - path.size(), '\0');
  }

  Dialogs dialogs;
  test::TempFolder folder;
  Instance instance;
};

TEST_F(ChooseImage, APickedImageIsLoadedAndItsPathSavedIn2048Bytes) {
  dialogs.answer = folder / "good.bmp";
  instance.picture.loadFailed = true;
  EXPECT_TRUE(instance.ChooseImage());
  ASSERT_EQ(dialogs.titles.size(), 1u);
  EXPECT_EQ(dialogs.titles[0], "Please choose an image:");
  EXPECT_NE(instance.picture.workImages[0], nullptr);
  EXPECT_EQ(instance.picture.imageWidth, 12u);
  EXPECT_EQ(Record(), RecordOf(folder / "good.bmp"));
  EXPECT_TRUE(hfx::InstanceDataModified(instance));
  EXPECT_FALSE(instance.picture.loadFailed);
  EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(ChooseImage, CancellingChangesNothing) {
  instance.SetPath("/old.jpg");
  instance.BeginRender();
  EXPECT_FALSE(instance.ChooseImage());
  EXPECT_EQ(instance.picture.imagePath, "/old.jpg");
  EXPECT_EQ(Record(), RecordOf("/old.jpg"));
}

TEST_F(ChooseImage, AnEmptySavedPathOpensTheChooseDialog) {
  instance.SetPath("");
  instance.BeginRender();
  instance.ChooseImage();
  ASSERT_EQ(dialogs.titles.size(), 1u);
  EXPECT_EQ(dialogs.titles[0], "Please choose an image:");
}

TEST_F(ChooseImage, AStoredPathOfSlashSlashColonCountsAsEmpty) {
  instance.picture.imagePath = "//:";
  instance.ChooseImage();
  ASSERT_EQ(dialogs.titles.size(), 1u);
  EXPECT_EQ(dialogs.titles[0], "Please choose an image:");
}

TEST_F(ChooseImage, AKnownPathWithoutAnImageOpensTheLocateDialogOnTheBareName) {
  instance.picture.imagePath = "/elsewhere/nowhere-else.jpg";
  instance.ChooseImage();
  ASSERT_EQ(dialogs.titles.size(), 1u);
  EXPECT_EQ(dialogs.titles[0], "Please locate the image: nowhere-else.jpg");
  EXPECT_EQ(dialogs.offered[0], "nowhere-else.jpg");
}

TEST_F(ChooseImage, ALoadedImageOpensTheChooseDialogOnItsPath) {
  dialogs.answer = folder / "good.bmp";
  instance.ChooseImage();
  dialogs.answer.clear();
  EXPECT_FALSE(instance.ChooseImage());
  EXPECT_EQ(dialogs.titles.back(), "Please choose an image:");
  EXPECT_EQ(dialogs.offered.back(), folder / "good.bmp");
  EXPECT_NE(instance.picture.workImages[0], nullptr) << "cancelling keeps the loaded image";
}

TEST_F(ChooseImage, AnImageThatCannotBeLoadedIsToldInAMessageBox) {
  instance.SetPath("/old.jpg");
  dialogs.answer = folder / "bad.bmp";
  EXPECT_TRUE(instance.ChooseImage()) << "a file was chosen";
  ASSERT_EQ(dialogs.messages.size(), 1u);
  EXPECT_EQ(dialogs.messages[0], "Not enough memory to load image.");
  EXPECT_EQ(dialogs.captions[0], "Kelto Pan & Zoom Error");
  EXPECT_EQ(instance.picture.workImages[0], nullptr);
  EXPECT_EQ(Record(), RecordOf("/old.jpg"));
}

TEST_F(ChooseImage, DialogsAreOwnedByTheModule) {
  const auto handle = reinterpret_cast<HINSTANCE>(&dialogs);
  Module().handle = handle;
  win32().GetOpenFileNameA = KeepOwner;
  instance.ChooseImage();
  EXPECT_EQ(dialogs.owner, handle);
  Module().handle = nullptr;
}

}  // namespace
}  // namespace kelto
