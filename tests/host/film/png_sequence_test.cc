#include "host/film/png_sequence.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "host/error.h"
#include "tests/host/support/effect_frames.h"

namespace kelto::host {
namespace {

test::Rgb Pixel(int x, int y) { return {uint8_t(10 * x), uint8_t(20 * y), 200}; }

TEST(PngSequence, WritesAPictureAFrameCountedFromZero) {
  const test::TempFolder folder;
  const FrameSize size{5, 3};
  const auto film = OpenPngSequence(test::Request(folder / "f%02d.png", size, 2));
  film->Write(test::MakeBGRA(size, Pixel).View());
  film->Write(test::MakeBGRA(size, [](int, int) { return test::Rgb{1, 2, 3}; }).View());
  film->Finish();
  const test::Picture first = test::ReadPng(folder / "f00.png");
  ASSERT_EQ(first.width, 5);
  ASSERT_EQ(first.height, 3);
  EXPECT_EQ(first.bytes, test::MakePicture(5, 3, Pixel).bytes);
  EXPECT_EQ(test::Distance(test::ReadPng(folder / "f01.png").At(4, 2), {1, 2, 3}), 0);
  EXPECT_FALSE(std::filesystem::exists(folder / "f02.png"));
}

TEST(PngSequence, LeavesNothingBeforeTheFirstFrame) {
  const test::TempFolder folder;
  { OpenPngSequence(test::Request(folder / "f%02d.png", {5, 3}, 2)); }
  EXPECT_TRUE(std::filesystem::is_empty(folder / ""));
}

TEST(PngSequence, TellsOfABadFolderBeforeTheFirstFrame) {
  const test::TempFolder folder;
  EXPECT_THROW(OpenPngSequence(test::Request(folder / "no/f%02d.png", {5, 3}, 2)), Error);
}

}  // namespace
}  // namespace kelto::host
