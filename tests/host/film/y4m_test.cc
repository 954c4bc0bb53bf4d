#include "host/film/y4m.h"

#include <gtest/gtest.h>

#include "tests/host/support/effect_frames.h"
#include "tests/host/support/film_reader.h"

namespace kelto::host {
namespace {

TEST(Y4m, TheHeaderTellsSizeRateFieldsAndForm) {
  EXPECT_EQ(Y4mHeader({{720, 576}, {25, 1}, FieldOrder::kProgressive}),
            "YUV4MPEG2 W720 H576 F25:1 Ip A1:1 C422 XYSCSS=422 XCOLORRANGE=LIMITED\n");
  EXPECT_EQ(Y4mHeader({{1920, 1080}, {30000, 1001}, FieldOrder::kTopFirst}),
            "YUV4MPEG2 W1920 H1080 F30000:1001 It A1:1 C422 XYSCSS=422 XCOLORRANGE=LIMITED\n");
  EXPECT_NE(Y4mHeader({{2, 2}, {25, 1}, FieldOrder::kBottomFirst}).find(" Ib "), std::string::npos);
}

TEST(Y4m, TheHeaderTellsTheShapeOfPixels) {
  const FilmFormat format{{720, 576}, {25, 1}, FieldOrder::kTopFirst, {16, 15}};
  EXPECT_NE(Y4mHeader(format).find(" It A16:15 C422 "), std::string::npos);
}

class Y4mColours : public testing::TestWithParam<FrameSize> {};

TEST_P(Y4mColours, AreThoseThatReadersExpectAtTheFramesHeight) {
  const FrameSize size = GetParam();
  const test::TempFolder folder;
  const test::Rgb orange{255, 128, 0};
  const auto film = OpenY4m(test::Request(folder / "film.y4m", size, 3));
  const auto frame = test::MakeYCbYCr(size, [&](int, int) { return orange; });
  for (int i = 0; i < 3; ++i) film->Write(frame.View());
  film->Finish();

  const test::DecodedFilm read = test::ReadFilm(folder / "film.y4m");
  ASSERT_EQ(read.frames.size(), 3u);
  EXPECT_EQ(read.pixelFormat, "yuv422p");
  EXPECT_EQ(read.range, AVCOL_RANGE_MPEG);
  const AVColorSpace matrix = size.height > 576 ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
  for (const test::DecodedFrame& each : read.frames) {
    const test::Rgb seen = test::ColourAt(each, matrix, size.width - 1, size.height - 1);
    EXPECT_LE(test::Distance(seen, orange), 3) << test::ToString(seen);
  }
}

INSTANTIATE_TEST_SUITE_P(Sizes, Y4mColours, testing::Values(FrameSize{66, 50}, FrameSize{64, 578}));

}  // namespace
}  // namespace kelto::host
