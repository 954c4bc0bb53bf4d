#include "tests/runtime/stills/encode_tiff.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace kelto::stills {
namespace {

/// Packs the samples of a rectangle, row by row; outside the picture they are 0.
Bytes Pack(const TiffSpec& spec, int left, int top, int width, int height, int plane) {
  Bytes packed;
  for (int y = top; y < top + height; ++y) {
    unsigned pending = 0;
    int pending_bits = 0;
    for (int x = left; x < left + width; ++x) {
      const int first = plane < 0 ? 0 : plane, last = plane < 0 ? spec.samples - 1 : plane;
      for (int s = first; s <= last; ++s) {
        const unsigned value = x < spec.width && y < spec.height ? spec.sample(x, y, s) : 0;
        if (spec.bits == 16) {
          const uint16_t word = static_cast<uint16_t>(value);
          const uint8_t* bytes = reinterpret_cast<const uint8_t*>(&word);
          packed.insert(packed.end(), bytes, bytes + 2);
          continue;
        }
        if (spec.bits == 32) {
          const uint8_t* bytes = reinterpret_cast<const uint8_t*>(&value);
          packed.insert(packed.end(), bytes, bytes + 4);
          continue;
        }
        pending = pending << spec.bits | value;
        pending_bits += spec.bits;
        if (pending_bits == 8) {
          packed.push_back(static_cast<uint8_t>(pending));
          pending_bits = 0;
          pending = 0;
        }
      }
    }
    if (pending_bits > 0) packed.push_back(static_cast<uint8_t>(pending << (8 - pending_bits)));
  }
  return packed;
}

void WriteTiles(TIFF* tiff, const TiffSpec& spec) {
  for (int plane = spec.separate ? 0 : -1; plane < (spec.separate ? spec.samples : 0); ++plane) {
    for (int y = 0; y < spec.height; y += spec.tile) {
      for (int x = 0; x < spec.width; x += spec.tile) {
        Bytes tile = Pack(spec, x, y, spec.tile, spec.tile, plane);
        const uint16_t sample = static_cast<uint16_t>(plane < 0 ? 0 : plane);
        TIFFWriteTile(tiff, tile.data(), static_cast<uint32_t>(x), static_cast<uint32_t>(y), 0,
                      sample);
      }
    }
  }
}

void WriteRows(TIFF* tiff, const TiffSpec& spec) {
  for (int plane = spec.separate ? 0 : -1; plane < (spec.separate ? spec.samples : 0); ++plane) {
    for (int y = 0; y < spec.height; ++y) {
      Bytes row = Pack(spec, 0, y, spec.width, 1, plane);
      const uint16_t sample = static_cast<uint16_t>(plane < 0 ? 0 : plane);
      TIFFWriteScanline(tiff, row.data(), static_cast<uint32_t>(y), sample);
    }
  }
}

}  // namespace

Bytes EncodeTiff(const TiffSpec& spec, const std::string& path) {
  TIFF* tiff = TIFFOpen(path.c_str(), spec.mode);
  if (tiff == nullptr) throw std::runtime_error("cannot write " + path);
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, spec.width);
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, spec.height);
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, spec.bits);
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, spec.samples);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, spec.photometric);
  TIFFSetField(tiff, TIFFTAG_COMPRESSION, spec.compression);
  TIFFSetField(tiff, TIFFTAG_PLANARCONFIG,
               spec.separate ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
  if (spec.tile > 0) {
    TIFFSetField(tiff, TIFFTAG_TILEWIDTH, spec.tile);
    TIFFSetField(tiff, TIFFTAG_TILELENGTH, spec.tile);
  } else {
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, spec.rows_per_strip);
  }
  if (spec.tags) spec.tags(tiff);
  if (spec.tile > 0) {
    WriteTiles(tiff, spec);
  } else {
    WriteRows(tiff, spec);
  }
  TIFFClose(tiff);
  std::ifstream file(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(file), {});
}

TiffSpec GradientTiff(int width, int height) {
  TiffSpec spec;
  spec.width = width;
  spec.height = height;
  spec.sample = [](int x, int y, int s) -> unsigned {
    const Pixel p = Gradient(x, y);
    return s == 0 ? p.r : s == 1 ? p.g : s == 2 ? p.b : 255;
  };
  return spec;
}

}  // namespace kelto::stills
