#include "runtime/stills/tiff_rows.h"

#include <algorithm>
#include <cstring>

#include "runtime/stills/scratch.h"
#include "runtime/stills/still_error.h"

namespace kelto::stills {

namespace {

/// Codecs that decode row by row, or as much as is asked for.
bool IsDecodedByRows(uint16_t compression) {
  switch (compression) {
    case COMPRESSION_NONE:
    case COMPRESSION_CCITTRLE:
    case COMPRESSION_CCITTRLEW:
    case COMPRESSION_CCITTFAX3:
    case COMPRESSION_CCITTFAX4:
    case COMPRESSION_LZW:
    case COMPRESSION_JPEG:
    case COMPRESSION_PACKBITS:
    case COMPRESSION_DEFLATE:
    case COMPRESSION_ADOBE_DEFLATE:
    case COMPRESSION_LZMA:
    case COMPRESSION_ZSTD:
      return true;
    default:
      return false;
  }
}

/// Bytes of the largest piece as it is stored, which the library reads as one.
uint64_t LargestStored(TIFF* tiff) {
  const uint32_t count = TIFFIsTiled(tiff) ? TIFFNumberOfTiles(tiff) : TIFFNumberOfStrips(tiff);
  uint64_t largest = 0;
  for (uint32_t i = 0; i < count; ++i) {
    largest = std::max<uint64_t>(largest, TIFFGetStrileByteCount(tiff, i));
  }
  return largest;
}

}  // namespace

TiffPieces::TiffPieces(TiffFile& tiff, const TiffForm& form) {
  const bool tiled = TIFFIsTiled(tiff.get()) != 0;
  rows = tiled ? tiff.Field<uint32_t>(TIFFTAG_TILELENGTH, 0)
               : std::min(form.height, tiff.Field<uint32_t>(TIFFTAG_ROWSPERSTRIP, UINT32_MAX));
  decoded = tiled ? TIFFTileSize64(tiff.get()) : TIFFStripSize64(tiff.get());
  // Files may say anything; more than there is cannot be read.
  stored = std::min(LargestStored(tiff.get()), tiff.file_size());
  held = !IsDecodedByRows(tiff.Field<uint16_t>(TIFFTAG_COMPRESSION, COMPRESSION_NONE));
  planes = form.separate() ? form.samples : 1;
}

uint64_t TiffRows::Scratch(TiffFile& tiff, const TiffForm& form) {
  const TiffPieces pieces(tiff, form);
  const uint64_t row =
      (uint64_t{form.width} * (form.separate() ? 1 : form.samples) * form.bits + 7) / 8;
  const bool tiled = TIFFIsTiled(tiff.get()) != 0;
  const uint64_t band = tiled || form.separate() ? pieces.rows : 1;
  const uint64_t planes = form.separate() ? static_cast<uint64_t>(form.used_count) : 1;
  return pieces.Scratch() + (tiled ? pieces.decoded : 0) + row * band * planes;
}

TiffRows::TiffRows(TiffFile& tiff, const TiffForm& form)
    : tiff_(tiff),
      form_(form),
      tiled_(TIFFIsTiled(tiff.get())),
      planes_(form.separate() ? form.used_count : 1) {
  const uint64_t samples_of_row = uint64_t{form.width} * (form.separate() ? 1 : form.samples);
  const uint64_t needed = (samples_of_row * form.bits + 7) / 8;
  if (tiled_) {
    band_rows_ = tiff.Field<uint32_t>(TIFFTAG_TILELENGTH, 0);
    const uint64_t tile_width = tiff.Field<uint32_t>(TIFFTAG_TILEWIDTH, 0);
    if (band_rows_ == 0 || tile_width == 0 || tile_width * form.bits % 8 != 0) {
      throw StillError(codecBadDataErr, "damaged TIFF (its tiles have no size)");
    }
    row_bytes_ = needed;
    tile_ = AllocateScratch(static_cast<uint64_t>(TIFFTileSize64(tiff.get())));
  } else {
    if (form.separate()) {
      band_rows_ = std::min(form.height, tiff.Field<uint32_t>(TIFFTAG_ROWSPERSTRIP, UINT32_MAX));
    }
    row_bytes_ = TIFFScanlineSize64(tiff.get());
    if (band_rows_ == 0 || row_bytes_ < needed) tiff.Fail();
  }
  CheckScratch(row_bytes_);
  CheckScratch(row_bytes_ * band_rows_);
  bands_ = AllocateScratch(row_bytes_ * band_rows_ * static_cast<uint64_t>(planes_));
}

TiffRow TiffRows::Next() {
  if (y_ % band_rows_ == 0) {
    if (tiled_) {
      LoadTiles();
    } else {
      LoadStrips();
    }
    tiff_.CheckDamage();
  }
  TiffRow row = {{}, form_.separate() ? 1u : form_.samples};
  const size_t sample_bytes = std::max(1, form_.bits / 8);
  for (int i = 0; i < form_.used_count; ++i) {
    const uint8_t* band = Band(form_.separate() ? i : 0) + y_ % band_rows_ * row_bytes_;
    row.first[i] = form_.separate() ? band : band + form_.used[i] * sample_bytes;
  }
  ++y_;
  return row;
}

void TiffRows::LoadStrips() {
  if (!form_.separate()) {
    if (TIFFReadScanline(tiff_.get(), Band(0), y_, 0) < 0) tiff_.Fail();
    return;
  }
  const uint32_t rows = std::min(band_rows_, form_.height - y_);
  const tmsize_t size = static_cast<tmsize_t>(row_bytes_ * rows);
  for (int i = 0; i < planes_; ++i) {
    const uint32_t strip = TIFFComputeStrip(tiff_.get(), y_, form_.used[i]);
    if (TIFFReadEncodedStrip(tiff_.get(), strip, Band(i), size) != size) tiff_.Fail();
  }
}

void TiffRows::LoadTiles() {
  const tmsize_t tile_size = TIFFTileSize(tiff_.get());
  const size_t tile_row = static_cast<size_t>(TIFFTileRowSize(tiff_.get()));
  const uint32_t tile_width = tiff_.Field<uint32_t>(TIFFTAG_TILEWIDTH, 0);
  for (int i = 0; i < planes_; ++i) {
    size_t at = 0;
    for (uint32_t x = 0; x < form_.width; x += tile_width, at += tile_row) {
      const uint32_t tile = TIFFComputeTile(tiff_.get(), x, y_, 0, form_.used[i]);
      if (TIFFReadEncodedTile(tiff_.get(), tile, tile_.get(), tile_size) != tile_size) tiff_.Fail();
      const size_t count = std::min(tile_row, row_bytes_ - at);
      for (uint32_t y = 0; y < band_rows_; ++y) {
        std::memcpy(Band(i) + y * row_bytes_ + at, &tile_[y * tile_row], count);
      }
    }
  }
}

}  // namespace kelto::stills
