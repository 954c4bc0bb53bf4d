// Pictures of any size and form, scaled by the FFmpeg libraries.
#pragma once

extern "C" {
#include <libswscale/swscale.h>
}

#include <array>
#include <memory>
#include <string>

#include "host/film/colour_matrix.h"
#include "host/film/libav.h"

namespace kelto::host {

/// Which rows of a picture are meant.
enum class PicturePart { kWhole, kTopField, kBottomField };

/// What the samples of a picture mean.
struct Coding {
  ColourMatrix matrix = ColourMatrix::kBt601;
  bool fullRange = false;
};

/// How a decoded picture is coded; where it does not say, the size decides as it does for films.
Coding CodingOf(const AVFrame& picture);

/// Whether a picture's samples have more than eight bits.
bool IsDeep(const AVFrame& picture);

/// Scales with a bicubic kernel, to the same bits on every machine.
class Scaler {
 public:
  /// `picture`, of which a field's rows are given when `part` is a field, in another size and pixel
  /// format. Between Y Cb Cr formats levels keep their meaning; RGB becomes BT.601 of studio range,
  /// and what becomes RGB full range, of whose words WhiteOf says what is white. The frame returned
  /// is the scaler's own and holds until the next call; null when there is no way from the one
  /// format to the other.
  const AVFrame* Scale(const AVFrame& picture, PicturePart part, int width, int height,
                       AVPixelFormat format);

  /// What white becomes in words of RGB: 65535 at most.
  static uint32_t WhiteOf(const AVFrame& picture, int width, int height);

 private:
  struct FreeContext {
    void operator()(SwsContext* context) const { sws_freeContext(context); }
  };
  struct Way {
    std::unique_ptr<SwsContext, FreeContext> context;
    Owned<AVFrame> result;
    std::array<int, 9> key{};
  };
  static bool Open(Way& way, const AVFrame& picture, PicturePart part, int width, int height,
                   AVPixelFormat format);

  std::array<Way, 3> ways_;  ///< one for each part
};

}  // namespace kelto::host
