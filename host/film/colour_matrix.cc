#include "host/film/colour_matrix.h"

#include <cmath>

namespace kelto::host {
namespace {

/// Luma weights of red and blue.
struct Weights {
  double red, blue;
};

constexpr Weights kWeights601{0.299, 0.114};
constexpr Weights kWeights709{0.2126, 0.0722};
constexpr Weights kWeights2020{0.2627, 0.0593};
constexpr Weights kWeights240{0.212, 0.087};
/// Levels that a colour difference of -0.5..0.5 spans, in the effect's frames and in films.
constexpr double kEffectChroma = 219.0;
constexpr double kFilmChroma = 224.0;
constexpr double kLuma = 219.0;
/// Levels of luma and of colour differences in full range.
constexpr double kFullRange = 255.0;

/// Luma and colour differences, luma 0..1.
struct Coded {
  double luma, cb, cr;
};

/// `coded` by `from`'s weights, coded anew by `to`'s.
Coded Recode(Coded coded, Weights from, Weights to) {
  const double red = coded.luma + 2.0 * (1.0 - from.red) * coded.cr;
  const double blue = coded.luma + 2.0 * (1.0 - from.blue) * coded.cb;
  const double green =
      (coded.luma - from.red * red - from.blue * blue) / (1.0 - from.red - from.blue);
  const double luma = to.red * red + (1.0 - to.red - to.blue) * green + to.blue * blue;
  return {luma, (blue - luma) / (2.0 * (1.0 - to.blue)), (red - luma) / (2.0 * (1.0 - to.red))};
}

Weights WeightsOf(ColourMatrix matrix) {
  switch (matrix) {
    case ColourMatrix::kBt709:
      return kWeights709;
    case ColourMatrix::kBt2020:
      return kWeights2020;
    case ColourMatrix::kSmpte240:
      return kWeights240;
    case ColourMatrix::kBt601:
      break;
  }
  return kWeights601;
}

int32_t Fixed(double value) { return static_cast<int32_t>(std::lround(value * ChromaMap::kOne)); }

/// The map between two codings, from the span of colour differences in the one to that in the
/// other: its columns are what one level of each colour difference becomes.
ChromaMap MapBetween(Weights from, double fromChroma, Weights to, double toChroma) {
  const Coded cb = Recode({0.0, 1.0 / fromChroma, 0.0}, from, to);
  const Coded cr = Recode({0.0, 0.0, 1.0 / fromChroma}, from, to);
  return {Fixed(cb.luma * kLuma),  Fixed(cr.luma * kLuma),  Fixed(cb.cb * toChroma),
          Fixed(cr.cb * toChroma), Fixed(cb.cr * toChroma), Fixed(cr.cr * toChroma)};
}

}  // namespace

ColourMatrix MatrixFor(FrameSize size) {
  return size.height > 576 ? ColourMatrix::kBt709 : ColourMatrix::kBt601;
}

ChromaMap MapInto(ColourMatrix matrix) {
  return MapBetween(kWeights601, kEffectChroma, WeightsOf(matrix), kFilmChroma);
}

VideoMap MapFrom(ColourMatrix matrix, bool fullRange) {
  const double chroma = fullRange ? kFullRange : kFilmChroma;
  return {MapBetween(WeightsOf(matrix), chroma, kWeights601, kEffectChroma),
          Fixed(fullRange ? kLuma / kFullRange : 1.0), fullRange ? 0 : 16};
}

}  // namespace kelto::host
