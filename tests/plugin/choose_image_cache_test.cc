// What the user's pick does to the instance: its record, its images and everybody's cache.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "image/cache.h"
#include "image/paths.h"
#include "state/module.h"
#include "tests/image/fake_network.h"
#include "tests/support/instance.h"
#include "tests/support/photo.h"

namespace kelto {
namespace {

using test::Instance;
using test::Picture;

/// Picks in the order of the dialogs; after the last one, and for an empty one, the user cancels.
std::vector<std::string> scriptedPicks;
std::vector<std::string> shownTitles;
int shownMessages = 0;

BOOL KELTO_WINAPI AnswerScripted(OPENFILENAMEA* dialog) {
  const size_t number = shownTitles.size();
  shownTitles.push_back(dialog->lpstrTitle);
  if (number >= scriptedPicks.size() || scriptedPicks[number].empty()) return 0;
  std::strncpy(dialog->lpstrFile, scriptedPicks[number].c_str(), dialog->nMaxFile - 1);
  return 1;
}

int KELTO_WINAPI CountMessage(HWND, const char*, const char*, unsigned) {
  ++shownMessages;
  return IDOK;
}

class Pick : public testing::Test {
 protected:
  Pick() {
    win32().GetOpenFileNameA = AnswerScripted;
    win32().MessageBoxA = CountMessage;
    Module().knownFolders.clear();
    test::WritePhoto(folder / "good.bmp", 64, 32, [](int32_t, int32_t) {
      return test::Rgb{200, 10, 10};
    });
    std::ofstream(folder / "bad.bmp") << "no picture at all";
  }
  ~Pick() override {
    Module().knownFolders.clear();
    Module().hostState = nullptr;
  }
  /// Runs ChooseImage with these answers to its dialogs.
  bool Choose(const std::vector<std::string>& picks) {
    scriptedPicks = picks;
    shownTitles.clear();
    shownMessages = 0;
    return instance.ChooseImage();
  }
  std::string SavedPath() const { return PathOfRecord(instance.GetInstanceData(nullptr)); }
  /// Gives `other` an image of so many MiB.
  static void HoldMebibytes(Instance& other, int32_t mebibytes) {
    IplImage* image = NewCachedImageHeader(1024, 256 * mebibytes);
    AllocateImageData(other, image);
    ASSERT_EQ(iplGetErrStatus(), IPL_StsOk);
    other.picture.workImages[0].reset(image);
  }

