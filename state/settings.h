// What the effect's parameters are bound to: the host writes these fields before every frame, as
// the types that its interface has for lists, switches and numbers.
#pragma once

#include <cstdint>

#include "framing/view.h"
#include "keyframes/motion_keys.h"

namespace kelto {

/// Values of the list "display".
enum Display : int32_t {
  kDisplaySource = 0,  ///< the whole picture, with the view outlined
  kDisplayTarget = 1   ///< the view
};

/// Values of the list "compositeover". Any other counts as video.
enum CompositeOver : int32_t { kOverColor = 0, kOverVideo = 1 };

/// Values of the list "levels".
enum Levels : int32_t { kLevelsRGB = 0, kLevels601 = 1 };

struct Settings {
  int32_t display = kDisplaySource;  ///< Display
  bool showActionSafe = true;
  View view;  ///< "size" and "position"; the motion writes it again, at every frame
  /// Never read: the motion follows the lists' keys.
  int32_t inVelocity = kVelocityEase, outVelocity = kVelocityEase;
  int32_t pathType = kPathLinear;               ///< PathType
  int32_t filter = 0;                           ///< FilterMode (resample/job.h)
  int32_t compositeOver = kOverColor;           ///< CompositeOver
  double backgroundColor[3] = {0.0, 0.0, 0.0};  ///< red, green, blue, 0..1
  bool squarePixels = true;
  int32_t levels = kLevelsRGB;  ///< Levels
  int32_t cacheMode = 1;        ///< the cache command asked for
  bool progressive = false;     ///< also set where the host's video is
};

}  // namespace kelto
