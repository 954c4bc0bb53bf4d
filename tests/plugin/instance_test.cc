#include <gtest/gtest.h>

#include <memory>

#include "image/cache.h"
#include "state/module.h"
#include "state/pool.h"
#include "tests/support/instance.h"
#include "tests/support/photo.h"

namespace kelto {
namespace {

using test::Instance;

TEST(InstanceRecord, StartsWithItsDefaults) {
  const Instance i;
  EXPECT_EQ(i.settings.display, 0);
  EXPECT_EQ(i.settings.view.zoom, 1.0);
  EXPECT_EQ(i.settings.inVelocity, 1);
  EXPECT_EQ(i.settings.outVelocity, 1);
  EXPECT_EQ(i.settings.pathType, 0);
  EXPECT_EQ(i.settings.filter, 0);
  EXPECT_TRUE(i.settings.showActionSafe && i.renderFlag && i.settings.squarePixels &&
              i.paramsChanged);
  EXPECT_FALSE(i.settings.progressive || i.picture.loadFailed);
  EXPECT_EQ(i.settings.cacheMode, 1);
  EXPECT_EQ(i.picture.appliedCacheMode, 1);
  EXPECT_EQ(i.render.hostState, -1);
  EXPECT_EQ(i.render.playMode, -1);
  EXPECT_EQ(i.picture.cacheState, -1);
  EXPECT_EQ(i.picture.imageWidth, 0u);
  for (const ImagePtr& image : i.picture.workImages) EXPECT_EQ(image, nullptr);
}

TEST(InstanceRegistryOrder, DeletingAMiddleInstanceKeepsTheOrderOfTheOthers) {
  const size_t before = InstanceRegistry().size();
  Instance a;
  auto b = std::make_unique<Instance>();
  Instance c, d;
  b.reset();
  const auto& registry = InstanceRegistry();
  ASSERT_EQ(registry.size(), before + 3);
  EXPECT_EQ(registry[before], &a);
  EXPECT_EQ(registry[before + 1], &c);
  EXPECT_EQ(registry[before + 2], &d);
}

TEST(BeginRender, TakesTheSavedPathUpToItsFirstZero) {
  Instance i;
  i.SetPath("/photos/a.jpg");
  hfx::SetPlayMode(hfxPlayModePreview);
  EXPECT_EQ(i.BeginRender(), 1);
  EXPECT_EQ(i.picture.imagePath, "/photos/a.jpg");
  EXPECT_EQ(i.render.playMode, hfxPlayModePreview);
  hfx::SetPlayMode(hfxPlayModeRender);
  EXPECT_EQ(i.EndRender(), -1);
  EXPECT_EQ(i.render.playMode, -1);
}

TEST(BeginRender, ARecordThatBeginsWithZeroLeavesThePathEmpty) {
  Instance i;
  i.picture.imagePath = "old.jpg";
  i.SetPath("");
  i.BeginRender();
  EXPECT_EQ(i.picture.imagePath, "");
}

TEST(BeginRender, WithoutARecordThePathStays) {
  Instance i;
  i.picture.imagePath = "old.jpg";
  i.BeginRender();
  EXPECT_EQ(i.picture.imagePath, "old.jpg");
}

TEST(BeginRender, ARecordWithoutAnyZeroIsReadTo2048Bytes) {
  Instance i;
  const std::string longer(3000, 'x');
  i.SetInstanceData(longer.data(), static_cast<int32_t>(longer.size()));
  i.BeginRender();
  EXPECT_EQ(i.picture.imagePath, std::string(2048, 'x'));
  i.SetInstanceData("ab", 2);
  i.BeginRender();
  EXPECT_EQ(i.picture.imagePath, "ab");
}

/// An instance that holds one small image in its cache.
class HoldingInstance : public testing::Test {
 protected:
  HoldingInstance() {
    test::WritePhoto(folder / "p.bmp", 20, 10, [](int32_t, int32_t) { return test::Rgb{9, 9, 9}; });
    instance.SetPath(folder / "p.bmp");
    instance.BeginRender();
    Load();
  }
  ~HoldingInstance() override { Module().hostState = nullptr; }
  void Load() {
    test::Picture out(16, 8, hfxColorspaceYCbCr);
    hfx::SetInput(instance, 0, out.image());
    hfx::SetOutput(instance, 0, out.image());
    instance.RenderFrame({0, 0, 15, 7});
    ASSERT_NE(instance.picture.workImages[0], nullptr);
  }
  test::TempFolder folder;
  Instance instance;
};

TEST_F(HoldingInstance, EndRenderAfterHostStateOneReleasesTheImages) {
  Module().hostState = [] { return int32_t{1}; };
  instance.BeginRender();
  EXPECT_EQ(instance.render.hostState, 1);
  instance.EndRender();
  EXPECT_EQ(instance.picture.workImages[0], nullptr);
  EXPECT_EQ(Module().cachedBytes, 0u);
  EXPECT_EQ(instance.render.hostState, -1);
}

TEST_F(HoldingInstance, EndRenderAfterAnotherHostStateKeepsThem) {
  Module().hostState = [] { return int32_t{2}; };
  instance.BeginRender();
  instance.EndRender();
  EXPECT_NE(instance.picture.workImages[0], nullptr);
  EXPECT_GT(Module().cachedBytes, 0u);
}

TEST(Instances, GiveAllTheirMemoryBackWhenDeleted) {
  const uint64_t before = iplxAllocatedBytes();
  {
    test::TempFolder folder;
    test::WritePhoto(folder / "p.bmp", 40, 30, [](int32_t, int32_t) { return test::Rgb{1, 2, 3}; });
    Instance a, b;
    test::Picture out(16, 8, hfxColorspaceYCbCr);
    for (Instance* i : {&a, &b}) {
      i->SetPath(folder / "p.bmp");
      i->SetPosition(0, 0, 0);
      i->SetPosition(1, 1, 1);
      hfx::SetInput(*i, 0, out.image());
      hfx::SetOutput(*i, 0, out.image());
      i->BeginRender();
      i->RenderFrame({0, 0, 15, 7});
      i->EndRender();
    }
    EXPECT_EQ(Module().cachedBytes, 2u * 40 * 30 * 4);
  }
  EXPECT_EQ(Module().cachedBytes, 0u);
  EXPECT_EQ(iplxAllocatedBytes(), before);
}

}  // namespace
}  // namespace kelto
