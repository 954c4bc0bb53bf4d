// An instance with its parameters, and short forms for what a host does to it.
#pragma once

#include <cstring>
#include <vector>

#include "plugin/PanZoomInstance.h"
#include "runtime/hfx/host.h"
#include "tests/support/picture.h"

namespace kelto::test {

class Instance : public PanZoomInstance {
 public:
  Instance() { CreateParameters(); }

  hfx::RenderState& host() { return hfx::StateOf(*this); }
  hfxParameter& parameter(const char* key) { return *FindParameter(key); }

  template <typename Value>
  void SetKey(const char* key, double time, const Value& value) {
    hfx::SetKey(parameter(key), time, &value, sizeof value);
  }
  void SetPosition(double time, double x, double y) {
    const double xy[2] = {x, y};
    SetKey("position", time, xy);
  }
  void SetVelocities(double time, int32_t in, int32_t out) {
    SetKey("invelocity", time, in);
    SetKey("outvelocity", time, out);
  }
  template <typename Value>
  Value KeyValue(const char* key, int32_t index) {
    Value value;
    std::memcpy(&value, parameter(key).GetKey(index)->GetValue(), sizeof value);
    return value;
  }
  void SetActive(const char* key, int32_t index) { hfx::SetActiveKey(parameter(key), index); }
  void SetPath(const std::string& path) {
    std::vector<char> record(kPathRecordSize);
    std::memcpy(record.data(), path.data(), path.size());
    SetInstanceData(record.data(), kPathRecordSize);
  }
};

}  // namespace kelto::test
