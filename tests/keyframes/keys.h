// Keys as a test writes them down, in order of time.
#pragma once

#include "keyframes/motion_keys.h"

namespace kelto::test {

/// Keys of an effect that has all four parameters.
struct Keys : MotionKeys {
  Keys() {
    position.emplace();
    zoom.emplace();
    in.emplace();
    out.emplace();
  }
  void AddPosition(double time, double x, double y) { position->push_back({time, {x, y}}); }
  void AddZoom(double time, double value) { zoom->push_back({time, value}); }
  void AddVelocities(double time, int32_t arrival, int32_t departure) {
    in->push_back({time, arrival});
    out->push_back({time, departure});
  }
};

}  // namespace kelto::test
