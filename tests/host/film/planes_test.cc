#include "host/film/planes.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "tests/host/support/effect_frames.h"
#include "tests/host/support/film_reader.h"

namespace kelto::host {
namespace {

using test::EffectFrame;
using test::Rgb;

/// Planes with their memory, chroma of `chromaHeight` rows.
struct Film {
  Film(FrameSize size, int32_t chromaHeight)
      : luma(size_t(size.width) * size.height),
        cb(size_t(size.width / 2) * chromaHeight),
        cr(cb.size()),
        planes{luma.data(), cb.data(), cr.data(), size.width, size.width / 2, size.width / 2} {}
  std::vector<uint8_t> luma, cb, cr;
  Planes planes;
};

constexpr FrameSize kSize{4, 8};

TEST(Planes, ColoursReadByTheFilmsMatrixAreTheEffects) {
  std::mt19937 random(1);
  for (const ColourMatrix matrix : {ColourMatrix::kBt601, ColourMatrix::kBt709}) {
    const AVColorSpace tag = matrix == ColourMatrix::kBt709 ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    for (int i = 0; i < 2000; ++i) {
      const uint32_t bits = random();
      const Rgb colour{uint8_t(bits), uint8_t(bits >> 8), uint8_t(bits >> 16)};
      const EffectFrame frame = test::MakeYCbYCr(kSize, [&](int, int) { return colour; });
      Film film(kSize, kSize.height);
      FillPlanes422(frame.View(), MapInto(matrix), film.planes);
      const Rgb seen = test::ColourOf(film.luma[0], film.cb[0], film.cr[0], tag);
      // Bytes are rounded twice, and a level of Cb is almost two of blue.
      ASSERT_LE(test::Distance(seen, colour), 3)
          << test::ToString(colour) << " became " << test::ToString(seen);
    }
  }
}

TEST(Planes, GreysKeepTheirLumaAndHaveNoTint) {
  for (const ColourMatrix matrix : {ColourMatrix::kBt601, ColourMatrix::kBt709}) {
    for (int luma = 0; luma < 256; ++luma) {
      EffectFrame frame{kSize, {}};
      for (int i = 0; i < kSize.width * kSize.height; ++i) {
        frame.bytes.insert(frame.bytes.end(), {uint8_t(luma), 128});
      }
      Film film(kSize, kSize.height / 2);
      FillPlanes420(frame.View(), MapInto(matrix), false, film.planes);
      EXPECT_EQ(film.luma, std::vector<uint8_t>(film.luma.size(), uint8_t(luma)));
      EXPECT_EQ(film.cb, std::vector<uint8_t>(film.cb.size(), 128));
      EXPECT_EQ(film.cr, std::vector<uint8_t>(film.cr.size(), 128));
    }
  }
}

TEST(Planes, ValuesPastTheRangeOfAByteStopAtItsEnds) {
  const EffectFrame frame{{2, 2}, {255, 0, 255, 255, 0, 255, 0, 0}};
  Film film({2, 2}, 2);
  FillPlanes422(frame.View(), MapInto(ColourMatrix::kBt601), film.planes);
  EXPECT_EQ(film.cb, (std::vector<uint8_t>{0, 255}));
  EXPECT_EQ(film.cr, (std::vector<uint8_t>{255, 0}));
}

TEST(Planes, OfTenBitsAreTheSameLevelsWithinHalfALevel) {
  std::mt19937 random(2);
  for (int i = 0; i < 500; ++i) {
    EffectFrame frame{{4, 2}, std::vector<uint8_t>(16)};
    for (uint8_t& byte : frame.bytes) byte = static_cast<uint8_t>(16 + random() % 220);
    Film film({4, 2}, 2);
    std::vector<uint16_t> luma(8), cb(4), cr(4);
    const ChromaMap map = MapInto(ColourMatrix::kBt709);
    FillPlanes422(frame.View(), map, film.planes);
    FillPlanes422(frame.View(), map, TenBitPlanes{luma.data(), cb.data(), cr.data(), 8, 4, 4});
    const auto expectSame = [](const auto& eight, const auto& ten) {
      for (size_t at = 0; at < eight.size(); ++at) {
        if (eight[at] == 0 || eight[at] == 255) continue;
        EXPECT_NEAR(ten[at] / 4.0, eight[at], 0.5);
      }
    };
    expectSame(film.luma, luma);
    expectSame(film.cb, cb);
    expectSame(film.cr, cr);
  }
}

/// A frame of grey luma whose Cb is `cb(row)`.
template <typename RowFunction>
EffectFrame WithCb(RowFunction cb) {
  EffectFrame frame{kSize, {}};
  for (int row = 0; row < kSize.height; ++row) {
    for (int pair = 0; pair < kSize.width / 2; ++pair) {
      frame.bytes.insert(frame.bytes.end(), {100, uint8_t(cb(row)), 100, 128});
    }
  }
  return frame;
}

/// First column of the Cb plane, less 128 and in the effect's scale.
std::vector<int> CbColumn(const EffectFrame& frame, bool interlaced) {
  Film film(kSize, kSize.height / 2);
  FillPlanes420(frame.View(), MapInto(ColourMatrix::kBt601), interlaced, film.planes);
  std::vector<int> column;
  for (int row = 0; row < kSize.height / 2; ++row) {
    const double level = (film.cb[size_t(row) * kSize.width / 2] - 128) * 219.0 / 224.0;
    column.push_back(static_cast<int>(std::lround(level)));
  }
  return column;
}

TEST(Planes, ProgressiveChromaLiesMidwayBetweenTwoRows) {
  const EffectFrame ramp = WithCb([](int row) { return 128 + 8 * row; });
  EXPECT_EQ(CbColumn(ramp, false), (std::vector<int>{4, 20, 36, 52}));
}

TEST(Planes, InterlacedChromaNeverMixesFields) {
  const EffectFrame fields = WithCb([](int row) { return row % 2 == 0 ? 168 : 88; });
  EXPECT_EQ(CbColumn(fields, true), (std::vector<int>{40, -40, 40, -40}));
}

TEST(Planes, InterlacedChromaLiesAQuarterDownInTheTopFieldAndThreeQuartersInTheBottomOne) {
  // On a ramp of 8 a row: field rows are 16 apart.
  const EffectFrame ramp = WithCb([](int row) { return 128 + 8 * row; });
  EXPECT_EQ(CbColumn(ramp, true), (std::vector<int>{4, 20, 36, 52}));
}

TEST(Planes, RowsMayBePadded) {
  const EffectFrame tight = WithCb([](int row) { return 128 + 8 * row; });
  const size_t rowBytes = tight.bytes.size() / kSize.height;
  std::vector<uint8_t> padded;
  for (int row = 0; row < kSize.height; ++row) {
    const auto start = tight.bytes.begin() + static_cast<ptrdiff_t>(row * rowBytes);
    padded.insert(padded.end(), start, start + static_cast<ptrdiff_t>(rowBytes));
    padded.insert(padded.end(), 5, 77);
  }
  Film a(kSize, 4), b(kSize, 4);
  const ChromaMap map = MapInto(ColourMatrix::kBt709);
  FillPlanes420(tight.View(), map, false, a.planes);
  FillPlanes420({padded.data(), static_cast<ptrdiff_t>(rowBytes + 5), kSize}, map, false, b.planes);
  EXPECT_EQ(a.luma, b.luma);
  EXPECT_EQ(a.cb, b.cb);
  EXPECT_EQ(a.cr, b.cr);
}

}  // namespace
}  // namespace kelto::host
