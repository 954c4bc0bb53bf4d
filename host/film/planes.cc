#include "host/film/planes.h"

#include <algorithm>

namespace kelto::host {
namespace {

/// `value` in units of 1 / 2^shift, to the nearest byte.
uint8_t ToByte(int32_t value, int32_t shift) {
  return static_cast<uint8_t>(std::clamp((value + (1 << (shift - 1))) >> shift, 0, 255));
}

/// One row's luma; both pixels of a pair take the pair's chroma into account.
void LumaRow(const uint8_t* row, int32_t pairs, const ChromaMap& map, uint8_t* luma) {
  for (int32_t i = 0; i < pairs; ++i, row += 4, luma += 2) {
    const int32_t shift = map.lumaCb * (row[1] - 128) + map.lumaCr * (row[3] - 128);
    luma[0] = ToByte(row[0] * ChromaMap::kOne + shift, ChromaMap::kShift);
    luma[1] = ToByte(row[2] * ChromaMap::kOne + shift, ChromaMap::kShift);
  }
}

/// One row of chroma from two rows of the frame, weighed in quarters that add up to 4.
void ChromaRow(const uint8_t* upper, const uint8_t* lower, int32_t upperQuarters, int32_t pairs,
               const ChromaMap& map, uint8_t* cbRow, uint8_t* crRow) {
  constexpr int32_t kShift = ChromaMap::kShift + 2;
  constexpr int32_t kMiddle = 128 << kShift;
  const int32_t lowerQuarters = 4 - upperQuarters;
  for (int32_t i = 0; i < pairs; ++i) {
    const int32_t cb = upper[4 * i + 1] * upperQuarters + lower[4 * i + 1] * lowerQuarters - 512;
    const int32_t cr = upper[4 * i + 3] * upperQuarters + lower[4 * i + 3] * lowerQuarters - 512;
    cbRow[i] = ToByte(kMiddle + map.cbCb * cb + map.cbCr * cr, kShift);
    crRow[i] = ToByte(kMiddle + map.crCb * cb + map.crCr * cr, kShift);
  }
}

void FillLuma(const FrameView& frame, const ChromaMap& map, const Planes& planes) {
  for (int32_t row = 0; row < frame.size.height; ++row) {
    LumaRow(frame.Row(row), frame.size.width / 2, map, planes.luma + row * planes.lumaRowBytes);
  }
}

}  // namespace

void FillPlanes422(const FrameView& frame, const ChromaMap& map, const Planes& planes) {
  FillLuma(frame, map, planes);
  for (int32_t row = 0; row < frame.size.height; ++row) {
    ChromaRow(frame.Row(row), frame.Row(row), 4, frame.size.width / 2, map,
              planes.cb + row * planes.cbRowBytes, planes.cr + row * planes.crRowBytes);
  }
}

void FillPlanes420(const FrameView& frame, const ChromaMap& map, bool interlaced,
                   const Planes& planes) {
  FillLuma(frame, map, planes);
  for (int32_t row = 0; row < frame.size.height / 2; ++row) {
    // Interlaced chroma rows alternate between the fields, as the frame's rows do.
    const int32_t field = row % 2;
    const int32_t upper = interlaced ? 4 * (row / 2) + field : 2 * row;
    const int32_t lower = interlaced ? upper + 2 : upper + 1;
    const int32_t upperQuarters = !interlaced ? 2 : field == 0 ? 3 : 1;
    ChromaRow(frame.Row(upper), frame.Row(lower), upperQuarters, frame.size.width / 2, map,
              planes.cb + row * planes.cbRowBytes, planes.cr + row * planes.crRowBytes);
  }
}

}  // namespace kelto::host
