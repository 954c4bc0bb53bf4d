// What a render takes down about the image that it loads.
#include <gtest/gtest.h>

#include "plugin/update_params.h"
#include "tests/support/instance.h"
#include "tests/support/photo.h"

namespace kelto {
namespace {

using test::Instance;
using test::Picture;

class FrameReload : public testing::Test {
 protected:
  FrameReload() : picture(16, 8, hfxColorspaceYCbCr) {
    test::WritePhoto(folder / "p.bmp", 20, 10, [](int32_t, int32_t) { return test::Rgb{9, 9, 9}; });
    hfx::SetInput(instance, 0, picture.image());
    hfx::SetOutput(instance, 0, picture.image());
    instance.SetPath(folder / "p.bmp");
  }
  void Render() { instance.RenderFrame({0, 0, 15, 7}); }

  test::TempFolder folder;
  Picture picture;
  Instance instance;
};

TEST_F(FrameReload, CarriesTheCacheModeOutSoThatTheNextEditKeepsTheImage) {
  // As in a project that was saved so: no edit has carried the mode out yet.
  instance.SetKey("cache", 0.0, int32_t{kCacheVideoResolution});
  instance.SetActive("cache", 0);
  instance.settings.cacheMode = kCacheVideoResolution;
  Render();
  EXPECT_EQ(instance.picture.appliedCacheMode, kCacheVideoResolution);
  const IplImage* loaded = instance.picture.workImages[0].get();
  ASSERT_NE(loaded, nullptr);
  UpdateParams(&instance);
  EXPECT_EQ(instance.picture.workImages[0].get(), loaded);
}

TEST_F(FrameReload, WithoutOneTheCacheModeStaysAskedFor) {
  Render();
  instance.settings.cacheMode = kCacheVideoResolution;
  Render();
  EXPECT_EQ(instance.picture.appliedCacheMode, kCacheImageResolution);
}

TEST_F(FrameReload, ThatFailsIsTakenDownToo) {
  instance.SetPath(folder / "gone.bmp");
  instance.settings.cacheMode = kCacheVideoResolution;
  instance.settings.levels = 1;
  Render();
  EXPECT_TRUE(instance.picture.loadFailed);
  EXPECT_EQ(instance.picture.appliedCacheMode, kCacheVideoResolution);
  EXPECT_EQ(instance.picture.appliedLevels, 1);
}

}  // namespace
}  // namespace kelto
