// The effect's record: one per use of the effect on the host's timeline.
//
// Motion, rendering and the image cache read and write it; the operations that the host calls are
// added by PanZoomInstance in plugin/, so that no lower folder needs to know them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "keyframes/motion.h"
#include "platform/hfx.h"
#include "state/cached_picture.h"
#include "state/settings.h"

namespace kelto {

/// The saved instance data: the image path, zero-terminated and zero-padded.
constexpr int32_t kPathRecordSize = 2048;

/// What the host has said of the render in progress.
struct HostRender {
  int32_t hostState = -1;  ///< the host state callback's answer; -1 outside renders, or none
  int32_t playMode = -1;   ///< hfxPlayMode; -1 outside renders
  int32_t outputWidth = 0, outputHeight = 0;  ///< of the output image, in pixels
};

class PanZoomState : public hfxInstance_v1 {
 public:
  PanZoomState();  ///< joins the instance registry
  /// Leaves the registry, so that nobody reaches an instance that is being destroyed, and only
  /// then gives its images back.
  ~PanZoomState() override;

  Settings settings;
  HostRender render;
  CachedPicture picture;
  std::optional<Motion> motion;  ///< made of the keys; none before the first frame
  bool paramsChanged = true;     ///< the keys must be read anew
  bool renderFlag = true;        ///< draws the action-safe frame; hosts have no parameter for it
  int32_t overlayOff = 0;        ///< 1 draws no outlines; hosts have no parameter for it
};

/// Every live instance of this process, in order of creation.
std::vector<PanZoomState*>& InstanceRegistry();

/// The path of a saved record: up to its first zero byte, 2048 bytes at the most.
std::string PathOfRecord(const void* record);

}  // namespace kelto
