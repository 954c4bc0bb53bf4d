// TIFF through libtiff: its first directory.
#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "runtime/stills/decoder.h"
#include "runtime/stills/exif.h"
#include "runtime/stills/scratch.h"
#include "runtime/stills/still_error.h"
#include "runtime/stills/tiff_file.h"
#include "runtime/stills/tiff_rows.h"
#include "runtime/stills/tiff_unpack.h"

namespace kelto::stills {
namespace {

void DecodeSamples(TiffFile& tiff, const TiffForm& form, const StillInfo& info,
                   const PixelBuffer& target) {
  // Profiles of 16-bit pictures are often linear: eight bits would lose their shadows.
  TiffUnpacker unpacker(tiff, form,
                        target.deep()       ? TiffDepth::kAll
                        : !info.icc.empty() ? TiffDepth::kWords
                                            : TiffDepth::kBytes);
  TiffRows rows(tiff, form);
  RowWriter writer(info, form.model(), unpacker.format(), form.alpha, target);
  for (uint32_t y = 0; y < info.height; ++y) {
    unpacker.Unpack(rows.Next(), writer.Row(y));
    writer.Commit(y);
  }
}

/// libtiff's own conversion, for the rarer forms: luma and chroma, Lab, odd depths.
class RgbaImage {
 public:
  RgbaImage(TiffFile& tiff, const TiffForm& form) : tiff_(tiff) {
    char message[1024] = "";
    if (!TIFFRGBAImageOK(tiff.get(), message) ||
        !TIFFRGBAImageBegin(&image_, tiff.get(), 1, message)) {
      throw StillError(noCodecErr, "unsupported TIFF (" + form.foreign +
                                       (message[0] != 0 ? std::string(": ") + message : "") + ")");
    }
    begun_ = true;
    // Rows as they are stored, the first one first: without this they come bottom-up.
    image_.orientation = image_.req_orientation = ORIENTATION_TOPLEFT;
  }
  ~RgbaImage() {
    if (begun_) TIFFRGBAImageEnd(&image_);
  }
  RgbaImage(const RgbaImage&) = delete;
  RgbaImage& operator=(const RgbaImage&) = delete;

  /// Colours come multiplied by alpha, whichever kind the file has.
  Alpha alpha() const { return image_.alpha != 0 ? Alpha::kPremultiplied : Alpha::kOpaque; }

  void Read(uint32_t first, uint32_t rows, uint32_t width, uint32_t* raster) {
    image_.row_offset = static_cast<int>(first);
    image_.col_offset = 0;
    if (!TIFFRGBAImageGet(&image_, raster, width, rows)) tiff_.Fail();
    tiff_.CheckDamage();
  }

 private:
  TiffFile& tiff_;
  TIFFRGBAImage image_ = {};
  bool begun_ = false;
};

/// Rows that are converted at a time: those of whole strips or rows of tiles, as anything else
/// would decode them over and over.
uint32_t RowsOfPiece(const TiffPieces& pieces, uint32_t height) {
  return std::clamp<uint32_t>(pieces.rows, 1, height);
}

/// Bytes that DecodeForeign takes: what it converts into, and a piece of each plane of the
/// library's.
uint64_t ForeignScratch(TiffFile& tiff, const TiffForm& form) {
  const TiffPieces pieces(tiff, form);
  const uint64_t rows = RowsOfPiece(pieces, std::max(form.height, 1u));
  return uint64_t{form.width} * rows * sizeof(uint32_t) + pieces.decoded * pieces.planes +
         pieces.Scratch();
}

void DecodeForeign(TiffFile& tiff, const TiffForm& form, const StillInfo& info,
                   const PixelBuffer& target) {
  const uint32_t piece = RowsOfPiece(TiffPieces(tiff, form), info.height);
  RgbaImage image(tiff, form);
  std::vector<uint32_t> raster(size_t{info.width} * piece);
  RowWriter writer(info, ColorModel::kRgb, PixelFormat::kBgra8, image.alpha(), target);
  for (uint32_t first = 0; first < info.height; first += piece) {
    const uint32_t rows = std::min(piece, info.height - first);
    image.Read(first, rows, info.width, raster.data());
    const uint32_t* from = raster.data();
    for (uint32_t y = first; y < first + rows; ++y) {
      uint8_t* to = writer.Row(y);
      for (uint32_t x = 0; x < info.width; ++x, ++from, to += 4) {
        to[0] = static_cast<uint8_t>(TIFFGetB(*from));
        to[1] = static_cast<uint8_t>(TIFFGetG(*from));
        to[2] = static_cast<uint8_t>(TIFFGetR(*from));
        to[3] = static_cast<uint8_t>(TIFFGetA(*from));
      }
      writer.Commit(y);
    }
  }
}

class Tiff final : public Decoder {
 public:
  bool Knows(std::span<const uint8_t> head) const override {
    if (head.size() < 4) return false;
    // 42, or 43 for files with 64-bit offsets.
    for (const char* mark : {"II*\0", "MM\0*", "II+\0", "MM\0+"}) {
      if (std::memcmp(head.data(), mark, 4) == 0) return true;
    }
    return false;
  }

  StillInfo ReadInfo(StillFile& file) const override {
    TiffFile tiff(file);
    const TiffForm form(tiff);
    StillInfo info;
    info.width = form.width;
    info.height = form.height;
    info.model = form.model();
    info.orientation =
        ValidOrientation(tiff.Field<uint16_t>(TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT));
    uint32_t length = 0;
    const void* icc = nullptr;
    if (TIFFGetField(tiff.get(), TIFFTAG_ICCPROFILE, &length, &icc) && icc != nullptr) {
      CheckIccSize(length);
      const uint8_t* bytes = static_cast<const uint8_t*>(icc);
      info.icc.assign(bytes, bytes + length);
    }
    if (form.foreign.empty()) {
      info.bits = std::max<int>(info.bits, form.bits);
      info.floats = form.floats;
      info.alpha = form.used_count > form.colors;
    } else {
      info.alpha = form.samples > form.colors;
    }
    info.scratch = info.deep_scratch = Scratch(tiff, form);
    return info;
  }

  void Decode(StillFile& file, const StillInfo& info, const PixelBuffer& target) const override {
    TiffFile tiff(file);
    const TiffForm form(tiff);
    CheckUnchanged(info, form.width, form.height);
    CheckScratch(Scratch(tiff, form));
    if ((form.foreign.empty() && form.floats) != info.floats) {
      throw StillError(codecBadDataErr, "the file changed after it was opened");
    }
    if (form.foreign.empty()) {
      DecodeSamples(tiff, form, info, target);
    } else {
      DecodeForeign(tiff, form, info, target);
    }
  }

 private:
  static uint64_t Scratch(TiffFile& tiff, const TiffForm& form) {
    return form.foreign.empty() ? TiffRows::Scratch(tiff, form) : ForeignScratch(tiff, form);
  }
};

}  // namespace

const Decoder& TiffDecoder() {
  static const Tiff decoder;
  return decoder;
}

}  // namespace kelto::stills
