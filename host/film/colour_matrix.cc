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
/// Levels that a colour difference of -0.5..0.5 spans, in the effect's frames and in films.
constexpr double kEffectChroma = 219.0;
constexpr double kFilmChroma = 224.0;
constexpr double kLuma = 219.0;

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

int32_t Fixed(double value) { return static_cast<int32_t>(std::lround(value * ChromaMap::kOne)); }

}  // namespace

ColourMatrix MatrixFor(FrameSize size) {
  return size.height > 576 ? ColourMatrix::kBt709 : ColourMatrix::kBt601;
}

ChromaMap MapInto(ColourMatrix matrix) {
  const Weights to = matrix == ColourMatrix::kBt709 ? kWeights709 : kWeights601;
  // The map's columns: what one level of each colour difference becomes.
  const Coded cb = Recode({0.0, 1.0 / kEffectChroma, 0.0}, kWeights601, to);
  const Coded cr = Recode({0.0, 0.0, 1.0 / kEffectChroma}, kWeights601, to);
  return {Fixed(cb.luma * kLuma),     Fixed(cr.luma * kLuma),     Fixed(cb.cb * kFilmChroma),
          Fixed(cr.cb * kFilmChroma), Fixed(cb.cr * kFilmChroma), Fixed(cr.cr * kFilmChroma)};
}

}  // namespace kelto::host
