#include "host/film/raw_video.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <vector>

#include "tests/host/support/effect_frames.h"

namespace kelto::host {
namespace {

std::vector<uint8_t> SamplesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(RawVideo, IsTheFramesBytesOneFrameAfterAnother) {
  const test::TempFolder folder;
  const auto first = test::MakeYCbYCr({4, 2}, [](int x, int) {
    return test::Rgb{255, 0, uint8_t(x)};
  });
  const auto second = test::MakeYCbYCr({4, 2}, [](int, int y) {
    return test::Rgb{0, uint8_t(y), 9};
  });
  const auto film = OpenRawYCbYCr(test::Request(folder / "film.yuyv", {4, 2}, 2));
  film->Write(first.View());
  film->Write(second.View());
  film->Finish();
  std::vector<uint8_t> expected = first.bytes;
  expected.insert(expected.end(), second.bytes.begin(), second.bytes.end());
  EXPECT_EQ(SamplesOf(folder / "film.yuyv"), expected);
}

TEST(RawVideo, LeavesOutTheRowsPadding) {
  const test::TempFolder folder;
  const auto frame = test::MakeBGRA({3, 2}, [](int x, int y) {
    return test::Rgb{1, uint8_t(x), uint8_t(y)};
  });
  std::vector<uint8_t> padded = frame.bytes;
  padded.insert(padded.begin() + 12, 4, 99);
  const auto film = OpenRawBGRA(test::Request(folder / "film.bgra", {3, 2}, 1));
  film->Write({padded.data(), 16, {3, 2}});
  film->Finish();
  EXPECT_EQ(SamplesOf(folder / "film.bgra"), frame.bytes);
}

}  // namespace
}  // namespace kelto::host
