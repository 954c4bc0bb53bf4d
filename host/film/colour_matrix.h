// From the effect's luma and chroma to those that players expect.
//
// The effect's 4:2:2 frames hold studio-range RGB turned into luma and colour differences by the
// BT.601 weights, all three scaled alike: luma spans 219 levels from 16, and so do the colour
// differences about 128. Films scale colour differences to 224 levels, and films in high definition
// use the BT.709 weights. Both changes are one linear map, in which luma depends on chroma but
// chroma never on luma, since greys stay grey.
#pragma once

#include <cstdint>

#include "host/base/film_format.h"

namespace kelto::host {

/// The matrices of ITU-R BT.601-7 (section 2.5), BT.709-6 (section 3), BT.2020-2 (table 4,
/// non-constant luminance) and SMPTE ST 240. Films are written in the first two.
enum class ColourMatrix { kBt601, kBt709, kBt2020, kSmpte240 };

/// The matrix in which a film of this size is coded: BT.709 above 576 rows, BT.601 else.
ColourMatrix MatrixFor(FrameSize size);

/// The map, in units of 1 / kOne. With cb and cr less 128: luma' = luma + (lumaCb cb + lumaCr cr),
/// cb' = 128 + (cbCb cb + cbCr cr), cr' = 128 + (crCb cb + crCr cr).
struct ChromaMap {
  static constexpr int32_t kShift = 14;
  static constexpr int32_t kOne = 1 << kShift;
  int32_t lumaCb, lumaCr;
  int32_t cbCb, cbCr;
  int32_t crCb, crCr;
};

/// The map from the effect's frames into `matrix`.
ChromaMap MapInto(ColourMatrix matrix);

/// The way back, from a video's luma and chroma: luma' = 16 + lumaGain (luma - lumaBlack) +
/// (lumaCb cb + lumaCr cr), and chroma as in ChromaMap; lumaBlack is in levels of eight bits.
struct VideoMap {
  ChromaMap chroma;
  int32_t lumaGain;
  int32_t lumaBlack;
};

/// The map from a video coded with `matrix`, in studio range or full range, into the effect's
/// frames.
VideoMap MapFrom(ColourMatrix matrix, bool fullRange);

}  // namespace kelto::host
