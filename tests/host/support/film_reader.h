// Films read back by the FFmpeg libraries.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/rational.h>
}

#include "tests/host/support/pictures.h"

namespace kelto::test {

/// One decoded frame: tightly packed planes Y, Cb, Cr, ten bits rounded to eight.
struct DecodedFrame {
  int width = 0, height = 0;
  int chromaWidth = 0, chromaHeight = 0;
  std::array<std::vector<uint8_t>, 3> planes;
  bool interlaced = false, topFirst = false;
  double seconds = 0.0;

  int Luma(int x, int y) const { return planes[0][size_t(y) * width + x]; }
  /// `plane` 1: Cb, 2: Cr, at a position of the frame.
  int Chroma(int plane, int x, int y) const {
    return planes[plane][size_t(y * chromaHeight / height) * chromaWidth + x * chromaWidth / width];
  }
};

struct DecodedFilm {
  std::string codec, pixelFormat, container;
  AVRational rate{}, sampleAspect{};
  AVColorSpace matrix = AVCOL_SPC_UNSPECIFIED;
  AVColorPrimaries primaries = AVCOL_PRI_UNSPECIFIED;
  AVColorTransferCharacteristic transfer = AVCOL_TRC_UNSPECIFIED;
  AVColorRange range = AVCOL_RANGE_UNSPECIFIED;
  AVFieldOrder fields = AV_FIELD_UNKNOWN;
  double seconds = 0.0;
  int streams = 0;
  std::vector<DecodedFrame> frames;
};

/// Decodes all frames of the first stream. Fails the test and returns what there is when the file
/// cannot be read.
DecodedFilm ReadFilm(const std::string& path);

/// The colour of a pixel in a studio-range frame coded with `matrix` (BT.709, else BT.601).
Rgb ColourAt(const DecodedFrame& frame, AVColorSpace matrix, int x, int y);
/// The colour of a studio-range pixel.
Rgb ColourOf(double luma, double cb, double cr, AVColorSpace matrix);

}  // namespace kelto::test
