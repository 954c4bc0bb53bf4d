// A picture file as the system's imaging component (WIC) decodes it.
#pragma once

#include "runtime/stills/wic/com.h"
#include "runtime/stills/wic/file_stream.h"

#include <wincodec.h>

#include <cstdint>
#include <vector>

namespace kelto::stills {

/// What a file's own pixels are.
struct WicForm {
  int bits = 8;                  ///< of a sample, 8 to 16; those of fewer bits count as such of 8
  uint32_t bits_per_pixel = 32;  ///< as the component unpacks them
  bool indexed = false;          ///< whether they are numbers of colours
  bool transparent = true;       ///< whether the form has an alpha
};

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
  /// The same for reading rows of words, R, G, B, A with straight alpha; colours stay the file's.
  void ConvertToWords();
  /// Rows `y` to `y + rows - 1` of columns 0 to `width - 1` into rows `row_bytes` apart.
  void Read(uint32_t y, uint32_t rows, uint32_t width, uint8_t* to, size_t row_bytes);
  /// Row `y` with all its bits, four words a pixel.
  void ReadWords(uint32_t y, uint16_t* to);

  bool has_grey_words() const { return words_per_pixel_ == 1; }

  WicForm form() const;
  /// What the component unpacks whole, as some of its decoders do.
  uint64_t UnpackedBytes() const;
  /// The embedded colour profile, or nothing.
  std::vector<uint8_t> ProfileBytes() const;

 private:
  void Check(HRESULT result) const;
  [[noreturn]] void Fail(HRESULT result) const;
  Com<IWICColorContext> EmbeddedProfile() const;
  bool Transform(IWICBitmapSource* source, IWICColorContext* profile);
  Com<IWICBitmapSource> Converted(IWICBitmapSource* source, const GUID& format) const;

  ComSession com_;  // goes last
  Com<FileStream> stream_;
  Com<IWICImagingFactory> factory_;
  Com<IWICBitmapFrameDecode> frame_;
  Com<IWICBitmapSource> bgra_, words_;
  uint32_t words_per_pixel_ = 4;  ///< of words_: 1 for grey, 3 for R, G, B, 4 with alpha
  uint32_t width_ = 0, height_ = 0;
  bool has_alpha_ = true;
};

}  // namespace kelto::stills
