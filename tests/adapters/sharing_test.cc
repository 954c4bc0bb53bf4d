// Many instances in one process, as a host with render threads makes them.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <thread>

#include "tests/adapters/built_plugins.h"
#include "tests/adapters/run.h"

namespace kelto {
namespace {

using namespace frei0r;
using test::FilterPlugin;
using test::Instance;
using test::SourcePlugin;

/// Bytes of memory that the process holds.
int64_t ResidentBytes() {
  std::ifstream statm("/proc/self/statm");
  int64_t total = 0, resident = 0;
  statm >> total >> resident;
  return resident * sysconf(_SC_PAGESIZE);
}

std::unique_ptr<Instance> NewInstance(const std::string& photo, int i) {
  auto instance = std::make_unique<Instance>(i % 2 ? SourcePlugin() : FilterPlugin(), 200, 120);
  instance->Set(kImage, photo);
  instance->Set(kBackground, "#405060");
  instance->Set(kFrom, "1");
  instance->Set(kTo, i % 3 ? "3@0.2,0.1" : "0.5");
  instance->Set(kFrames, "12");
  return instance;
}

TEST(FreiSharing, InstancesOnManyThreadsRenderWhatTheyRenderAlone) {
  test::TempFolder folder;
  constexpr int kThreads = 8, kFrames = 12;
  const std::string photos[] = {folder / "a.bmp", folder / "b.bmp"};
  test::WriteTestPhoto(photos[0], 300, 200);
  test::WriteTestPhoto(photos[1], 250, 260);

  std::vector<std::vector<std::vector<uint32_t>>> alone(kThreads), together(kThreads);
  for (int i = 0; i < kThreads; ++i) {
    const auto instance = NewInstance(photos[i % 2], i);
    for (int frame = 0; frame < kFrames; ++frame)
      alone[i].push_back(instance->Render(frame / 25.0));
  }
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] {
      // Instances come and go while others render.
      for (int frame = 0; frame < kFrames; ++frame) {
        const auto instance = NewInstance(photos[i % 2], i);
        together[i].push_back(instance->Render(frame / 25.0));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (int i = 0; i < kThreads; ++i) EXPECT_EQ(together[i], alone[i]) << "instance " << i;
}

TEST(FreiSharing, OneInstanceMayBeCalledFromSeveralThreads) {
  test::TempFolder folder;
  test::WriteTestPhoto(folder / "photo.bmp", 300, 200);
  constexpr uint32_t kWidth = 200, kHeight = 120;
  // Over video, of which the instance keeps a copy, and half beside the picture.
  Instance instance(FilterPlugin(), kWidth, kHeight);
  instance.Set(kImage, folder / "photo.bmp");
  instance.Set(kFrom, "0.5");
  const auto frame = [&](uint32_t video) {
    const std::vector<uint32_t> in(kWidth * kHeight, video);
    std::vector<uint32_t> out(in.size());
    FilterPlugin().update(instance.handle(), 0.0, in.data(), out.data());
    return out;
  };
  const std::vector<uint32_t> expected[] = {frame(0xff102030), frame(0xffe0d0c0)};
  ASSERT_NE(expected[0], expected[1]);
  bool same[] = {true, true};
  std::thread threads[2];
  for (int i = 0; i < 2; ++i) {
    threads[i] = std::thread([&, i] {
      for (int round = 0; round < 40; ++round) {
        same[i] = same[i] && frame(i == 0 ? 0xff102030 : 0xffe0d0c0) == expected[i];
        instance.Set(kQuality, 1.0);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_TRUE(same[0] && same[1]);
}

TEST(FreiSharing, InstancesOfOnePhotographShareOneDecodedCopy) {
  test::TempFolder folder;
  constexpr int64_t kCopy = int64_t{3000} * 2000 * 4;
  test::WriteTestPhoto(folder / "photo.bmp", 3000, 2000);
  std::vector<std::unique_ptr<Instance>> instances;
  instances.push_back(NewInstance(folder / "photo.bmp", 1));
  instances.back()->Render();
  const int64_t one = ResidentBytes();
  for (int i = 0; i < 7; ++i) {
    instances.push_back(NewInstance(folder / "photo.bmp", i));
    instances.back()->Render();
  }
  EXPECT_LT(ResidentBytes() - one, kCopy / 2);
}

}  // namespace
}  // namespace kelto
