// A photograph that another program replaces, cuts short or deletes while its film is made.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "image/cache.h"
#include "image/paths.h"
#include "platform/still_importer.h"
#include "state/module.h"
#include "tests/support/instance.h"
#include "tests/support/photo.h"

namespace kelto {
namespace {

using test::Instance;
using test::Picture;

class ChangingPhoto : public testing::Test {
 protected:
  static constexpr int32_t kWidth = 32, kHeight = 18;

  ChangingPhoto()
      : input(kWidth, kHeight, hfxColorspaceYCbCr), output(kWidth, kHeight, hfxColorspaceYCbCr) {
    Write(64, 36, 200);
    hfx::SetInput(instance, 0, input.image());
    hfx::SetOutput(instance, 0, output.image());
    instance.settings.display = 1;
    instance.SetPath(photo);
    instance.BeginRender();
  }
  ~ChangingPhoto() override { Module().knownFolders.clear(); }

  void Write(int32_t width, int32_t height, uint8_t level) {
    test::WritePhoto(photo, width, height, [level](int32_t, int32_t) {
      return test::Rgb{level, level, level};
    });
  }
  /// Luma in the middle of the next frame.
  int NextFrame() {
    EXPECT_TRUE(instance.RenderFrame({0, 0, kWidth - 1, kHeight - 1}));
    EXPECT_TRUE(output.GuardsIntact());
    return output.row(kHeight / 2)[kWidth];
  }
  /// Has the next frame read the file again.
  void Free() { ReleaseWorkImages(instance); }

  static constexpr int kBright = 188, kDark = 59, kBackground = 16;  // in studio range

  test::TempFolder folder;
  const std::string photo = folder / "photo.bmp";
  Picture input, output;
  Instance instance;
};

TEST_F(ChangingPhoto, ReplacedBetweenFramesIsSeenOnceItIsReadAgain) {
  EXPECT_EQ(NextFrame(), kBright);
  Write(50, 40, 50);
  EXPECT_EQ(NextFrame(), kBright) << "the picture is in memory";
  Free();
  EXPECT_EQ(NextFrame(), kDark);
  EXPECT_EQ(instance.picture.imageWidth, 50u);
}

TEST_F(ChangingPhoto, CutShortBetweenFramesShowsTheBackgroundAndKeepsNoHalfPicture) {
  NextFrame();
  const auto size = std::filesystem::file_size(photo);
  for (const auto kept : {size - 1, size / 2, uintmax_t{54}, uintmax_t{10}, uintmax_t{0}}) {
    std::filesystem::resize_file(photo, kept);
    Free();
    instance.picture.loadFailed = false;
    EXPECT_EQ(NextFrame(), kBackground) << kept;
    EXPECT_EQ(instance.picture.workImages[0], nullptr);
    EXPECT_TRUE(instance.picture.loadFailed);
    EXPECT_EQ(Module().cachedBytes, 0u);
  }
}

TEST_F(ChangingPhoto, DeletedBetweenFramesShowsTheBackground) {
  EXPECT_EQ(NextFrame(), kBright);
  std::filesystem::remove(photo);
  EXPECT_EQ(NextFrame(), kBright) << "the picture is in memory";
  Free();
  EXPECT_EQ(NextFrame(), kBackground);
  EXPECT_TRUE(instance.picture.loadFailed);
}

TEST_F(ChangingPhoto, ThatBecameAFolderShowsTheBackground) {
  std::filesystem::remove(photo);
  std::filesystem::create_directory(photo);
  EXPECT_EQ(NextFrame(), kBackground);
}

/// The still importer's own two steps, with the file changing in between.
class ChangingStill : public ChangingPhoto {
 protected:
  ChangingStill() {
    FSSpec spec;
    EXPECT_EQ(MakeFileSpecification(photo.c_str(), &spec), noErr);
    EXPECT_EQ(GetGraphicsImporterForFile(&spec, &importer), noErr);
    EXPECT_EQ(GraphicsImportGetNaturalBounds(importer, &bounds), noErr);
  }
  ~ChangingStill() override { CloseComponent(importer); }
  OSErr Draw() {
    std::vector<uint8_t> pixels(size_t{64} * 36 * 4);
    GWorldPtr world = nullptr;
    EXPECT_EQ(QTNewGWorldFromPtr(&world, k32BGRAPixelFormat, &bounds, nullptr, nullptr, 0,
                                 pixels.data(), 64 * 4),
              noErr);
    EXPECT_EQ(GraphicsImportSetGWorld(importer, world, nullptr), noErr);
    const OSErr error = GraphicsImportDraw(importer);
    DisposeGWorld(world);
    return error;
  }

  GraphicsImportComponent importer = nullptr;
  StillRect bounds = {};
};

TEST_F(ChangingStill, GrownAfterItWasOpenedIsRefused) {
  Write(100, 100, 3);
  EXPECT_EQ(Draw(), codecBadDataErr);
  EXPECT_STREQ(StillImporterLastError(), "photo.bmp: the file changed after it was opened");
}

TEST_F(ChangingStill, CutShortAfterItWasOpenedIsRefused) {
  std::filesystem::resize_file(photo, 100);
  EXPECT_EQ(Draw(), codecBadDataErr);
  EXPECT_STREQ(StillImporterLastError(), "photo.bmp: truncated BMP (the file ends too early)");
}

TEST_F(ChangingStill, DeletedAfterItWasOpenedIsStillDrawn) {
  std::filesystem::remove(photo);
  EXPECT_EQ(Draw(), noErr);
}

}  // namespace
}  // namespace kelto
