#include "runtime/hfx/failure.h"
#include "runtime/hfx/host.h"

namespace hfx {
namespace {

/// Lends input and output 0 while it lives, then what was lent before.
class LentImages {
 public:
  LentImages(hfxInstance_v1& instance, hfxImage* input, hfxImage* output)
      : instance_(instance), input_(instance.GetInput(0)), output_(instance.GetOutput(0)) {
    SetInput(instance, 0, input);
    SetOutput(instance, 0, output);
  }
  ~LentImages() {
    SetInput(instance_, 0, input_);
    SetOutput(instance_, 0, output_);
  }
  LentImages(const LentImages&) = delete;
  LentImages& operator=(const LentImages&) = delete;

 private:
  hfxInstance_v1& instance_;
  hfxImage* input_;
  hfxImage* output_;
};

/// All of `image`; without one, the empty rectangle.
hfxRect WholeOf(const hfxImage* image) {
  if (image == nullptr) return {0, 0, -1, -1};
  return {0, 0, image->GetWidth() - 1, image->GetHeight() - 1};
}

void ReportToConsole(const std::string& error) {
  hfxGlobal::ConsolePrintf("hfx: %s\n", error.c_str());
}

}  // namespace

std::unique_ptr<Effect> Effect::Create(Module& module, uint16_t number, std::string* error) {
  const std::string name = "model " + std::to_string(number);
  const char* step = "";
  std::string thrown;
  std::unique_ptr<Effect> effect(new Effect);
  effect->module_ = &module;
  effect->number_ = number;
  const auto begin = [&](const char* operation) { return step = operation, true; };
  const bool made = Guarded("", &thrown, [&] {
    return begin("hfxNewModel_v1") && (effect->model_ = module.newModel(number)) != nullptr &&
           begin("DescribeEffect") && effect->model_->DescribeEffect() &&
           begin("DeclareConnections") && effect->model_->DeclareConnections() &&
           begin("CreateInstance") &&
           (effect->instance_ = effect->model_->CreateInstance()) != nullptr &&
           begin("CreateParameters") && effect->instance_->CreateParameters();
  });
  if (made) return effect;
  Fail(error, name + ": " + step + (thrown.empty() ? " failed" : thrown));
  return nullptr;
}

Effect::~Effect() {
  std::string error;
  const bool deleted = Guarded("DeleteInstance", &error, [&] {
    if (instance_ != nullptr) model_->DeleteInstance(instance_);
    return true;
  });
  if (!deleted) ReportToConsole(error);
  delete model_;
}

std::unique_ptr<Effect> Effect::Duplicate(std::string* error) {
  std::unique_ptr<Effect> copy = Create(*module_, number_, error);
  if (copy == nullptr) return nullptr;
  std::string reason = "CopyInstance failed";
  const bool copied =
      Guarded("CopyInstance", &reason, [&] { return copy->instance_->CopyInstance(instance_); });
  if (!copied) {
    Fail(error, "model " + std::to_string(number_) + ": " + reason);
    return nullptr;
  }
  copy->ParametersChanged();
  return copy;
}

bool Effect::ParametersChanged() {
  const hfxUpdateParamsCallback callback = DescriptionOf(*model_).updateParams;
  if (callback == nullptr) return true;
  std::string error;
  const bool accepted =
      Guarded("the update-parameters callback", &error, [&] { return callback(instance_); });
  if (!error.empty()) ReportToConsole(error);
  return accepted;
}

bool Effect::BeginRender(int32_t playMode, std::string* error) {
  SetPlayMode(playMode);
  std::string reason = "BeginRender failed";
  const bool begun = Guarded("BeginRender", &reason, [&] { return instance_->BeginRender() != 0; });
  return begun || Fail(error, reason);
}

bool Effect::Render(const RenderState& state, hfxImage* input, hfxImage* output,
                    std::string* error) {
  StateOf(*instance_) = state;
  const LentImages images(*instance_, input, output);
  const std::string frame = "frame " + std::to_string(state.currentFrame) + ": ";
  std::string thrown;
  const bool rendered = Guarded("the module", &thrown, [&] {
    WriteBoundFields(*instance_, FrameTime(state));
    return instance_->RenderFrame(WholeOf(output));
  });
  if (rendered) return true;
  if (!thrown.empty()) return Fail(error, frame + thrown);
  return Fail(error, frame + (instance_->Aborted() ? "aborted" : "RenderFrame failed"));
}

bool Effect::EndRender(std::string* error) {
  std::string reason = "EndRender failed";
  const bool ended = Guarded("EndRender", &reason, [&] { return instance_->EndRender() != 0; });
  return ended || Fail(error, reason);
}

}  // namespace hfx
