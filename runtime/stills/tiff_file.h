// A TIFF file opened through libtiff, and what its first directory says.
#pragma once

#include <tiffio.h>

#include <array>
#include <memory>
#include <string>

#include "runtime/stills/decoder.h"
#include "runtime/stills/row_writer.h"

namespace kelto::stills {

/// The library's handle. Its messages are kept instead of printed.
class TiffFile {
 public:
  /// Throws StillError when the first directory cannot be read.
  explicit TiffFile(StillFile& file);
  TiffFile(const TiffFile&) = delete;
  TiffFile& operator=(const TiffFile&) = delete;

  TIFF* get() { return tiff_.get(); }
  /// Bytes of the whole file.
  uint64_t file_size() const { return file_.size(); }
  /// A field of the directory, or its default value.
  template <typename T>
  T Field(uint32_t tag, T otherwise) {
    T value = otherwise;
    return TIFFGetFieldDefaulted(get(), tag, &value) ? value : otherwise;
  }
  /// Throws StillError with the library's first message.
  [[noreturn]] void Fail();
  /// Throws StillError if the library reported damage, even if it went on.
  void CheckDamage() {
    if (!message_.empty()) Fail();
  }

 private:
  struct Closer {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
  };
  [[gnu::format(printf, 4, 0)]] static int OnError(TIFF* tiff, void* user, const char* module,
                                                   const char* format, va_list arguments);
  [[gnu::format(printf, 4, 0)]] static int OnWarning(TIFF* tiff, void* user, const char* module,
                                                     const char* format, va_list arguments);

  StillFile& file_;
  std::string message_;
  std::unique_ptr<TIFF, Closer> tiff_;
};

/// The form in which a TIFF stores its samples.
struct TiffForm {
  /// Reads it; JPEG-compressed luma and chroma are asked for as RGB.
  explicit TiffForm(TiffFile& tiff);

  uint32_t width = 0, height = 0;
  uint16_t bits = 1, samples = 1, photometric = 0, planar = 0;
  /// The samples of a pixel that are drawn: 1, 3 or 4 of colour, then alpha if there is any.
  std::array<uint16_t, 5> used = {};
  int colors = 0, used_count = 0;
  Alpha alpha = Alpha::kOpaque;
  bool floats = false;  ///< whether samples are floating-point numbers of 32 bits
  /// Not empty: only libtiff's own conversion to RGBA reads it, if anything does, and why.
  std::string foreign;

  bool separate() const { return planar == PLANARCONFIG_SEPARATE; }
  ColorModel model() const {
    return colors == 4 ? ColorModel::kCmyk
           : colors == 1 && photometric != PHOTOMETRIC_PALETTE && foreign.empty()
               ? ColorModel::kGrey
               : ColorModel::kRgb;
  }
};

}  // namespace kelto::stills
