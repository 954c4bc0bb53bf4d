// The effect's 4:2:2 frames as the planes of a film.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/base/film_format.h"
#include "host/film/colour_matrix.h"

namespace kelto::host {

/// Planes to be filled; each row starts `rowBytes` behind the one above it.
template <typename Sample>
struct PlanesOf {
  Sample* luma;
  Sample* cb;
  Sample* cr;
  ptrdiff_t lumaRowBytes, cbRowBytes, crRowBytes;
};
using Planes = PlanesOf<uint8_t>;
/// Samples of ten bits in the low end of sixteen; levels are four times those of eight bits.
using TenBitPlanes = PlanesOf<uint16_t>;

/// Full-height chroma planes. The frame is in PixelLayout::kYCbYCr and of even width.
void FillPlanes422(const FrameView& frame, const ChromaMap& map, const Planes& planes);
void FillPlanes422(const FrameView& frame, const ChromaMap& map, const TenBitPlanes& planes);

/// Half-height chroma planes. Chroma rows lie midway between two rows; when `interlaced`, they are
/// made within each field and lie a quarter of a field row below its first row in the top field,
/// three quarters in the bottom field (ITU-T H.264, 6.2). The frame's height is even, and a
/// multiple of 4 when interlaced.
void FillPlanes420(const FrameView& frame, const ChromaMap& map, bool interlaced,
                   const Planes& planes);

/// Luma, and half-height chroma, Cb and Cr in turns; each row starts `rowBytes` behind the one
/// above it.
struct Nv12Planes {
  uint8_t* luma;
  uint8_t* chroma;
  ptrdiff_t lumaRowBytes, chromaRowBytes;
};

/// The samples of FillPlanes420.
void FillNv12(const FrameView& frame, const ChromaMap& map, bool interlaced,
              const Nv12Planes& planes);

}  // namespace kelto::host
