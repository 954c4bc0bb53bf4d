#include "host/session/effect_session.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "host/error.h"

namespace kelto::host {
namespace {

/// The effect's saved record: the path, zero-terminated and padded.
constexpr size_t kRecordSize = 2048;
constexpr uint16_t kFirstModel = 1;

constexpr const char* kDisplayTarget = "Display: Target";
constexpr std::array<double, 3> kBlack{0.0, 0.0, 0.0};
constexpr std::array<double, 3> kWhite{1.0, 1.0, 1.0};

int32_t ColorspaceOf(PixelLayout layout) {
  return layout == PixelLayout::kBGRA ? hfxColorspaceRGB : hfxColorspaceYCbCr;
}

int32_t IndexOf(const hfxPList& list, const std::string& entry) {
  for (int32_t i = 0; i < list.GetNumEntries(); ++i) {
    if (entry == list.GetEntry(i)) return i;
  }
  throw Error("the effect's list \"" + std::string(list.GetKeyName()) + "\" has no entry \"" +
              entry + "\"");
}

int32_t VideoTypeOf(const FilmFormat& format) {
  if (!format.Interlaced()) return hfxVideoTypeProgressive;
  const bool pal = format.rate == FrameRate{25, 1} || format.rate == FrameRate{50, 1};
  return pal ? hfxVideoType625 : hfxVideoType525;
}

void SetKey(hfxParameter& parameter, double time, const void* value, int32_t size) {
  if (hfx::SetKey(parameter, time, value, size) < 0) {
    throw Error("the effect's parameter \"" + std::string(parameter.GetKeyName()) +
                "\" takes no such key");
  }
}

/// Whether two frames share any pixel's brightness.
bool ShareBrightness(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b,
                     PixelLayout layout) {
  // Luma of each pixel, or green.
  const size_t first = layout == PixelLayout::kBGRA ? 1 : 0;
  const size_t step = static_cast<size_t>(BytesPerPixel(layout));
  for (size_t i = first; i < a.size(); i += step) {
    if (a[i] == b[i]) return true;
  }
  return false;
}

}  // namespace

std::array<double, 3> BackgroundFor(Colour colour) {
  // The effect works in studio range and takes the parameter's levels, 0..255, for studio levels:
  // where it minds at all, it cuts them to 16..235 without scaling. So they are scaled here.
  const auto studio = [](uint8_t level) { return static_cast<int>(level * 219 / 255.0 + 16.5); };
  return {studio(colour.red) / 255.0, studio(colour.green) / 255.0, studio(colour.blue) / 255.0};
}

EffectSession::EffectSession(const std::string& modulePath, const RenderPlan& plan,
                             const Photo& photo, PixelLayout layout)
    : plan_(plan),
      photo_(photo),
      layout_(layout),
      input_(plan.format.size.width, plan.format.size.height, ColorspaceOf(layout)),
      output_(plan.format.size.width, plan.format.size.height, ColorspaceOf(layout)) {
  std::string error;
  module_ = hfx::Module::Load(modulePath, &error);
  if (!module_) throw Error(error);
  effect_ = hfx::Effect::Create(*module_, kFirstModel, &error);
  if (!effect_) throw Error(modulePath + ": " + error);
  SetPhoto();
  SetLists();
  if (!HasPicture()) CheckPhoto();
  SetBackground(BackgroundFor(plan_.background));
  SetKeys();
  effect_->ParametersChanged();
  Begin();
}

EffectSession::~EffectSession() {
  if (begun_) effect_->EndRender(nullptr);
}

void EffectSession::SetAbortQuery(std::function<bool()> query) {
  hfx::SetAbortQuery(effect_->instance(), std::move(query));
}

FrameView EffectSession::Render(int32_t number) {
  hfx::RenderState state = FirstState();
  state.currentFrame = number;
  RenderFrame(state);
  const hfxImage& image = *output_.image();
  return {image.GetRowPtr(0), image.GetRowDelta(), plan_.format.size};
}

hfxParameter& EffectSession::Parameter(const std::string& key) {
  hfxParameter* parameter = effect_->instance().FindParameter(key.c_str());
  if (parameter == nullptr) throw Error("the effect has no parameter \"" + key + "\"");
  return *parameter;
}

void EffectSession::SetPhoto() {
  std::array<char, kRecordSize> record{};
  std::memcpy(record.data(), photo_.path.data(), std::min(photo_.path.size(), kRecordSize - 1));
  effect_->instance().SetInstanceData(record.data(), kRecordSize);
  effect_->instance().SetInstanceDataModified(false);
}

void EffectSession::SetLists() {
  for (const ListSetting& setting : plan_.lists) {
    auto* list = dynamic_cast<hfxPList*>(&Parameter(setting.parameter));
    if (list == nullptr) throw Error("the effect's \"" + setting.parameter + "\" is not a list");
    // Without keys: the effect resets a list whose keys are all inactive to its first entry.
    const int32_t index = IndexOf(*list, setting.entry);
    hfx::SetBoundValue(*list, &index, sizeof index);
  }
}

void EffectSession::SetBackground(const std::array<double, 3>& rgb) {
  hfx::SetBoundValue(Parameter("bgcolor"), rgb.data(), sizeof rgb);
}

void EffectSession::SetKeys() {
  auto& arrivals = dynamic_cast<hfxPList&>(Parameter("invelocity"));
  auto& departures = dynamic_cast<hfxPList&>(Parameter("outvelocity"));
  for (const ViewKey& key : plan_.keys) {
    const double centre[2] = {key.view.x, key.view.y};
    const int32_t arrival = IndexOf(arrivals, key.arrival);
    const int32_t departure = IndexOf(departures, key.departure);
    SetKey(Parameter("size"), key.time, &key.view.zoom, sizeof key.view.zoom);
    SetKey(Parameter("position"), key.time, centre, sizeof centre);
    SetKey(arrivals, key.time, &arrival, sizeof arrival);
    SetKey(departures, key.time, &departure, sizeof departure);
  }
}

/// Whether the effect could load its photo, which it does not say. Without keys it fits the photo
/// to the frame, and where the display has the photo's own shape the frame holds nothing else:
/// drawn over black and over white, a photo looks the same twice, and no photo nowhere.
bool EffectSession::HasPicture() {
  auto& display = dynamic_cast<hfxPList&>(Parameter("display"));
  int32_t asked = 0;
  hfx::BoundValueOf(display, &asked, sizeof asked);
  const int32_t target = IndexOf(display, kDisplayTarget);
  hfx::SetBoundValue(display, &target, sizeof target);

  hfx::RenderState state = FirstState();
  state.displayAspect = static_cast<double>(photo_.width) / photo_.height;
  state.quality = 0.5;  // the fastest filter
  Begin();
  SetBackground(kBlack);
  RenderFrame(state);
  const std::vector<uint8_t> overBlack = output_.bytes();
  SetBackground(kWhite);
  RenderFrame(state);
  End();
  hfx::SetBoundValue(display, &asked, sizeof asked);
  return ShareBrightness(overBlack, output_.bytes(), layout_);
}

/// The effect seems to have no picture: throws the reason.
void EffectSession::CheckPhoto() const {
  if (const auto fault = FindFault(photo_)) {
    throw Error(photo_.given + ": cannot be read as a picture: " + *fault);
  }
  // A photo of a single row or column is one that the effect may have and yet not draw.
  if (std::min(photo_.width, photo_.height) == 1) return;
  throw Error(photo_.given + ": the effect could not load it; " + std::to_string(photo_.width) +
              "x" + std::to_string(photo_.height) + " pixels may need more memory than there is");
}

void EffectSession::Begin() {
  std::string error;
  if (!effect_->BeginRender(plan_.playMode, &error)) throw Error("the effect: " + error);
  begun_ = true;
}

void EffectSession::End() {
  begun_ = false;
  std::string error;
  if (!effect_->EndRender(&error)) throw Error("the effect: " + error);
}

void EffectSession::RenderFrame(hfx::RenderState state) {
  if (!plan_.format.Interlaced()) {
    RenderField(state, *input_.image(), *output_.image());
    return;
  }
  state.fieldMode = hfxFieldModeSeparate;
  for (state.field = 0; state.field < 2; ++state.field) {
    state.topField = (plan_.format.fields == FieldOrder::kTopFirst) == (state.field == 0);
    hfxImage input = hfx::FieldView(*input_.image(), state.topField);
    hfxImage output = hfx::FieldView(*output_.image(), state.topField);
    RenderField(state, input, output);
  }
}

void EffectSession::RenderField(const hfx::RenderState& state, hfxImage& input, hfxImage& output) {
  std::string error;
  if (!effect_->Render(state, &input, &output, &error)) throw Error("the effect: " + error);
}

hfx::RenderState EffectSession::FirstState() const {
  hfx::RenderState state;
  state.totalFrames = plan_.frames;
  state.videoType = VideoTypeOf(plan_.format);
  state.displayAspect = static_cast<double>(plan_.format.size.width) / plan_.format.size.height;
  return state;
}

}  // namespace kelto::host
