// Colours of a picture to sRGB.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace kelto::stills {

class LcmsContext;

/// Layouts in which decoders hand over their rows; those of R, G, B and A are also the layouts that
/// callers may ask for.
enum class PixelFormat {
  kBgra8,      ///< 4 bytes: B, G, R, A
  kRgba16,     ///< 4 words of the machine's byte order: R, G, B, A
  kRgbaFloat,  ///< 4 floats: R, G, B, A, of which 1 is full scale
  kCmyka8,     ///< 5 bytes: C, M, Y, K (255 is full ink), A
  kCmyka16,    ///< the same in words
};

/// What the file's own samples are, whatever layout they are handed over in: grey pictures have
/// equal B, G and R, but need a grey profile.
enum class ColorModel { kGrey, kRgb, kCmyk };

size_t BytesPerPixel(PixelFormat format);

/// Converts rows of one layout to B, G, R, A of eight bits in sRGB; alpha is carried over.
class ColorConverter {
 public:
  /// Without a profile (or with one that is damaged or made for another colour model) samples count
  /// as sRGB, and ink as CMY darkened by K. Throws std::bad_alloc.
  ColorConverter(std::span<const uint8_t> icc, ColorModel model, PixelFormat format);
  ColorConverter(const ColorConverter&) = delete;
  ColorConverter& operator=(const ColorConverter&) = delete;

  /// Whether colours change; not so without a profile and with one that is sRGB in effect.
  bool has_profile() const { return transform_ != nullptr || !grey_.empty(); }
  /// Whether there is a profile that is not used since it is damaged or of another colour model.
  bool ignores_profile() const { return ignores_profile_; }
  /// `from` and `to` may be the same row in kBgra8.
  void Convert(const void* from, uint8_t* to, uint32_t pixels) const;

 private:
  /// False when the profile makes no transform.
  bool BuildGreyTable(void* profile, void* srgb);

  PixelFormat format_;
  bool ignores_profile_ = false;
  std::shared_ptr<LcmsContext> context_;
  std::shared_ptr<void> transform_;  ///< of Little CMS; goes before its context
  std::vector<uint8_t> grey_;        ///< B, G, R, A of every grey, 256 or 65536 of them
};

/// Chromaticities (CIE x, y).
struct Chromaticity {
  double x, y;
};

/// A profile for pictures that state their primaries instead of embedding one. `gamma` is the
/// exponent of decoding; 0 stands for the sRGB curve. Empty when the values make no sense. Throws
/// std::bad_alloc.
std::vector<uint8_t> MakeRgbProfile(const Chromaticity& white, const Chromaticity& red,
                                    const Chromaticity& green, const Chromaticity& blue,
                                    double gamma);

/// Sixteen bits to eight, to the nearest.
inline uint8_t To8(uint16_t v) { return static_cast<uint8_t>((v * 255u + 32895u) >> 16); }
inline uint8_t To8(uint8_t v) { return v; }
/// a * b / 255 of bytes, to the nearest.
inline uint8_t MultiplyBytes(unsigned a, unsigned b) {
  const unsigned t = a * b + 128;
  return static_cast<uint8_t>((t + (t >> 8)) >> 8);
}

}  // namespace kelto::stills
