#include "host/film/encoder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "host/base/error.h"
#include "tests/host/support/effect_frames.h"
#include "tests/host/support/film_reader.h"

namespace kelto::host {
namespace {

using test::DecodedFilm;
using test::DecodedFrame;
using test::Rgb;

/// Colour bars across a frame.
test::EffectFrame Bars(FrameSize size) {
  const std::vector<Rgb> bars = test::BarColours();
  return test::MakeYCbYCr(size, [&](int x, int) { return bars[x * bars.size() / size.width]; });
}

void ExpectBars(const DecodedFrame& frame, AVColorSpace matrix) {
  const std::vector<Rgb> bars = test::BarColours();
  for (size_t i = 0; i < bars.size(); ++i) {
    const int x = static_cast<int>((2 * i + 1) * frame.width / (2 * bars.size()));
    const Rgb seen = test::ColourAt(frame, matrix, x, frame.height / 2);
    EXPECT_LE(test::Distance(seen, bars[i]), 3)
        << test::ToString(bars[i]) << " became " << test::ToString(seen);
  }
}

struct Container {
  std::unique_ptr<FrameSink> (*open)(const FilmRequest&);
  const char* name;
};

class Containers : public testing::TestWithParam<Container> {};

TEST_P(Containers, HoldEveryFrameWithItsTimeAndForm) {
  const test::TempFolder folder;
  const std::string path = folder / "film";
  const FrameSize size{128, 96};
  const auto film = GetParam().open({path, {size, {30000, 1001}}, 40});
  for (int i = 0; i < 40; ++i) {
    const uint8_t level = static_cast<uint8_t>(5 * i);
    film->Write(test::MakeYCbYCr(size, [&](int, int) { return Rgb{level, level, level}; }).View());
  }
  film->Finish();

  const DecodedFilm read = test::ReadFilm(path);
  EXPECT_NE(read.container.find(GetParam().name), std::string::npos) << read.container;
  EXPECT_EQ(read.codec, "h264");
  EXPECT_EQ(read.pixelFormat, "yuv420p");
  EXPECT_NEAR(av_q2d(read.rate), 30000.0 / 1001.0, 1e-3);
  EXPECT_NEAR(read.seconds, 40.0 * 1001.0 / 30000.0, 0.002);
  EXPECT_EQ(read.sampleAspect.num, 1);
  EXPECT_EQ(read.sampleAspect.den, 1);
  ASSERT_EQ(read.frames.size(), 40u);
  for (int i = 0; i < 40; ++i) {
    EXPECT_EQ(read.frames[i].width, size.width);
    EXPECT_EQ(read.frames[i].height, size.height);
    EXPECT_FALSE(read.frames[i].interlaced);
    EXPECT_NEAR(read.frames[i].Luma(60, 50), 16.0 + 5 * i * 219.0 / 255.0, 2.0) << "frame " << i;
    EXPECT_NEAR(read.frames[i].seconds - read.frames[0].seconds, i * 1001.0 / 30000.0, 0.001);
  }
}

INSTANTIATE_TEST_SUITE_P(All, Containers,
                         testing::Values(Container{OpenMp4, "mp4"}, Container{OpenMov, "mov"},
                                         Container{OpenMkv, "matroska"}),
                         [](const auto& each) { return std::string(each.param.name); });

struct Definition {
  FrameSize size;
  AVColorSpace matrix;
};

class Colours : public testing::TestWithParam<Definition> {};

TEST_P(Colours, AreTaggedAndCodedSoThatPlayersShowThemRight) {
  const auto [size, matrix] = GetParam();
  const test::TempFolder folder;
  const auto film = OpenMp4(test::Request(folder / "film", size, 2));
  const test::EffectFrame bars = Bars(size);
  film->Write(bars.View());
  film->Write(bars.View());
  film->Finish();

  const DecodedFilm read = test::ReadFilm(folder / "film");
  EXPECT_EQ(read.matrix, matrix);
  EXPECT_EQ(read.primaries, AVCOL_PRI_BT709);
  EXPECT_EQ(read.transfer, AVCOL_TRC_BT709);
  EXPECT_EQ(read.range, AVCOL_RANGE_MPEG);
  ASSERT_EQ(read.frames.size(), 2u);
  ExpectBars(read.frames[0], read.matrix);
  ExpectBars(read.frames[1], read.matrix);
}

INSTANTIATE_TEST_SUITE_P(Definitions, Colours,
                         testing::Values(Definition{{720, 576}, AVCOL_SPC_SMPTE170M},
                                         Definition{{1280, 720}, AVCOL_SPC_BT709}));

class Fields : public testing::TestWithParam<FieldOrder> {};

TEST_P(Fields, AreMarkedAndKeepApart) {
  const test::TempFolder folder;
  const FrameSize size{128, 96};
  const auto film = OpenMp4({folder / "film", {size, {25, 1}, GetParam()}, 4});
  // One field red, the other one blue: chroma that mixes them would show.
  const Rgb top{200, 0, 0}, bottom{0, 0, 200};
  const auto frame = test::MakeYCbYCr(size, [&](int, int y) { return y % 2 == 0 ? top : bottom; });
  for (int i = 0; i < 4; ++i) film->Write(frame.View());
  film->Finish();

  const DecodedFilm read = test::ReadFilm(folder / "film");
  const bool topFirst = GetParam() == FieldOrder::kTopFirst;
  EXPECT_EQ(read.fields, topFirst ? AV_FIELD_TT : AV_FIELD_BB);
  ASSERT_EQ(read.frames.size(), 4u);
  for (const DecodedFrame& each : read.frames) {
    EXPECT_TRUE(each.interlaced);
    EXPECT_EQ(each.topFirst, topFirst);
    for (int row = 40; row < 48; ++row) {
      // Chroma rows of the two fields alternate: frame row r has the chroma of its own field.
      const int chromaRow = 2 * (row / 4) + row % 2;
      const size_t at = size_t(chromaRow) * each.chromaWidth + 30;
      const Rgb seen =
          test::ColourOf(each.Luma(60, row), each.planes[1][at], each.planes[2][at], read.matrix);
      const Rgb wanted = row % 2 == 0 ? top : bottom;
      EXPECT_LE(test::Distance(seen, wanted), 12)
          << "row " << row << " is " << test::ToString(seen);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Orders, Fields,
                         testing::Values(FieldOrder::kTopFirst, FieldOrder::kBottomFirst));

TEST(Encoder, PutsTheIndexOfAnMp4FileInFront) {
  const test::TempFolder folder;
  const auto film = OpenMp4(test::Request(folder / "film", {64, 64}, 2));
  const auto frame = test::MakeYCbYCr({64, 64}, [](int, int) { return Rgb{1, 2, 3}; });
  film->Write(frame.View());
  film->Write(frame.View());
  film->Finish();
  std::ifstream file(folder / "film", std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), {}};
  ASSERT_NE(bytes.find("moov"), std::string::npos);
  EXPECT_LT(bytes.find("moov"), bytes.find("mdat"));
}

TEST(Encoder, ANameMayHoldAColonOrAPercentSign) {
  const test::TempFolder folder;
  const std::string path = folder / "http:%d 100%.mp4";
  const auto film = OpenMp4(test::Request(path, {64, 64}, 1));
  film->Write(test::MakeYCbYCr({64, 64}, [](int, int) { return Rgb{1, 2, 3}; }).View());
  film->Finish();
  EXPECT_EQ(test::ReadFilm(path).frames.size(), 1u);
}

TEST(Encoder, LeavesNothingWhenNotFinished) {
  const test::TempFolder folder;
  {
    const auto film = OpenMp4(test::Request(folder / "film", {64, 64}, 2));
    film->Write(test::MakeYCbYCr({64, 64}, [](int, int) { return Rgb{1, 2, 3}; }).View());
  }
  { const auto film = OpenMkv(test::Request(folder / "film", {64, 64}, 2)); }
  EXPECT_TRUE(std::filesystem::is_empty(folder / ""));
}

TEST(Encoder, TakesTheSmallestFrames) {
  const test::TempFolder folder;
  const auto film = OpenMp4(test::Request(folder / "film", {2, 2}, 1));
  film->Write(test::MakeYCbYCr({2, 2}, [](int, int) { return Rgb{255, 255, 255}; }).View());
  film->Finish();
  EXPECT_EQ(test::ReadFilm(folder / "film").frames.size(), 1u);
}

TEST(Encoder, IsTheSameFilmEveryTime) {
  const test::TempFolder folder;
  const auto bytes = [&](const char* name) {
    const auto film = OpenMp4(test::Request(folder / name, {128, 128}, 5));
    for (int i = 0; i < 5; ++i) film->Write(Bars({128, 128}).View());
    film->Finish();
    std::ifstream file(folder / name, std::ios::binary);
    return std::string{std::istreambuf_iterator<char>(file), {}};
  };
  EXPECT_EQ(bytes("a"), bytes("b"));
}

}  // namespace
}  // namespace kelto::host
