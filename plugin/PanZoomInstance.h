// The operations that the host calls on one use of the effect.
#pragma once

#include "state/PanZoomState.h"

namespace kelto {

class PanZoomInstance : public PanZoomState {
 public:
  /// Renders the current frame or field. False only when the host reports the render aborted; a
  /// missing input or output throws the integer 1.
  bool RenderFrame(const hfxRect& region) override;
  bool CreateParameters() override;
  /// Takes the saved path, the host's state and its play mode.
  int32_t BeginRender() override;
  /// Gives the working images up after a render of host state 1. Returns -1: to a host, true.
  int32_t EndRender() override;
  /// Lets the user pick or find the image, loads it and saves its path. True when a file was
  /// picked, whether or not it then loaded.
  bool ChooseImage() override;
};

}  // namespace kelto
