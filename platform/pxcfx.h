// The subset of the host maker's pixel-conversion library that the effect uses.
//
// Full-range RGB ("BGRA", four bytes a pixel) on one side, the studio-range 4:2:2 working form
// ("Y422": bytes Y Cb Y Cr for two pixels) on the other. Going in, the matrix is that of
// iplRGB2YCrCb applied to RGB compressed to studio range (16 + 219/255 · c); coming out, the exact
// inverse of the colour differences behind it. Both round to nearest and saturate: flat colours
// return within 2 levels, greys carry no tint. Going in, a pair's chroma is the mean of its two
// pixels; coming out it is given to both, and alpha is 255. At an odd width the last pixel stands
// alone: going in its second chroma sample is lost, coming out it takes Cr from the pair before it.
#pragma once

#include <cstddef>
#include <cstdint>

/// Number kind of a pixel component and colour space of an image, as the constructor takes them.
enum pxcComponent : int32_t { pxcComponent8U = 0 };
enum pxcColorSpace : int32_t { pxcColorSpaceRGB = 0, pxcColorSpaceYCbCr = 1 };

/// Describes rows of pixels; owns nothing.
class pxcImage {
 public:
  /// `layout` is a four-character tag, "BGRA" or "Y422". Rows are taken as packed until
  /// SetPixelArray gives another row delta.
  pxcImage(int32_t width, int32_t height, const char* layout, void* pixels, int32_t component,
           int32_t colorSpace);
  void SetRes(int32_t width, int32_t height);
  /// `rowDelta` in bytes, from a row to the row below it; may be padded or negative.
  void SetPixelArray(void* row0, ptrdiff_t rowDelta);

  int32_t width() const { return width_; }
  int32_t height() const { return height_; }
  const char* layout() const { return layout_; }
  uint8_t* row(int32_t r) const { return row0_ + r * rowDelta_; }

 private:
  int32_t width_, height_;
  char layout_[5];
  uint8_t* row0_;
  ptrdiff_t rowDelta_;
};

/// A conversion. Source and destination must not overlap.
class pxcImgProc {
 public:
  virtual ~pxcImgProc();
  /// Converts the rows and columns that both images have. False when a layout is not the one that
  /// the conversion takes; nothing is written then.
  virtual bool Execute(const pxcImage& source, pxcImage& destination) = 0;
};

class pxcRGBA2YCbYCr : public pxcImgProc {
 public:
  bool Execute(const pxcImage& source, pxcImage& destination) override;
};

class pxcYCbYCr2RGBA : public pxcImgProc {
 public:
  bool Execute(const pxcImage& source, pxcImage& destination) override;
};
