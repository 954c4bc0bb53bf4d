#include "runtime/hfx/instance.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

#include "runtime/hfx/parameter.h"

namespace {

hfxImage* ImageAt(const std::map<int32_t, hfxImage*>& images, int32_t index) {
  const auto found = images.find(index);
  return found != images.end() ? found->second : nullptr;
}

bool SizeOf(const hfxImage* image, int32_t* width, int32_t* height) {
  if (image == nullptr) return false;
  if (width != nullptr) *width = image->GetWidth();
  if (height != nullptr) *height = image->GetHeight();
  return true;
}

void Lend(std::map<int32_t, hfxImage*>& images, int32_t index, hfxImage* image) {
  if (index < 0) return;
  if (image != nullptr) {
    images[index] = image;
  } else {
    images.erase(index);
  }
}

// Deleting a parameter takes it off its list.
void DeleteAll(const std::vector<hfxParameter*>& list) {
  while (!list.empty()) delete list.back();
}

}  // namespace

bool hfxInstance_v1::Impl::Lists(const hfxParameter* parameter) const {
  return std::find(parameters.begin(), parameters.end(), parameter) != parameters.end();
}

void hfxInstance_v1::Impl::Forget(const hfxParameter& parameter) {
  std::erase(parameters, &parameter);
  std::erase(duplicates, &parameter);
  for (hfxParameter* each : parameters) {
    hfxPGroup*& group = hfxHostAccess::Of(*each).group;
    if (group == &parameter) group = nullptr;
  }
}

hfxInstance_v1::hfxInstance_v1() : impl_(new Impl) {}

hfxInstance_v1::~hfxInstance_v1() {
  DeleteAll(impl_->duplicates);
  DeleteAll(impl_->parameters);
  delete impl_;
}

bool hfxInstance_v1::RenderFrame(const hfxRect&) { return false; }

bool hfxInstance_v1::CreateParameters() { return true; }

bool hfxInstance_v1::HasEffect() { return true; }

bool hfxInstance_v1::InPlace() { return false; }

int32_t hfxInstance_v1::BeginRender() { return 1; }

int32_t hfxInstance_v1::EndRender() { return 1; }

bool hfxInstance_v1::ChooseImage() { return false; }

bool hfxInstance_v1::GetInputSize(int32_t index, int32_t* width, int32_t* height) {
  return SizeOf(GetInput(index), width, height);
}

bool hfxInstance_v1::GetOutputSize(int32_t index, int32_t* width, int32_t* height) {
  return SizeOf(GetOutput(index), width, height);
}

bool hfxInstance_v1::CopyInstance(const hfxInstance_v1* from) {
  if (from == nullptr) return false;
  if (from == this) return true;
  impl_->record = from->impl_->record;
  impl_->recordModified = true;
  for (hfxParameter* parameter : impl_->parameters) {
    const hfxParameter* namesake = from->FindParameter(parameter->GetKeyName());
    if (namesake == nullptr || hfx::KindOf(*namesake) != hfx::KindOf(*parameter)) continue;
    hfxHostAccess::Of(*parameter).CopyValueFrom(hfxHostAccess::Of(*namesake));
  }
  return true;
}

hfxImage* hfxInstance_v1::GetInput(int32_t index) const { return ImageAt(impl_->inputs, index); }

hfxImage* hfxInstance_v1::GetOutput(int32_t index) const { return ImageAt(impl_->outputs, index); }

const void* hfxInstance_v1::GetInstanceData(int32_t* length) const {
  const auto& record = impl_->record;
  if (length != nullptr) *length = record ? static_cast<int32_t>(record->size() - 1) : 0;
  return record ? record->data() : nullptr;
}

void hfxInstance_v1::SetInstanceData(const void* record, int32_t length) {
  if (record == nullptr) {
    impl_->record.reset();
    return;
  }
  if (length < 0) return;
  // Built aside first: `record` may lie in the one that is replaced.
  std::vector<unsigned char> copy(static_cast<size_t>(length) + 1, 0);
  std::memcpy(copy.data(), record, static_cast<size_t>(length));
  impl_->record = std::move(copy);
}

void hfxInstance_v1::SetInstanceDataModified(bool modified) { impl_->recordModified = modified; }

void hfxInstance_v1::AddParameter(hfxParameter* parameter, hfxPGroup* group) {
  if (parameter == nullptr) return;
  auto& added = hfxHostAccess::Of(*parameter);
  if (added.owner != nullptr) return;
  auto& list = FindParameter(parameter->GetKeyName()) ? impl_->duplicates : impl_->parameters;
  std::unique_ptr<hfxParameter> owned(parameter);  // from here on, memory for the list or not
  list.push_back(owned.get());
  static_cast<void>(owned.release());  // the list's now
  added.owner = this;
  added.group = impl_->Lists(group) && group != parameter ? group : nullptr;
}

hfxParameter* hfxInstance_v1::FindParameter(const char* key) const {
  if (key == nullptr) return nullptr;
  for (hfxParameter* parameter : impl_->parameters) {
    if (std::strcmp(parameter->GetKeyName(), key) == 0) return parameter;
  }
  return nullptr;
}

int32_t hfxInstance_v1::GetCurrentFrame() const { return impl_->state.currentFrame; }

int32_t hfxInstance_v1::GetTotalFrames() const { return impl_->state.totalFrames; }

int32_t hfxInstance_v1::GetField() const { return impl_->state.field; }

int32_t hfxInstance_v1::GetVideoType() const { return impl_->state.videoType; }

int32_t hfxInstance_v1::GetFieldMode() const { return impl_->state.fieldMode; }

bool hfxInstance_v1::IsTopField() const { return impl_->state.topField; }

double hfxInstance_v1::GetDisplayAspect() const { return impl_->state.displayAspect; }

double hfxInstance_v1::GetQuality() const { return impl_->state.quality; }

bool hfxInstance_v1::Aborted() const {
  return impl_->state.aborted || (impl_->abortQuery && impl_->abortQuery());
}

namespace hfx {

RenderState& StateOf(hfxInstance_v1& instance) { return hfxHostAccess::Of(instance).state; }

void SetAbortQuery(hfxInstance_v1& instance, std::function<bool()> query) {
  hfxHostAccess::Of(instance).abortQuery = std::move(query);
}

void SetInput(hfxInstance_v1& instance, int32_t index, hfxImage* image) {
  Lend(hfxHostAccess::Of(instance).inputs, index, image);
}

void SetOutput(hfxInstance_v1& instance, int32_t index, hfxImage* image) {
  Lend(hfxHostAccess::Of(instance).outputs, index, image);
}

void ClearInstanceData(hfxInstance_v1& instance) {
  instance.SetInstanceData(nullptr, 0);
  instance.SetInstanceDataModified(false);
}

bool InstanceDataModified(const hfxInstance_v1& instance) {
  return hfxHostAccess::Of(instance).recordModified;
}

std::vector<hfxParameter*> ParametersOf(const hfxInstance_v1& instance) {
  return hfxHostAccess::Of(instance).parameters;
}

}  // namespace hfx
