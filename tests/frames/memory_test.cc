// Two instances of the loaded module under one memory limit.
#include "platform/ipl.h"
#include "tests/frames/host.h"

namespace kelto {
namespace {

using test::HostedEffect;
using test::Rgb;

Rgb Grey(int32_t x, int32_t y) {
  const auto v = static_cast<uint8_t>((x ^ y) & 255);
  return {v, v, v};
}

class TwoInstances : public testing::Test {
 protected:
  static constexpr uint64_t kImageBytes = 400 * 300 * 4;

  TwoInstances() : a(64, 36), b(64, 36) {
    hfx::SetConsole([this](const std::string& line) { console.push_back(line); });
    test::WritePhoto(folder / "p.bmp", 400, 300, Grey);
    for (HostedEffect* effect : {&a, &b}) {
      effect->SetPhoto(folder / "p.bmp");
      effect->SetStillView(1.3);
    }
    before = iplxAllocatedBytes();
  }
  ~TwoInstances() override {
    iplxSetMemoryLimit(0);
    hfx::SetConsole({});
  }
  uint64_t Held() const { return iplxAllocatedBytes() - before; }

  test::TempFolder folder;
  std::vector<std::string> console;
  HostedEffect a, b;
  uint64_t before = 0;
};

TEST_F(TwoInstances, EachHoldsItsOwnImageBetweenFrames) {
  a.Render();
  EXPECT_EQ(Held(), kImageBytes);
  b.Render();
  EXPECT_EQ(Held(), 2 * kImageBytes);
}

TEST_F(TwoInstances, WhenMemoryRunsOutTheOtherInstanceGivesItsImageUpAndReloadsLater) {
  a.Render();
  const auto frame = a.output.Packed();
  // A load's peak is two images of natural size, one of them with three bytes a pixel.
  iplxSetMemoryLimit(iplxAllocatedBytes() + kImageBytes + kImageBytes / 4 * 3 - 1);
  b.Render();
  EXPECT_EQ(b.output.Packed(), frame);
  EXPECT_EQ(Held(), kImageBytes) << "only the second instance's image is left";
  EXPECT_TRUE(console.empty()) << console.front();
  a.Render();
  EXPECT_EQ(a.output.Packed(), frame);
  EXPECT_EQ(Held(), kImageBytes);
}

TEST_F(TwoInstances, AnImageThatFitsNowhereIsToldOnTheConsoleAndTheBackgroundShows) {
  iplxSetMemoryLimit(iplxAllocatedBytes() + kImageBytes / 2);
  a.Render();
  ASSERT_EQ(console.size(), 1u);
  EXPECT_EQ(console[0].rfind("KeltoPanAndZoom instance at ", 0), 0u) << console[0];
  EXPECT_NE(
      console[0].find(" failed to allocate memory for image, even when reclaiming memory from "
                      "other instances.\n"),
      std::string::npos)
      << console[0];
  EXPECT_EQ(a.output.row(18)[2 * 32], 16);
  EXPECT_EQ(Held(), 0u);
}

TEST_F(TwoInstances, FreeAllCachesOnOneEmptiesBoth) {
  a.Render();
  b.Render();
  b.SetList("cache", 7);
  b.ParametersChanged();
  EXPECT_EQ(Held(), 0u);
  a.Render();
  EXPECT_EQ(Held(), kImageBytes) << "the next render loads again";
}

TEST(MemoryBudget, ALoadAbove120MebibytesReleasesOtherInstancesImages) {
  test::TempFolder folder;
  test::WritePhoto(folder / "small.bmp", 100, 50, Grey);
  test::WritePhoto(folder / "large.bmp", 7000, 4500, Grey);  // 126,000,000 bytes in the cache
  const uint64_t before = iplxAllocatedBytes();
  {
    HostedEffect a(64, 36), b(64, 36);
    a.SetPhoto(folder / "small.bmp");
    b.SetPhoto(folder / "large.bmp");
    a.Render();
    EXPECT_EQ(iplxAllocatedBytes() - before, 100u * 50 * 4);
    b.Render();
    EXPECT_EQ(iplxAllocatedBytes() - before, 7000u * 4500 * 4) << "the large image stays";
  }
  EXPECT_EQ(iplxAllocatedBytes(), before) << "everything comes back with the instances";
}

}  // namespace
}  // namespace kelto
