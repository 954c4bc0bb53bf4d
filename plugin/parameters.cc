#include "plugin/parameters.h"

#include <cstring>
#include <string_view>

#include "catalogue/parameters.h"
#include "keyframes/motion.h"

namespace kelto {
namespace {

constexpr int32_t kDropDown = 1;  // the lists' type

/// The field that a host writes a parameter's value into.
struct Field {
  void* at;
  int32_t size;
};

template <typename Value>
Field Of(Value& value) {
  return {&value, sizeof value};
}

Field FieldOf(Settings& settings, std::string_view key) {
  static_assert(sizeof settings.progressive == 1, "the interface's switches are bytes");
  if (key == key::kDisplay) return Of(settings.display);
  if (key == key::kShowActionSafe) return Of(settings.showActionSafe);
  if (key == key::kSize) return Of(settings.view.zoom);
  // centreX and centreY lie side by side and are bound as one point.
  if (key == key::kPosition) return {&settings.view.centreX, 2 * sizeof settings.view.centreX};
  if (key == key::kInVelocity) return Of(settings.inVelocity);
  if (key == key::kOutVelocity) return Of(settings.outVelocity);
  if (key == key::kPath) return Of(settings.pathType);
  if (key == key::kFilter) return Of(settings.filter);
  if (key == key::kCompositeOver) return Of(settings.compositeOver);
  if (key == key::kBackgroundColor) return Of(settings.backgroundColor);
  if (key == key::kSquarePixels) return Of(settings.squarePixels);
  if (key == key::kLevels) return Of(settings.levels);
  if (key == key::kCache) return Of(settings.cacheMode);
  if (key == key::kProgressive) return Of(settings.progressive);
  return {nullptr, 0};  // a group
}

hfxParameter* Make(const catalogue::Parameter& p, const Field& field) {
  switch (p.kind) {
    case catalogue::Kind::kList:
      return hfxPList::New(p.label, p.key, field.at, field.size, p.texts, kDropDown);
    case catalogue::Kind::kSwitch:
      return hfxPBoolean::New(p.label, p.key, field.at, field.size);
    case catalogue::Kind::kPoint:
      return hfxPPoint2D::New(p.label, p.key, field.at, field.size);
    case catalogue::Kind::kColour:
      return hfxPColorRGB::New(p.label, p.key, field.at, field.size);
    default:
      return hfxPNumber::New(p.label, p.key, field.at, field.size, p.least, p.most, 0.01, 0, 1);
  }
}

}  // namespace

bool DeclareParameters(PanZoomState& state) {
  hfxPGroup* group = nullptr;
  for (const catalogue::Parameter& parameter : catalogue::kPanel) {
    if (parameter.kind == catalogue::Kind::kGroup) {
      group = hfxPGroup::New(parameter.label, parameter.key, parameter.open ? 1 : 0);
      state.AddParameter(group, nullptr);
      continue;
    }
    hfxParameter* added = Make(parameter, FieldOf(state.settings, parameter.key));
    state.AddParameter(added, group);
    if (parameter.kind == catalogue::Kind::kNumber) {
      added->SetInterpolator(InterpolateZoom);
      added->SetUserData(&state);
    }
  }
  return true;
}

bool InterpolateZoom(hfxParameter* parameter, double time, void* result, int32_t size, int32_t) {
  auto* state = static_cast<PanZoomState*>(parameter->GetUserData());
  if (!state || size != sizeof(double)) return false;
  // Keys change between renders, and a panel asks for values before it reports the change.
  const bool current = state->render.playMode != -1 && state->motion && !state->paramsChanged;
  const double zoom = current
                          ? state->motion->ZoomAt(time)
                          : ZoomMotion(ReadMotionKeys(*state, state->settings.pathType)).At(time);
  std::memcpy(result, &zoom, sizeof zoom);
  return true;
}

}  // namespace kelto
