// JPEG test files, made by libjpeg.
#pragma once

#include <functional>

#include "tests/runtime/stills/still_test.h"

namespace kelto::stills {

enum class JpegKind { kColor, kGrey, kCmyk, kYcck };

struct JpegSpec {
  int width = 0, height = 0;
  JpegKind kind = JpegKind::kColor;
  /// Interleaved samples: R G B, grey, or four bytes exactly as they are to be stored.
  Bytes samples;
  int quality = 95;
  bool full_chroma = true;
  bool progressive = false;
  bool adobe_marker = true;  ///< for four components
  int scans = 0;             ///< not 0: a progressive file of that many scans
  Bytes exif, icc;
};

Bytes EncodeJpeg(const JpegSpec& spec);
/// A colour JPEG of a picture.
JpegSpec JpegOf(const Picture& picture);
/// What libjpeg itself makes of a colour or grey JPEG.
Picture PlainDecode(const Bytes& jpeg);

/// The file with a segment put in right behind its first marker.
Bytes WithSegment(const Bytes& jpeg, uint8_t marker, const Bytes& content);

}  // namespace kelto::stills
