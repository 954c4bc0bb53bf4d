#include "host/film/planes.h"

#include <algorithm>

namespace kelto::host {
namespace {

/// `value` in units of 1 / 2^shift of an 8-bit level, to the nearest level of the sample.
template <typename Sample>
Sample ToSample(int32_t value, int32_t shift) {
  constexpr int32_t kMoreBits = sizeof(Sample) == 1 ? 0 : 2;
  const int32_t drop = shift - kMoreBits;
  return static_cast<Sample>(
      std::clamp((value + (1 << (drop - 1))) >> drop, 0, (256 << kMoreBits) - 1));
}

template <typename Sample>
Sample* RowOf(Sample* plane, ptrdiff_t rowBytes, int32_t row) {
  return plane + row * (rowBytes / static_cast<ptrdiff_t>(sizeof(Sample)));
}

/// One row's luma; both pixels of a pair take the pair's chroma into account.
template <typename Sample>
void LumaRow(const uint8_t* row, int32_t pairs, const ChromaMap& map, Sample* luma) {
  for (int32_t i = 0; i < pairs; ++i, row += 4, luma += 2) {
    const int32_t shift = map.lumaCb * (row[1] - 128) + map.lumaCr * (row[3] - 128);
    luma[0] = ToSample<Sample>(row[0] * ChromaMap::kOne + shift, ChromaMap::kShift);
    luma[1] = ToSample<Sample>(row[2] * ChromaMap::kOne + shift, ChromaMap::kShift);
  }
}

/// One row of chroma from two rows of the frame, weighed in quarters that add up to 4; samples of a
/// kind are `kStep` apart.
template <int32_t kStep = 1, typename Sample>
void ChromaRow(const uint8_t* upper, const uint8_t* lower, int32_t upperQuarters, int32_t pairs,
               const ChromaMap& map, Sample* cbRow, Sample* crRow) {
  constexpr int32_t kShift = ChromaMap::kShift + 2;
  constexpr int32_t kMiddle = 128 << kShift;
  const int32_t lowerQuarters = 4 - upperQuarters;
  for (int32_t i = 0; i < pairs; ++i) {
    const int32_t cb = upper[4 * i + 1] * upperQuarters + lower[4 * i + 1] * lowerQuarters - 512;
    const int32_t cr = upper[4 * i + 3] * upperQuarters + lower[4 * i + 3] * lowerQuarters - 512;
    cbRow[kStep * i] = ToSample<Sample>(kMiddle + map.cbCb * cb + map.cbCr * cr, kShift);
    crRow[kStep * i] = ToSample<Sample>(kMiddle + map.crCb * cb + map.crCr * cr, kShift);
  }
}

template <typename Sample>
void FillLuma(const FrameView& frame, const ChromaMap& map, const PlanesOf<Sample>& planes) {
  for (int32_t row = 0; row < frame.size.height; ++row) {
    LumaRow(frame.Row(row), frame.size.width / 2, map,
            RowOf(planes.luma, planes.lumaRowBytes, row));
  }
}

template <typename Sample>
void Fill422(const FrameView& frame, const ChromaMap& map, const PlanesOf<Sample>& planes) {
  FillLuma(frame, map, planes);
  for (int32_t row = 0; row < frame.size.height; ++row) {
    ChromaRow(frame.Row(row), frame.Row(row), 4, frame.size.width / 2, map,
              RowOf(planes.cb, planes.cbRowBytes, row), RowOf(planes.cr, planes.crRowBytes, row));
  }
}

/// Chroma of half the height; samples of a kind are `kStep` apart.
template <int32_t kStep>
void FillChroma420(const FrameView& frame, const ChromaMap& map, bool interlaced,
                   const Planes& planes) {
  for (int32_t row = 0; row < frame.size.height / 2; ++row) {
    // Interlaced chroma rows alternate between the fields, as the frame's rows do.
    const int32_t field = row % 2;
    const int32_t upper = interlaced ? 4 * (row / 2) + field : 2 * row;
    const int32_t lower = interlaced ? upper + 2 : upper + 1;
    const int32_t upperQuarters = !interlaced ? 2 : field == 0 ? 3 : 1;
    ChromaRow<kStep>(frame.Row(upper), frame.Row(lower), upperQuarters, frame.size.width / 2, map,
                     planes.cb + row * planes.cbRowBytes, planes.cr + row * planes.crRowBytes);
  }
}

}  // namespace

void FillPlanes422(const FrameView& frame, const ChromaMap& map, const Planes& planes) {
  Fill422(frame, map, planes);
}

void FillPlanes422(const FrameView& frame, const ChromaMap& map, const TenBitPlanes& planes) {
  Fill422(frame, map, planes);
}

void FillPlanes420(const FrameView& frame, const ChromaMap& map, bool interlaced,
                   const Planes& planes) {
  FillLuma(frame, map, planes);
  FillChroma420<1>(frame, map, interlaced, planes);
}

void FillNv12(const FrameView& frame, const ChromaMap& map, bool interlaced,
              const Nv12Planes& planes) {
  const Planes apart{planes.luma,         planes.chroma,         planes.chroma + 1,
                     planes.lumaRowBytes, planes.chromaRowBytes, planes.chromaRowBytes};
  FillLuma(frame, map, apart);
  FillChroma420<2>(frame, map, interlaced, apart);
}

}  // namespace kelto::host
