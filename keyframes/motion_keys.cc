#include "keyframes/motion_keys.h"

#include <cstddef>
#include <cstring>

namespace kelto {
namespace {

template <typename Value>
std::optional<std::vector<MotionKey<Value>>> ReadKeys(const hfxParameter* parameter) {
  if (!parameter) return std::nullopt;
  std::vector<MotionKey<Value>> keys(static_cast<size_t>(parameter->GetNumKeys()));
  for (size_t i = 0; i < keys.size(); ++i) {
    const hfxParamKey* key = parameter->GetKey(static_cast<int32_t>(i));
    keys[i].time = key->GetTime();
    std::memcpy(&keys[i].value, key->GetValue(), sizeof keys[i].value);
  }
  return keys;
}

}  // namespace

MotionKeys ReadMotionKeys(const hfxInstance_v1& instance, int32_t pathType) {
  const hfxParameter* size = instance.FindParameter("size");
  MotionKeys keys;
  keys.position = ReadKeys<PathPoint>(instance.FindParameter("position"));
  keys.zoom = ReadKeys<double>(size && size->GetUserData() ? size : nullptr);
  keys.in = ReadKeys<int32_t>(instance.FindParameter("invelocity"));
  keys.out = ReadKeys<int32_t>(instance.FindParameter("outvelocity"));
  keys.pathType = pathType;
  keys.totalFrames = instance.GetTotalFrames();
  return keys;
}

}  // namespace kelto
