// Memory that runs out under the plug-in, and files that it opens, counted.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "tests/adapters/run.h"
#include "tests/faults/failing_calls.h"
#include "tests/openfx/strict_host.h"

namespace kelto::test {
namespace {

constexpr ofx::RectI kMemoryFrame{0, 0, 48, 32};
FailNth* failingInPlugin = nullptr;

class OpenFxMemory : public testing::TestWithParam<const char*> {
 protected:
  OpenFxMemory() : host_(BuiltPlugin()) {
    // Highway's library, which comes with the module, does not survive being loaded without memory.
    EXPECT_NE(dlopen(KELTO_BUILD_FOLDER "/lib/KeltoPanAndZoom.hfx", RTLD_NOW), nullptr);
    AtWork::changed = [](AtWork::Who who) {
      if (failingInPlugin == nullptr) return;
      who == AtWork::kPlugin ? failingInPlugin->Resume() : failingInPlugin->Pause();
    };
    WriteTestPhoto(photo_, 90, 60);
    EXPECT_EQ(host_.Start(ofx::context::kFilter), ofx::kOk);
    host_.parameter("filename").text = photo_;
    host_.parameter("zoom").number = [](double) { return 0.7; };
    source_ = NewImage();
  }
  ~OpenFxMemory() override { AtWork::changed = nullptr; }
  void TearDown() override { EXPECT_EQ(TheFaults().Taken(), std::vector<std::string>()); }

  static HostImage NewImage() {
    HostImage image{kMemoryFrame, kMemoryFrame, GetParam()};
    image.Make();
    return image;
  }
  /// As a host that makes an instance for every frame. The status of the first action that fails.
  ofx::Status MakeAndRender(HostImage& image) {
    const ofx::Status made = host_.Create();
    if (made != ofx::kOk) return made;
    const ofx::Status drawn = host_.Run({.output = &image, .source = &source_});
    EXPECT_EQ(host_.Destroy(), ofx::kOk);
    return drawn;
  }

  TempFolder folder_;
  std::string photo_ = folder_ / "photo.bmp";
  StrictHost host_;
  HostImage source_;
};
INSTANTIATE_TEST_SUITE_P(Depths, OpenFxMemory,
                         testing::Values(ofx::value::kByte, ofx::value::kFloat));

TEST_P(OpenFxMemory, ThatIsRefusedOnceIsReportedAndCostsOneFrameAtMost) {
  HostImage right = NewImage();
  ASSERT_EQ(MakeAndRender(right), ofx::kOk);
  bool fired = true;
  int refused = 0;
  int64_t n = 0;
  for (; fired; ++n) {
    ASSERT_EQ(host_.Call(ofx::action::kPurgeCaches), ofx::kOk);
    HostImage image = NewImage();
    const size_t messages = host_.messages().size();
    FailNth failing(FailingCall::kAllocation, n + 1);
    failing.Pause();
    failingInPlugin = &failing;
    const ofx::Status status = MakeAndRender(image);
    failingInPlugin = nullptr;
    fired = failing.Fired();
    failing.Stop();
    if (status == ofx::kOk) {
      // Where a library has no memory for the photograph, it is missing, or has only the effect's
      // own bits, which is said.
      ASSERT_TRUE(image.memory == right.memory || host_.messages().size() > messages)
          << "allocation " << n + 1;
    } else {
      ASSERT_EQ(status, ofx::kOutOfMemory) << "allocation " << n + 1;
      ++refused;
    }
    ASSERT_EQ(MakeAndRender(image), ofx::kOk) << "allocation " << n + 1;
    ASSERT_TRUE(image.memory == right.memory) << "allocation " << n + 1;
  }
  EXPECT_GT(n, 50);
  EXPECT_GT(refused, 50);
}

TEST_P(OpenFxMemory, OfTheHostIsUsedForFramesAndAllGivenBack) {
  HostImage right = NewImage();
  host_.FailAllocation(0);
  ASSERT_EQ(MakeAndRender(right), ofx::kOk);
  const int used = host_.allocations();
  EXPECT_EQ(used, 2);  // what lies behind, and what is drawn
  for (int n = 1; n <= used; ++n) {
    HostImage image = NewImage();
    host_.FailAllocation(n);
    EXPECT_EQ(MakeAndRender(image), ofx::kOutOfMemory) << n;
    EXPECT_EQ(host_.allocated(), 0);
    host_.FailAllocation(0);
    EXPECT_EQ(MakeAndRender(image), ofx::kOk);
    EXPECT_EQ(image.memory, right.memory);
  }
  EXPECT_EQ(host_.allocated(), 0);
}

TEST_P(OpenFxMemory, KeepsAPhotographFromInstanceToInstance) {
  HostImage image = NewImage();
  const auto filesOpened = [&] {
    FailNth counting(FailingCall::kFile, 0);
    counting.Pause();
    failingInPlugin = &counting;
    EXPECT_EQ(MakeAndRender(image), ofx::kOk);
    failingInPlugin = nullptr;
    return counting.Count();
  };
  host_.Call(ofx::action::kPurgeCaches);
  EXPECT_GT(filesOpened(), 0);
  for (int frame = 0; frame < 10; ++frame) EXPECT_EQ(filesOpened(), 0) << frame;
  host_.Call(ofx::action::kPurgeCaches);
  EXPECT_GT(filesOpened(), 0);
}

}  // namespace
}  // namespace kelto::test
