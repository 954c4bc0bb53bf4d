#include "host/film/colour_matrix.h"

#include <gtest/gtest.h>

#include <utility>

namespace kelto::host {
namespace {

TEST(ColourMatrix, HighDefinitionBeginsAbove576Rows) {
  EXPECT_EQ(MatrixFor({720, 576}), ColourMatrix::kBt601);
  EXPECT_EQ(MatrixFor({720, 578}), ColourMatrix::kBt709);
  EXPECT_EQ(MatrixFor({1920, 1080}), ColourMatrix::kBt709);
}

TEST(ColourMatrix, WithinBt601OnlyChromaIsScaled) {
  const ChromaMap map = MapInto(ColourMatrix::kBt601);
  EXPECT_EQ(map.lumaCb, 0);
  EXPECT_EQ(map.lumaCr, 0);
  EXPECT_EQ(map.cbCr, 0);
  EXPECT_EQ(map.crCb, 0);
  EXPECT_NEAR(map.cbCb, ChromaMap::kOne * 224.0 / 219.0, 1.0);
  EXPECT_NEAR(map.crCr, ChromaMap::kOne * 224.0 / 219.0, 1.0);
}

TEST(ColourMatrix, IntoBt709AgreesWithTheProductOfTheTwoMatrices) {
  // From the published weights: Y709 = Y601 - 0.1182 Cb - 0.2127 Cr for equally scaled chroma, and
  // Cb709 = 1.0186 Cb + 0.1146 Cr, Cr709 = 0.0750 Cb + 1.0254 Cr.
  const ChromaMap map = MapInto(ColourMatrix::kBt709);
  const double scale = 224.0 / 219.0;
  const auto unit = [](int32_t fixed) { return static_cast<double>(fixed) / ChromaMap::kOne; };
  EXPECT_NEAR(unit(map.lumaCb), -0.1182, 5e-4);
  EXPECT_NEAR(unit(map.lumaCr), -0.2127, 5e-4);
  EXPECT_NEAR(unit(map.cbCb), 1.0186 * scale, 5e-4);
  EXPECT_NEAR(unit(map.cbCr), 0.1146 * scale, 5e-4);
  EXPECT_NEAR(unit(map.crCb), 0.0750 * scale, 5e-4);
  EXPECT_NEAR(unit(map.crCr), 1.0254 * scale, 5e-4);
}

TEST(ColourMatrix, TheWayBackUndoesTheWayInto) {
  for (const ColourMatrix matrix : {ColourMatrix::kBt601, ColourMatrix::kBt709}) {
    const ChromaMap into = MapInto(matrix);
    const VideoMap from = MapFrom(matrix, false);
    EXPECT_EQ(from.lumaGain, ChromaMap::kOne);
    EXPECT_EQ(from.lumaBlack, 16);
    const auto unit = [](int32_t fixed) { return static_cast<double>(fixed) / ChromaMap::kOne; };
    for (const auto& [cb, cr] : {std::pair{100.0, 0.0}, {0.0, 100.0}, {-70.0, 40.0}}) {
      const double filmCb = unit(into.cbCb) * cb + unit(into.cbCr) * cr;
      const double filmCr = unit(into.crCb) * cb + unit(into.crCr) * cr;
      const double filmLuma = unit(into.lumaCb) * cb + unit(into.lumaCr) * cr;
      EXPECT_NEAR(unit(from.chroma.cbCb) * filmCb + unit(from.chroma.cbCr) * filmCr, cb, 0.02);
      EXPECT_NEAR(unit(from.chroma.crCb) * filmCb + unit(from.chroma.crCr) * filmCr, cr, 0.02);
      const double luma =
          filmLuma + unit(from.chroma.lumaCb) * filmCb + unit(from.chroma.lumaCr) * filmCr;
      EXPECT_NEAR(luma, 0.0, 0.02);
    }
  }
}

TEST(ColourMatrix, FullRangeVideoIsCompressed) {
  const VideoMap map = MapFrom(ColourMatrix::kBt601, true);
  EXPECT_EQ(map.lumaBlack, 0);
  EXPECT_NEAR(map.lumaGain, ChromaMap::kOne * 219.0 / 255.0, 1.0);
  EXPECT_NEAR(map.chroma.cbCb, ChromaMap::kOne * 219.0 / 255.0, 1.0);
  EXPECT_EQ(map.chroma.lumaCb, 0);
}

TEST(ColourMatrix, EveryMatrixLeadsToTheSameColour) {
  // The red primary, whose luma is its weight in each matrix.
  const std::pair<ColourMatrix, double> reds[] = {{ColourMatrix::kBt601, 0.299},
                                                  {ColourMatrix::kBt709, 0.2126},
                                                  {ColourMatrix::kBt2020, 0.2627},
                                                  {ColourMatrix::kSmpte240, 0.212}};
  for (const auto& [matrix, weight] : reds) {
    const VideoMap map = MapFrom(matrix, true);
    const double blue = matrix == ColourMatrix::kBt601    ? 0.114
                        : matrix == ColourMatrix::kBt709  ? 0.0722
                        : matrix == ColourMatrix::kBt2020 ? 0.0593
                                                          : 0.087;
    const double cb = 255.0 * -weight / (2.0 * (1.0 - blue)), cr = 127.5;
    const double one = ChromaMap::kOne;
    EXPECT_NEAR(
        (map.lumaGain * 255.0 * weight + map.chroma.lumaCb * cb + map.chroma.lumaCr * cr) / one,
        219.0 * 0.299, 0.05);
    EXPECT_NEAR((map.chroma.crCb * cb + map.chroma.crCr * cr) / one, 109.5, 0.05);
  }
}

}  // namespace
}  // namespace kelto::host
