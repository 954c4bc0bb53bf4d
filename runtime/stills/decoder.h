// The one interface behind which every picture format stands.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "runtime/stills/color.h"
#include "runtime/stills/still_file.h"

namespace kelto::stills {

/// What a file says about its picture before any pixel is decoded.
struct StillInfo {
  uint32_t width = 0, height = 0;  ///< as stored, before orientation
  int orientation = 1;             ///< 1 to 8, as in EXIF; 5 to 8 exchange width and height
  std::vector<uint8_t> icc;        ///< embedded profile, or empty
  bool icc_lost = false;           ///< whether there is one that cannot be put together
  /// The curve of high dynamic range that its levels follow, which nothing here converts.
  enum class HighRange { kNone, kPq, kHlg } high_range = HighRange::kNone;
  ColorModel model = ColorModel::kRgb;
  int bits = 8;         ///< of a sample; pictures of fewer than 8 count as such of 8
  bool floats = false;  ///< whether samples are floating-point numbers
  bool alpha = false;   ///< whether there may be pixels that let something through
  /// By what Decode divides the sides, rounded up: `width` and `height` are those of the smaller
  /// picture then. A power of two up to `most_reduction`, with which decoding takes less time.
  uint32_t reduction = 1, most_reduction = 1;
  /// Bytes that Decode takes beside the caller's buffer at the most, as far as they grow with the
  /// picture; those of a few rows are not counted. `deep_scratch` is for buffers in words or
  /// floats.
  uint64_t scratch = 0, deep_scratch = 0;

  /// The layout of buffers that keep all bits.
  PixelFormat deep_format() const {
    return floats ? PixelFormat::kRgbaFloat : PixelFormat::kRgba16;
  }
  uint64_t scratch_for(PixelFormat format) const {
    return format == PixelFormat::kBgra8 ? scratch : deep_scratch;
  }

  bool turned() const { return orientation >= 5; }
  uint32_t upright_width() const { return turned() ? height : width; }
  uint32_t upright_height() const { return turned() ? width : height; }
  uint64_t pixels() const { return uint64_t{width} * height; }
};

/// A side of a picture whose sides are divided by `reduction`.
constexpr uint32_t ReducedSide(uint32_t side, uint32_t reduction) {
  return side / reduction + (side % reduction != 0);
}

/// Rows of the caller, as large as the upright picture; row 0 is the top one.
struct PixelBuffer {
  uint8_t* pixels;
  ptrdiff_t row_bytes;  ///< a multiple of a sample's
  /// B, G, R, A of eight bits, drawn over black; or the picture's deep_format(), premultiplied.
  PixelFormat format = PixelFormat::kBgra8;
  bool* transparent = nullptr;  ///< set where a pixel of a deep buffer is; not null for those

  bool deep() const { return format != PixelFormat::kBgra8; }
};

/// A picture format. Decoders hold no state, so that a file that changed between the two calls is
/// met as it is by each. Both throw StillError and std::bad_alloc and nothing else.
class Decoder {
 public:
  virtual ~Decoder() = default;
  /// Whether a file that begins with `head` (kHeadBytes, or the whole file if it is shorter) is of
  /// this format. File names play no part.
  virtual bool Knows(std::span<const uint8_t> head) const = 0;
  virtual StillInfo ReadInfo(StillFile& file) const = 0;
  /// Decodes to sRGB, upright. `info` is ReadInfo's; a file whose size in pixels
  /// has become another is refused.
  virtual void Decode(StillFile& file, const StillInfo& info, const PixelBuffer& target) const = 0;
};

constexpr size_t kHeadBytes = 64;

const Decoder& JpegDecoder();
const Decoder& PngDecoder();
const Decoder& TiffDecoder();
const Decoder& WebpDecoder();
const Decoder& GifDecoder();
const Decoder& BmpDecoder();
const Decoder& HeifDecoder();
const Decoder& TgaDecoder();
/// Every format that Windows decodes, but for those of the decoders that are asked before it there.
const Decoder& WicDecoder();

/// The decoder that knows the file; throws StillError (noCodecErr) when none does.
const Decoder& FindDecoder(StillFile& file);

/// Throws StillError when a picture of this size, or one that takes so much memory to decode into
/// rows of this layout, must not be decoded from this file.
void CheckSize(const StillInfo& info, const StillFile& file,
               PixelFormat format = PixelFormat::kBgra8);
/// Throws StillError for a profile over kMaxIccBytes.
void CheckIccSize(uint64_t bytes);
/// Throws StillError unless a decoder now meets the size that `info` promised.
void CheckUnchanged(const StillInfo& info, uint32_t width, uint32_t height);

}  // namespace kelto::stills
