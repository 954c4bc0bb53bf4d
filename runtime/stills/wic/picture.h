// A picture file as the system's imaging component (WIC) decodes it.
#pragma once

#include "runtime/stills/wic/com.h"
#include "runtime/stills/wic/file_stream.h"

#include <wincodec.h>

namespace kelto::stills {

/// The first frame of a file. Operations throw StillError and std::bad_alloc.
class WicPicture {
 public:
  /// Opens as far as the size. `file` must outlive the picture.
  explicit WicPicture(StillFile& file);

  /// Pixels, as stored.
  uint32_t width() const { return width_; }
  uint32_t height() const { return height_; }

  /// Prepares reading: conversion to sRGB, as far as the component converts the file's profile, and
  /// to B, G, R, A with straight alpha.
  void Convert();
  /// Whether alpha of the converted rows means anything.
  bool has_alpha() const { return has_alpha_; }
  /// Rows `y` to `y + rows - 1` of columns 0 to `width - 1` into rows `row_bytes` apart.
  void Read(uint32_t y, uint32_t rows, uint32_t width, uint8_t* to, size_t row_bytes);

 private:
  void Check(HRESULT result) const;
  [[noreturn]] void Fail(HRESULT result) const;
  bool MayHaveAlpha(const WICPixelFormatGUID& format, uint32_t* bits_per_pixel) const;
  Com<IWICColorContext> EmbeddedProfile() const;
  bool Transform(IWICBitmapSource* source, IWICColorContext* profile);
  Com<IWICBitmapSource> ToBgra(IWICBitmapSource* source) const;

  ComSession com_;  // goes last
  Com<FileStream> stream_;
  Com<IWICImagingFactory> factory_;
  Com<IWICBitmapFrameDecode> frame_;
  Com<IWICBitmapSource> bgra_;
  uint32_t width_ = 0, height_ = 0;
  bool has_alpha_ = true;
};

}  // namespace kelto::stills
