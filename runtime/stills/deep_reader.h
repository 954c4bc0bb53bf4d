// Opening a still picture and reading it with all its bits, for programs whose frames have more
// than eight.
//
// Decoders, limits and messages are those of platform/still_importer.h, which draws in eight bits.
// What arrives: R, G, B, A in sRGB, full range, upright, colours multiplied by alpha. Samples of up
// to 16 bits arrive as words of 0..65535, those of eight bits as v * 257; floating-point samples as
// floats, of which 1 is full scale and those beyond are kept (within 65504; what is no number is
// 0). Without a profile samples count as sRGB, floating-point ones, too.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "runtime/stills/still_error.h"

namespace kelto::stills {

/// What a file says about its picture before any pixel is decoded.
struct DeepInfo {
  uint32_t width = 0, height = 0;  ///< pixels, upright; 1 to 32767
  int bits = 8;                    ///< of a sample in the file, at least 8; 32 for floats
  bool floats = false;             ///< whether rows arrive in floats, else in words
  bool alpha = false;              ///< whether there may be pixels that let something through
  /// Bytes that Read takes beside the caller's rows at the most, as far as they grow with the
  /// picture.
  uint64_t scratch = 0;

  size_t PixelBytes() const { return floats ? 16 : 8; }
};

/// An open picture. All throw StillError, of one line without the file's name, and std::bad_alloc.
class DeepReader {
 public:
  /// Opens `path`, which may have any length. Refuses what is too large: pictures keep to 2 GiB of
  /// pixels at their true size, and to the limits of those of eight bits.
  explicit DeepReader(const std::string& path);
  ~DeepReader();
  DeepReader(const DeepReader&) = delete;
  DeepReader& operator=(const DeepReader&) = delete;

  const DeepInfo& info() const { return info_; }

  /// Reads into rows of the caller, `rowBytes` from one to the one below: a multiple of 16 that is
  /// not less than a row's bytes; `pixels` is aligned likewise. True where any pixel lets something
  /// through. After an error the rows' content is not settled.
  bool Read(void* pixels, ptrdiff_t rowBytes);

 private:
  struct File;
  std::unique_ptr<File> file_;
  DeepInfo info_;
};

}  // namespace kelto::stills
