#include "host/video/orientation.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace kelto::host {
namespace {

constexpr int32_t kOne = 1 << 16;

std::array<int32_t, 9> Matrix(int32_t a, int32_t b, int32_t c, int32_t d) {
  return {a * kOne, b * kOne, 0, c * kOne, d * kOne, 0, 0, 0, 1 << 30};
}

/// What becomes of the two rows 1 2 3 and 4 5 6.
std::vector<uint16_t> Shown(const std::array<int32_t, 9>& matrix) {
  const std::vector<uint16_t> picture{1, 2, 3, 4, 5, 6};
  const Orientation turn = OrientationOf(matrix.data());
  const int32_t width = turn.transposed ? 2 : 3, height = turn.transposed ? 3 : 2;
  std::vector<uint16_t> shown(6);
  TurnPlane<uint16_t>(turn, reinterpret_cast<const uint8_t*>(picture.data()), 6,
                      reinterpret_cast<uint8_t*>(shown.data()), 2 * width, width, height);
  return shown;
}

TEST(Orientation, EveryMatrixShowsThePictureAsItSays) {
  using Samples = std::vector<uint16_t>;
  EXPECT_EQ(Shown(Matrix(1, 0, 0, 1)), (Samples{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(Shown(Matrix(-1, 0, 0, -1)), (Samples{6, 5, 4, 3, 2, 1})) << "half a turn";
  EXPECT_EQ(Shown(Matrix(-1, 0, 0, 1)), (Samples{3, 2, 1, 6, 5, 4})) << "mirrored";
  EXPECT_EQ(Shown(Matrix(1, 0, 0, -1)), (Samples{4, 5, 6, 1, 2, 3})) << "upside down";
  EXPECT_EQ(Shown(Matrix(0, 1, -1, 0)), (Samples{4, 1, 5, 2, 6, 3})) << "a quarter clockwise";
  EXPECT_EQ(Shown(Matrix(0, -1, 1, 0)), (Samples{3, 6, 2, 5, 1, 4})) << "a quarter the other way";
  EXPECT_EQ(Shown(Matrix(0, 1, 1, 0)), (Samples{1, 4, 2, 5, 3, 6})) << "transposed";
  EXPECT_EQ(Shown(Matrix(0, -1, -1, 0)), (Samples{6, 3, 5, 2, 4, 1})) << "the other diagonal";
}

TEST(Orientation, OnlyTheUprightOneNeedsNoTurning) {
  EXPECT_TRUE(OrientationOf(Matrix(1, 0, 0, 1).data()).Upright());
  EXPECT_FALSE(OrientationOf(Matrix(-1, 0, 0, -1).data()).Upright());
  EXPECT_FALSE(OrientationOf(Matrix(0, 1, 1, 0).data()).Upright());
}

}  // namespace
}  // namespace kelto::host
