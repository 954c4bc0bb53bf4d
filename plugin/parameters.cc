#include "plugin/parameters.h"

#include <cstring>

#include "framing/view.h"
#include "keyframes/motion.h"

namespace kelto {
namespace {

const char* const kDisplayEntries[] = {"Display: Source", "Display: Target", nullptr};
const char* const kInVelocityEntries[] = {"In: Linear", "In: Ease In", "In: Constant", nullptr};
const char* const kOutVelocityEntries[] = {"Out: Linear", "Out: Ease Out", "Out: Constant",
                                           "Out: Hold", nullptr};
const char* const kPathEntries[] = {"Path: Linear", "Path: Spline", nullptr};
const char* const kFilterEntries[] = {
    "Filter: Real Time",     "Filter: Triangle",         "Filter: Quadratic",
    "Filter: Cubic",         "Filter: BSpline Catmull",  "Filter: Gaussian",
    "Filter: Kelto Hi Qual", "Filter: Kelto Ultra Qual", nullptr};
const char* const kBackgroundEntries[] = {"Background: Color", "Background: Video", nullptr};
const char* const kLevelsEntries[] = {"Source Has RGB Levels", "Source Has 601 Levels", nullptr};
const char* const kCacheEntries[] = {"Cache: Video Resolution",
                                     "Cache: Image Resolution",
                                     "Cache: Multi-Resolution",
                                     "Free Current Cache",
                                     "Cache All: Video Resolution",
                                     "Cache All: Image Resolution",
                                     "Cache All: Multi-Resolution",
                                     "Free All Caches",
                                     nullptr};

constexpr int32_t kDropDown = 1;         // the lists' type
constexpr int32_t kShut = 0, kOpen = 1;  // the groups' flags

/// Adds parameters to one instance; each call returns what it added.
class Panel {
 public:
  explicit Panel(PanZoomState& state) : state_(state) {}

  hfxPGroup* Group(const char* name, const char* key, int32_t flag) {
    return Add(hfxPGroup::New(name, key, flag), nullptr);
  }
  void List(const char* key, hfxPGroup* group, int32_t& field, const char* const* entries) {
    Add(hfxPList::New("", key, &field, sizeof field, entries, kDropDown), group);
  }
  void Switch(const char* name, const char* key, hfxPGroup* group, bool& field) {
    static_assert(sizeof field == 1);
    Add(hfxPBoolean::New(name, key, &field, sizeof field), group);
  }
  template <typename Parameter>
  Parameter* Add(Parameter* parameter, hfxPGroup* group) {
    state_.AddParameter(parameter, group);
    return parameter;
  }

 private:
  PanZoomState& state_;
};

}  // namespace

bool DeclareParameters(PanZoomState& state) {
  Panel panel(state);
  panel.List("display", nullptr, state.settings.display, kDisplayEntries);
  hfxPGroup* group = panel.Group("Display Options", "sourcerectoptions", kShut);
  panel.Switch("Show Action Safe", "showactionsafe", group, state.settings.showActionSafe);

  group = panel.Group("Size", "sizegroup", kOpen);
  hfxPNumber* size =
      panel.Add(hfxPNumber::New("Zoom Factor", "size", &state.settings.view.zoom,
                                sizeof state.settings.view.zoom, kMinZoom, kMaxZoom, 0.01, 0, 1),
                group);
  size->SetInterpolator(InterpolateZoom);
  size->SetUserData(&state);

  group = panel.Group("Position", "positiongroup", kOpen);
  // centreX and centreY lie side by side and are bound as one point.
  panel.Add(hfxPPoint2D::New("", "position", &state.settings.view.centreX,
                             2 * sizeof state.settings.view.centreX),
            group);

  group = panel.Group("Velocity", "velocitygroup", kShut);
  panel.List("invelocity", group, state.settings.inVelocity, kInVelocityEntries);
  panel.List("outvelocity", group, state.settings.outVelocity, kOutVelocityEntries);

  group = panel.Group("Path", "pathgroup", kShut);
  panel.List("path", group, state.settings.pathType, kPathEntries);

  group = panel.Group("Filtering", "filtering", kOpen);
  panel.List("filter", group, state.settings.filter, kFilterEntries);

  group = panel.Group("Background", "backgroundgroup", kShut);
  panel.List("compositeover", group, state.settings.compositeOver, kBackgroundEntries);
  panel.Add(hfxPColorRGB::New("", "bgcolor", state.settings.backgroundColor,
                              sizeof state.settings.backgroundColor),
            group);

  group = panel.Group("Advanced", "advanced", kShut);
  panel.Switch("Source Has Square Pixels", "squarepixels", group, state.settings.squarePixels);
  panel.List("levels", group, state.settings.levels, kLevelsEntries);

  group = panel.Group("Cache", "cachegroup", kOpen);
  panel.List("cache", group, state.settings.cacheMode, kCacheEntries);

  group = panel.Group("Render Mode", "projgroup", kOpen);
  panel.Switch("Progressive", "progressive", group, state.settings.progressive);
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
