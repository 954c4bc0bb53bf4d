// A frame of one colour.
#pragma once

#include <cstdint>
#include <vector>

#include "host/base/film_format.h"
#include "host/options/colour.h"

namespace kelto::host {

class SolidFrame {
 public:
  SolidFrame(Colour colour, FrameSize size, PixelLayout layout);

  /// All rows are the one that the frame holds.
  FrameView View() const { return {row_.data(), 0, size_}; }

 private:
  FrameSize size_;
  std::vector<uint8_t> row_;
};

}  // namespace kelto::host
