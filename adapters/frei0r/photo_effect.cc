#include "adapters/frei0r/photo_effect.h"

#include <algorithm>
#include <array>
#include <bit>
#include <exception>
#include <iterator>
#include <map>
#include <mutex>
#include <new>
#include <utility>

#include "adapters/frei0r/adapter.h"
#include "adapters/frei0r/console.h"
#include "adapters/frei0r/covered_pixels.h"
#include "adapters/frei0r/effect_file.h"
#include "catalogue/parameters.h"
#include "host/base/error.h"
#include "host/effect/drawn_state.h"
#include "host/effect/effect_settings.h"
#include "host/effect/render_state.h"
#include "host/track/drawn_frame.h"
#include "host/track/keyed_plan.h"
#include "platform/ipl.h"

namespace kelto::frei0r {
namespace {

constexpr uint16_t kFirstModel = 1;
/// Width and height of the frame that shows whether there is a picture.
constexpr int32_t kProbeSize = 16;

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

host::RenderPlan PlanOf(const FrameRequest& request) {
  host::RenderPlan plan;
  plan.format = request.scene->format;
  plan.format.size = {request.output->GetWidth(), request.output->GetHeight()};
  if (request.size.width > 0) plan.format.size = {request.size.width, request.size.height};
  plan.frames = request.moment.frames;
  plan.playMode = request.scene->playMode;
  return plan;
}

}  // namespace

std::shared_ptr<PhotoEffect> PhotoEffect::Share(const std::string& photo,
                                                const std::string& levels) {
  static auto& shared =
      *new std::map<std::pair<std::string, std::string>, std::weak_ptr<PhotoEffect>>;
  auto end = [](PhotoEffect* last) {
    const std::lock_guard ending(ModuleLock());
    delete last;
  };
  // Before the lock, which its end takes, should there be no memory to share it.
  std::unique_ptr<PhotoEffect, decltype(end)> made(nullptr, end);
  const std::lock_guard lock(ModuleLock());
  std::erase_if(shared, [](const auto& entry) { return entry.second.expired(); });
  std::weak_ptr<PhotoEffect>& place = shared[{photo, levels}];
  if (auto effect = place.lock()) return effect;
  made.reset(new PhotoEffect(photo, levels));
  std::shared_ptr<PhotoEffect> effect(std::move(made));
  place = effect;
  return effect;
}

PhotoEffect::PhotoEffect(std::string photo, std::string levels)
    : photo_(std::move(photo)), levels_(std::move(levels)) {
  TryToLoad();
}

void PhotoEffect::TryToLoad() {
  sceneId_ = 0;
  try {
    Load();
  } catch (const std::exception& error) {
    effect_.reset();
    module_.reset();
    fault_ = kNoMemory;
    if (dynamic_cast<const std::bad_alloc*>(&error) == nullptr) fault_ = error.what();
  }
}

void PhotoEffect::Load() {
  const host::Photo photo = host::OpenPhoto(photo_);
  if (const auto flaw = host::FindFlaw(photo)) SayOnce(*flaw);
  size_ = {photo.width, photo.height};
  module_ = LoadedModule();
  std::string error;
  effect_ = hfx::Effect::Create(*module_, kFirstModel, &error);
  if (!effect_) throw host::Error("the effect: " + error);
  host::SetPhoto(*effect_, photo);
  host::Apply(*effect_, {key::kLevels, levels_, {}, -1});
  hfx::ImageBuffer input(kProbeSize, kProbeSize, hfxColorspaceRGB);
  hfx::ImageBuffer output(kProbeSize, kProbeSize, hfxColorspaceRGB);
  if (host::HasPicture(*effect_, photo, {}, hfxPlayModeRender, *input.image(), output)) return;
  const std::string reason = host::WhyNoPicture(photo);
  if (!reason.empty()) throw host::Error(reason);
}

std::string PhotoEffect::Prepare(const FrameRequest& request) {
  // What was wrong may pass: memory comes back, a photograph is saved to its end. Each try that
  // fails doubles the frames until the next.
  if (!effect_ && std::has_single_bit(missed_++)) TryToLoad();
  if (!effect_) return fault_;
  if (sceneId_ != request.sceneId) SetUp(request);
  sceneId_ = request.sceneId;
  return "";
}

std::string PhotoEffect::Render(const FrameRequest& request) {
  const std::lock_guard lock(ModuleLock());
  try {
    std::string fault = Prepare(request);
    if (fault.empty()) Draw(request);
    return fault;
  } catch (const std::bad_alloc&) {
    return kNoMemory;
  } catch (const std::exception& error) {
    return error.what();
  }
}

uint64_t PhotoEffect::PictureBytes() {
  const std::lock_guard lock(ModuleLock());
  return iplxAllocatedBytes();
}

std::string PhotoEffect::Look(FrameRequest request, ShownPhoto& shown) {
  const std::lock_guard lock(ModuleLock());
  try {
    // The effect works out its view when it draws: a few pixels are enough.
    hfx::ImageBuffer input(kProbeSize, kProbeSize, hfxColorspaceRGB);
    hfx::ImageBuffer output(kProbeSize, kProbeSize, hfxColorspaceRGB);
    request.input = input.image();
    request.output = output.image();
    request.video = nullptr;
    std::string fault = Prepare(request);
    if (!fault.empty()) return fault;
    Draw(request);
    const host::RenderPlan plan = PlanOf(request);
    const hfx::RenderState state = host::FieldState(plan, request.moment.frame, 0, request.quality);
    shown.frame = host::FrameToDraw(plan, size_, state, host::DrewSquarePixels(*effect_));
    shown.view = host::DrawnView(*effect_);
    const std::string filter = host::DrawnEntry(*effect_, key::kFilter);
    shown.nearest = request.quality <= host::kFastQuality || filter == entry::kFilterRealTime;
    shown.filter = static_cast<int>(
        std::find_if(std::begin(catalogue::kFilter), std::end(catalogue::kFilter),
                     [&](const catalogue::Entry& choice) { return filter == choice.text; }) -
        std::begin(catalogue::kFilter));
    return fault;
  } catch (const std::bad_alloc&) {
    return kNoMemory;
  } catch (const std::exception& error) {
    return error.what();
  }
}

void PhotoEffect::Draw(const FrameRequest& request) {
  const host::RenderPlan plan = PlanOf(request);
  std::string error;
  if (!effect_->BeginRender(plan.playMode, &error)) {
    throw host::Error("the effect: " + error);
  }
  bool rendered = true;
  for (int32_t field = 0; rendered && field < host::FieldsOf(plan); ++field) {
    const hfx::RenderState state =
        host::FieldState(plan, request.moment.frame, field, request.quality);
    if (track_) host::ShowView(*effect_, track_->At(state));
    hfxImage to = *request.output, from = *request.input;
    if (plan.format.Interlaced()) {
      to = hfx::FieldView(to, state.topField);
      from = hfx::FieldView(from, state.topField);
    }
    rendered = effect_->Render(state, &from, &to, &error);
    if (rendered && request.video != nullptr) KeepVideo(request, plan, state, field == 0, to);
  }
  const bool ended = effect_->EndRender(rendered ? &error : nullptr);
  if (!rendered || !ended) throw host::Error("the effect: " + error);
}

void PhotoEffect::KeepVideo(const FrameRequest& request, const host::RenderPlan& plan,
                            const hfx::RenderState& state, bool firstField, hfxImage& output) {
  // Outlines may lie anywhere, and a copy reduced for playing has its own edges.
  if (request.scene->outlined || plan.playMode != hfxPlayModeRender) return;
  const DrawnFrame frame = host::FrameToDraw(plan, size_, state, host::DrewSquarePixels(*effect_));
  const bool nearest = request.quality <= host::kFastQuality ||
                       host::DrawnEntry(*effect_, key::kFilter) == entry::kFilterRealTime;
  const CoveredPixels covered = CoveredBy(
      frame, host::DrawnView(*effect_), {plan.format.size.width, plan.format.size.height}, nearest);
  if (request.covered != nullptr) {
    *request.covered = firstField ? covered : CoveredByEither(*request.covered, covered);
  }
  const bool fields = plan.format.Interlaced();
  const int32_t first = fields && !state.topField ? 1 : 0, step = fields ? 2 : 1;
  if (fields) {
    KeepVideoBeside(covered, hfx::FieldView(*request.video, state.topField), first, step, output);
  } else {
    KeepVideoBeside(covered, *request.video, first, step, output);
  }
  if (!request.overNothing || nearest) return;
  SetPartsAsAlpha(frame, host::DrawnView(*effect_), covered, first, step, output);
}

void PhotoEffect::SetUp(const FrameRequest& request) {
  sceneId_ = 0;  // until all is set
  const Scene& scene = *request.scene;
  host::RenderPlan plan;
  plan.format = PlanOf(request).format;
  plan.settings = scene.settings;
  plan.views = scene.views;
  plan.motion = scene.motion;
  // How fast a smooth way is gone depends on how long it is; progress goes through a project's.
  plan.frames =
      scene.project && scene.frames == 0 ? scene.project->frames : std::max(1, scene.frames);
  plan = host::KeyedPlan(plan, size_);
  track_ = host::ViewTrack::For(plan, size_);
  // What this scene leaves to the effect, another one may have set, or a render.
  for (hfxParameter* parameter : hfx::ParametersOf(effect_->instance())) {
    std::array<uint8_t, 3 * sizeof(double)> bytes{};
    const int32_t size = hfx::ValueSizeOf(*parameter);
    hfx::RemoveAllKeys(*parameter);
    if (hfx::DefaultValueOf(*parameter, bytes.data(), size)) {
      hfx::SetBoundValue(*parameter, bytes.data(), size);
    }
  }
  if (track_) {
    host::ApplyWithoutMove(*effect_, plan.settings);
  } else {
    for (const host::Setting& setting : plan.settings) host::Apply(*effect_, setting);
  }
  effect_->ParametersChanged();
}

}  // namespace kelto::frei0r
