// The engine and the loaded module, called with the stack at each multiple of four.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "resample/resample.h"
#include "targets/target.h"
#include "tests/frames/host.h"
#include "tests/resample/buffers.h"
#include "tests/windows/shifted_stack.h"

namespace kelto {
namespace {

using test::FromShiftedStack;
using test::kStackShifts;

/// Compiled without need for alignment of its own, so that its frame lies where it was called.
[[gnu::noinline]] uintptr_t StackPlace() {
  return reinterpret_cast<uintptr_t>(__builtin_frame_address(0)) % 16;
}

TEST(ShiftedStack, ReachesTheCalledFunction) {
  std::set<uintptr_t> places;
  for (const uint32_t shift : kStackShifts) {
    test::CallFromShiftedStack(
        [](void* seen) { static_cast<std::set<uintptr_t>*>(seen)->insert(StackPlace()); }, &places,
        shift);
  }
  EXPECT_EQ(places.size(), 4u);
}

TEST(ShiftedStack, EveryTargetOfTheEngineDrawsTheSameFromIt) {
  test::SourceImage image(97, 61, [](int x, int y, int c) { return (x * 7 + y * 31 + c) % 256; });
  for (const Target target : AvailableTargets()) {
    SetTarget(target);
    for (int32_t mode = kFilterRealTime; mode <= kFilterUltraQual; ++mode) {
      SCOPED_TRACE(std::string(TargetName(target)) + " mode " + std::to_string(mode));
      const auto draw = [&](test::GuardedBuffer& dest) {
        ResampleTo422(test::MakeJob(image, {3.5f, 2.5f, 90.0f, 55.0f}, dest, 150, 80, mode));
      };
      test::GuardedBuffer expected(150, 80, 2);
      draw(expected);
      for (const uint32_t shift : kStackShifts) {
        test::GuardedBuffer dest(150, 80, 2);
        FromShiftedStack(shift, [&] { draw(dest); });
        EXPECT_EQ(dest.Packed(), expected.Packed()) << "shifted by " << shift;
      }
    }
  }
  SetTarget(AvailableTargets().back());
}

/// A frame's bytes.
std::vector<uint8_t> Frame(test::Picture& picture, int32_t height) {
  std::vector<uint8_t> bytes;
  for (int32_t y = 0; y < height; ++y) {
    bytes.insert(bytes.end(), picture.row(y), picture.row(y) + picture.rowBytes());
  }
  return bytes;
}

TEST(ShiftedStack, AHostThatCallsTheModuleFromItGetsTheSameFrames) {
  test::TempFolder folder;
  test::WritePhoto(folder / "a.bmp", 200, 150, [](int32_t x, int32_t y) {
    return test::Rgb{static_cast<uint8_t>(x), static_cast<uint8_t>(y), 99};
  });
  // Everything from the creation of the effect to the end of its picture happens on that stack.
  const auto render = [&] {
    test::HostedEffect effect(96, 54);
    effect.SetList("filter", test::kUltraQual);
    effect.SetView(0.0, 1.0, 0.0, 0.0);
    effect.SetView(1.0, 2.0, 0.1, 0.1);
    effect.SetPhoto(folder / "a.bmp");
    effect.Render();
    return Frame(effect.output, 54);
  };
  const std::vector<uint8_t> expected = render();
  EXPECT_GT(std::set<uint8_t>(expected.begin(), expected.end()).size(), 50u) << "the picture shows";
  for (const uint32_t shift : kStackShifts) {
    std::vector<uint8_t> frame;
    FromShiftedStack(shift, [&] { frame = render(); });
    EXPECT_EQ(frame, expected) << "shifted by " << shift;
  }
}

}  // namespace
}  // namespace kelto