  test::FakeNetwork network;
  test::TempFolder folder;
  Instance instance;
};

TEST_F(Pick, TakesTheInstanceOutOfTheRenderThatWouldReleaseItsImages) {
  Module().hostState = [] { return int32_t{1}; };
  instance.BeginRender();
  EXPECT_TRUE(Choose({folder / "good.bmp"}));
  EXPECT_EQ(instance.render.hostState, -1);
  instance.EndRender();
  EXPECT_NE(instance.picture.workImages[0], nullptr);
  instance.BeginRender();
  EXPECT_FALSE(Choose({})) << "cancelled";
  EXPECT_EQ(instance.render.hostState, -1);
}

TEST_F(Pick, ThatCannotBeLoadedLeavesNoneOfTheImagesBefore) {
  Choose({folder / "good.bmp"});
  ASSERT_NE(instance.picture.workImages[0], nullptr);
  EXPECT_TRUE(Choose({folder / "bad.bmp"}));
  EXPECT_EQ(shownMessages, 1);
  for (const ImagePtr& image : instance.picture.workImages) EXPECT_EQ(image, nullptr);
  EXPECT_EQ(Module().cachedBytes, 0u);
}

TEST_F(Pick, ReplacesAllEightImages) {
  for (ImagePtr& image : instance.picture.workImages) {
    image.reset(NewCachedImageHeader(8, 8));
    AllocateImageData(instance, image.get());
  }
  Choose({folder / "good.bmp"});
  EXPECT_NE(instance.picture.workImages[0], nullptr);
  for (int level = 1; level < kCacheLevels; ++level)
    EXPECT_EQ(instance.picture.workImages[level], nullptr);
  EXPECT_EQ(Module().cachedBytes, 64u * 32 * 4);
}

TEST_F(Pick, IsReducedToTheOutputWhilePlaying) {
  Picture output(16, 8, hfxColorspaceYCbCr);
  hfx::SetOutput(instance, 0, output.image());
  instance.render.outputWidth = 16;
  instance.render.outputHeight = 8;
  instance.render.playMode = hfxPlayModePreview;
  Choose({folder / "good.bmp"});
  ASSERT_NE(instance.picture.workImages[0], nullptr);
  EXPECT_EQ(instance.picture.workImages[0]->width, 16);
  EXPECT_EQ(instance.picture.workImages[0]->height, 8);
  EXPECT_EQ(instance.picture.imageWidth, 64u);
  EXPECT_EQ(instance.picture.cacheState, 0);
}

TEST_F(Pick, KeepsItsNaturalSizeInFinalRenders) {
  instance.render.playMode = hfxPlayModeRender;
  Choose({folder / "good.bmp"});
  ASSERT_NE(instance.picture.workImages[0], nullptr);
  EXPECT_EQ(instance.picture.workImages[0]->width, 64);
  EXPECT_EQ(instance.picture.cacheState, 1);
}

TEST_F(Pick, KeepsTheBudgetWhetherOrNotItLoads) {
  for (const char* name : {"good.bmp", "bad.bmp"}) {
    Instance first, second;
    HoldMebibytes(first, 10);
    HoldMebibytes(second, 115);
    Choose({folder / name});
    EXPECT_EQ(first.picture.workImages[0], nullptr) << name;
    EXPECT_NE(second.picture.workImages[0], nullptr) << name << ": within the budget by then";
  }
}

TEST_F(Pick, ThatIsGoneByThenIsAskedForAgainUnderItsName) {
  EXPECT_TRUE(Choose({folder / "gone.bmp", folder / "good.bmp"}));
  ASSERT_EQ(shownTitles.size(), 2u);
  EXPECT_EQ(shownTitles[1], "Please locate the image: gone.bmp");
  ASSERT_NE(instance.picture.workImages[0], nullptr);
  EXPECT_EQ(instance.picture.imagePath, folder / "good.bmp");
  EXPECT_EQ(SavedPath(), folder / "gone.bmp") << "the pick is saved, not where its file was found";
}

TEST_F(Pick, IsSavedInItsNetworkForm) {
  // Any name will do for a network's, as long as the file opens.
  network.universalNames[folder / "mapped.bmp"] = folder / "good.bmp";
  EXPECT_TRUE(Choose({folder / "mapped.bmp"}));
  ASSERT_NE(instance.picture.workImages[0], nullptr);
  EXPECT_EQ(SavedPath(), folder / "good.bmp");
  EXPECT_EQ(instance.picture.imagePath, folder / "good.bmp");
}

TEST_F(Pick, ThatFailsLeavesItOpenWhetherLaterRendersTryAgain) {
  for (const bool before : {false, true}) {
    instance.picture.loadFailed = before;
    instance.picture.imagePath.clear();
    Choose({folder / "bad.bmp"});
    EXPECT_EQ(shownMessages, 1);
    EXPECT_EQ(instance.picture.loadFailed, before);
  }
  instance.picture.imagePath.clear();
  Choose({folder / "good.bmp"});
  EXPECT_FALSE(instance.picture.loadFailed);
}

TEST_F(Pick, ThatFailsLeavesTheRecordUnmarked) {
  instance.SetPath("/old.jpg");
  instance.SetInstanceDataModified(false);
  Choose({folder / "bad.bmp"});
  EXPECT_EQ(SavedPath(), "/old.jpg");
  EXPECT_FALSE(hfx::InstanceDataModified(instance));
}

TEST_F(Pick, OnlyABareSlashSlashColonCountsAsNoPath) {
  instance.picture.imagePath = "//:x.jpg";
  EXPECT_FALSE(Choose({}));
  ASSERT_EQ(shownTitles.size(), 1u);
  EXPECT_THAT(shownTitles[0], testing::StartsWith("Please locate the image: "));
  instance.picture.imagePath = "//:";
  EXPECT_FALSE(Choose({}));
  ASSERT_EQ(shownTitles.size(), 1u);
  EXPECT_EQ(shownTitles[0], "Please choose an image:");
}

}  // namespace
}  // namespace kelto
