#include "adapters/frei0r/photo_effect.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <exception>
#include <map>
#include <mutex>
#include <utility>

#include "adapters/frei0r/effect_file.h"
#include "host/error.h"
#include "host/session/effect_session.h"

namespace kelto::frei0r {
namespace {

constexpr uint16_t kFirstModel = 1;
/// The effect's saved record: the path, zero-terminated and padded.
constexpr size_t kRecordSize = 2048;

/// The lock around the module and the host library; see the head of photo_effect.h.
std::mutex& ModuleLock() {
  static auto& lock = *new std::mutex;  // outlives render threads that outlive exit()
  return lock;
}

/// The module, loaded while anybody needs it. Call under the lock.
std::shared_ptr<hfx::Module> LoadedModule() {
  static auto& loaded = *new std::weak_ptr<hfx::Module>;
  if (auto module = loaded.lock()) return module;
  std::string error;
  std::shared_ptr<hfx::Module> module = hfx::Module::Load(FindEffectFile(), &error);
  if (!module) throw host::Error(error);
  loaded = module;
  return module;
}

int32_t IndexOf(const hfxPList& list, const std::string& entry) {
  for (int32_t i = 0; i < list.GetNumEntries(); ++i) {
    if (entry == list.GetEntry(i)) return i;
  }
  throw host::Error("the effect's list \"" + std::string(list.GetKeyName()) + "\" has no entry \"" +
                    entry + "\"");
}

/// Whether two B, G, R, A pictures of one size share any pixel's green.
bool ShareGreen(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
  for (size_t i = 1; i < a.size(); i += 4) {
    if (a[i] == b[i]) return true;
  }
  return false;
}

}  // namespace

std::shared_ptr<PhotoEffect> PhotoEffect::Share(const std::string& photo,
                                                const std::string& levels) {
  static auto& shared =
      *new std::map<std::pair<std::string, std::string>, std::weak_ptr<PhotoEffect>>;
  const std::lock_guard lock(ModuleLock());
  std::erase_if(shared, [](const auto& entry) { return entry.second.expired(); });
  std::weak_ptr<PhotoEffect>& place = shared[{photo, levels}];
  if (auto effect = place.lock()) return effect;
  std::shared_ptr<PhotoEffect> effect(new PhotoEffect(photo, levels), [](PhotoEffect* last) {
    const std::lock_guard ending(ModuleLock());
    delete last;
  });
  place = effect;
  return effect;
}

PhotoEffect::PhotoEffect(const std::string& photo, const std::string& levels) {
  try {
    Load(photo, levels);
  } catch (const std::exception& error) {
    fault_ = error.what();
    effect_.reset();
    module_.reset();
  }
}

void PhotoEffect::Load(const std::string& path, const std::string& levels) {
  const host::Photo photo = host::OpenPhoto(path);
  module_ = LoadedModule();
  std::string error;
  effect_ = hfx::Effect::Create(*module_, kFirstModel, &error);
  if (!effect_) throw host::Error("the effect: " + error);
  std::array<char, kRecordSize> record{};
  std::memcpy(record.data(), photo.path.data(), std::min(photo.path.size(), kRecordSize - 1));
  effect_->instance().SetInstanceData(record.data(), kRecordSize);
  effect_->instance().SetInstanceDataModified(false);
  SetList("levels", levels);
  if (HasPicture(photo)) return;
  const auto fault = host::FindFault(photo);
  throw host::Error(path + ": " +
                    (fault ? "cannot be read as a picture: " + *fault
                           : "the effect could not load it; there may be too little memory"));
}

/// Whether the effect could load its photograph, which it does not say. Without keys it fits the
/// photograph to the frame, so in a display of the photograph's own shape no background is seen:
/// over black and over white it comes out the same, and without a photograph nothing does.
bool PhotoEffect::HasPicture(const host::Photo& photo) {
  // One that is a single row or column may be there and yet not be drawn.
  const bool line = std::min(photo.width, photo.height) == 1;
  hfx::ImageBuffer input(16, 16, hfxColorspaceRGB), onBlack(16, 16, hfxColorspaceRGB),
      onWhite(16, 16, hfxColorspaceRGB);
  hfx::RenderState state;
  state.displayAspect = static_cast<double>(photo.width) / photo.height;
  state.quality = 0.5;  // the fastest filter
  SetList("display", "Display: Target");
  SetBackground({0, 0, 0});
  Draw(state, *input.image(), *onBlack.image());
  SetBackground({255, 255, 255});
  Draw(state, *input.image(), *onWhite.image());
  return line || ShareGreen(onBlack.bytes(), onWhite.bytes());
}

std::string PhotoEffect::Render(const FrameRequest& request) {
  const std::lock_guard lock(ModuleLock());
  if (!fault_.empty()) return fault_;
  try {
    if (sceneId_ != request.sceneId) SetUp(*request.scene);
    sceneId_ = request.sceneId;
    const hfxImage& output = *request.output;
    hfx::RenderState state;
    state.currentFrame = request.moment.frame;
    state.totalFrames = request.moment.frames;
    state.displayAspect = static_cast<double>(output.GetWidth()) / output.GetHeight();
    state.quality = request.quality;
    Draw(state, *request.input, *request.output);
    return "";
  } catch (const std::exception& error) {
    return error.what();
  }
}

void PhotoEffect::Draw(const hfx::RenderState& state, hfxImage& input, hfxImage& output) {
  std::string error;
  if (!effect_->BeginRender(hfxPlayModeRender, &error)) throw host::Error("the effect: " + error);
  const bool rendered = effect_->Render(state, &input, &output, &error);
  const bool ended = effect_->EndRender(rendered ? &error : nullptr);
  if (!rendered || !ended) throw host::Error("the effect: " + error);
}

void PhotoEffect::SetUp(const Scene& scene) {
  sceneId_ = 0;  // until all is set
  for (const host::ListSetting& list : scene.lists) SetList(list.parameter.c_str(), list.entry);
  SetList("compositeover", scene.background ? "Background: Color" : "Background: Video");
  if (scene.background) SetBackground(*scene.background);
  SetKeys(scene.keys);
  effect_->ParametersChanged();
}

hfxParameter& PhotoEffect::Find(const char* key) {
  hfxParameter* parameter = effect_->instance().FindParameter(key);
  if (parameter == nullptr) {
    throw host::Error("the effect has no parameter \"" + std::string(key) + "\"");
  }
  return *parameter;
}

void PhotoEffect::SetList(const char* key, const std::string& entry) {
  auto& list = dynamic_cast<hfxPList&>(Find(key));
  // Without keys: the effect resets a list whose keys are all inactive to its first entry.
  const int32_t index = IndexOf(list, entry);
  hfx::SetBoundValue(list, &index, sizeof index);
}

void PhotoEffect::SetBackground(host::Colour colour) {
  const auto rgb = host::BackgroundFor(colour);
  hfx::SetBoundValue(Find("bgcolor"), rgb.data(), sizeof rgb);
}

void PhotoEffect::SetKeys(const std::vector<host::ViewKey>& keys) {
  hfxParameter &zoom = Find("size"), &position = Find("position");
  auto& arrivals = dynamic_cast<hfxPList&>(Find("invelocity"));
  auto& departures = dynamic_cast<hfxPList&>(Find("outvelocity"));
  for (hfxParameter* keyed : {&zoom, &position, static_cast<hfxParameter*>(&arrivals),
                              static_cast<hfxParameter*>(&departures)}) {
    hfx::RemoveAllKeys(*keyed);
  }
  for (const host::ViewKey& key : keys) {
    const double centre[2] = {key.view.x, key.view.y};
    const int32_t arrival = IndexOf(arrivals, key.arrival);
    const int32_t departure = IndexOf(departures, key.departure);
    hfx::SetKey(zoom, key.time, &key.view.zoom, sizeof key.view.zoom);
    hfx::SetKey(position, key.time, centre, sizeof centre);
    hfx::SetKey(arrivals, key.time, &arrival, sizeof arrival);
    hfx::SetKey(departures, key.time, &departure, sizeof departure);
  }
}

}  // namespace kelto::frei0r
