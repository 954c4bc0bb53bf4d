#include "host/film/colour_matrix.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace kelto::host
