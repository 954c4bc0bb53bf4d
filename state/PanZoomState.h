// The effect's record: one per use of the effect on the host's timeline.
//
// Motion, rendering and the image cache read and write these fields; the operations that the host
// calls are added by PanZoomInstance in plugin/, so that no lower folder needs to know them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "keyframes/motion.h"
#include "platform/hfx.h"
#include "platform/ipl.h"

namespace kelto {

/// The saved instance data: the image path, zero-terminated and zero-padded.
constexpr int32_t kPathRecordSize = 2048;
constexpr int kCacheLevels = 8;

class PanZoomState : public hfxInstance_v1 {
 public:
  PanZoomState();            ///< joins the instance registry
  ~PanZoomState() override;  ///< leaves it, where that was not done yet; frees nothing else
  /// Leaves the registry, so that nobody reaches an instance that is being destroyed.
  void LeaveInstanceRegistry();

  IplImage* workImages[kCacheLevels] = {};  ///< cache levels, largest first; 0 non-null: loaded
  std::string imagePath;                    ///< as saved in the instance data
  int32_t display = 0;                      ///< 0 "Display: Source", 1 "Display: Target"
  double zoom = 1.0;                        ///< rewritten each frame by the motion
  double centreX = 0.0, centreY = 0.0;      ///< in base rectangles; rewritten each frame
  int32_t inVelocity = 1;
  int32_t outVelocity = 1;
  int32_t pathType = 0;                         ///< 1 spline, else linear
  int32_t filter = 0;                           ///< FilterMode
  int32_t compositeOver = 0;                    ///< 0 background colour, else background video
  double backgroundColor[3] = {0.0, 0.0, 0.0};  ///< red, green, blue, 0..1
  bool showActionSafe = true;
  bool renderFlag = true;  ///< no parameter sets it
  bool squarePixels = true;
  bool progressive = false;
  int32_t cacheMode = 1;         ///< the cache command asked for
  int32_t appliedCacheMode = 1;  ///< the one last carried out
  int32_t levels = 0;            ///< 0 "Source Has RGB Levels", 1 "Source Has 601 Levels"
  int32_t appliedLevels = 0;     ///< the levels that the loaded image was made with
  bool spareByte = false;
  int32_t overlayOff = 0;  ///< 1 keeps the source display free of its outlines
  int32_t spareWords[2] = {0, 0};
  std::optional<Motion> motion;              ///< made of the keys; none before the first frame
  bool paramsChanged = true;                 ///< the keys must be read anew
  int32_t hostState = -1;                    ///< the host state callback's answer while rendering
  int32_t playMode = -1;                     ///< the host's play mode while rendering
  int32_t cacheState = -1;                   ///< 1 level 0 is natural size, 0 reduced, -1 none yet
  uint32_t imageWidth = 0, imageHeight = 0;  ///< natural size
  int32_t outputWidth = 0, outputHeight = 0;
  bool loadFailed = false;  ///< keeps later renders from trying again
};

/// Every live instance of this process, in order of creation.
std::vector<PanZoomState*>& InstanceRegistry();

/// The path of a saved record: up to its first zero byte, 2048 bytes at the most.
std::string PathOfRecord(const void* record);

}  // namespace kelto
