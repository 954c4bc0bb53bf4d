// Deep frames in films of eight bits.
#pragma once

#include <memory>
#include <vector>

#include "host/film/formats.h"

namespace kelto::host {

/// A sink of opaque frames in PixelLayout::kRgba16 for a film of a kind that takes eight bits: each
/// sample becomes one of the two levels beside it, by a pattern that stays where it is in the
/// frame, so that gradients show no bands and nothing flickers.
std::unique_ptr<FrameSink> DitherInto(const FilmKind& kind, const FilmRequest& request);

/// Makes frames of kYCbYCr or kBGRA out of those in kRgba16, and holds the last one. What is
/// transparent shows black behind it.
class DitheredFrame {
 public:
  DitheredFrame(FrameSize size, PixelLayout layout);
  /// The view holds until the next call.
  FrameView Of(const FrameView& deep);

 private:
  PixelLayout layout_;
  ptrdiff_t rowBytes_;
  std::vector<uint8_t> bytes_;
};

}  // namespace kelto::host
