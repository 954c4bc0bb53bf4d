#include "keyframes/motion_keys.h"

#include <cstddef>
#include <cstring>

#include "catalogue/parameters.h"

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
  const hfxParameter* size = instance.FindParameter(key::kSize);
  MotionKeys keys;
  keys.position = ReadKeys<PathPoint>(instance.FindParameter(key::kPosition));
  keys.zoom = ReadKeys<double>(size && size->GetUserData() ? size : nullptr);
  keys.in = ReadKeys<int32_t>(instance.FindParameter(key::kInVelocity));
  keys.out = ReadKeys<int32_t>(instance.FindParameter(key::kOutVelocity));
  keys.pathType = pathType;
  keys.totalFrames = instance.GetTotalFrames();
  return keys;
}

}  // namespace kelto
