#include "runtime/hfx/access.h"
#include "runtime/hfx/host.h"

struct HFX_INTERNAL hfxModel_v1::Impl {
  hfx::ModelDescription description;
};

hfxModel_v1::hfxModel_v1() : impl_(new Impl) {}

hfxModel_v1::~hfxModel_v1() { delete impl_; }

bool hfxModel_v1::DescribeEffect() { return false; }

hfxInstance_v1* hfxModel_v1::CreateInstance() { return nullptr; }

bool hfxModel_v1::DeclareConnections() { return true; }

void hfxModel_v1::DeleteInstance(hfxInstance_v1* instance) { delete instance; }

const char* hfxModel_v1::GetInitString() { return ""; }

bool hfxModel_v1::QueryCapability(int32_t) { return false; }

bool hfxModel_v1::UseHardwareList() { return false; }

bool hfxModel_v1::UseLibraryList() { return false; }

void hfxModel_v1::SetType(int32_t type) { impl_->description.type = type; }

void hfxModel_v1::SetName(const char* name) { impl_->description.name = hfx::TextOrEmpty(name); }

void hfxModel_v1::SetPluginVersion(float version) { impl_->description.version = version; }

void hfxModel_v1::SetVendor(const char* vendor) {
  impl_->description.vendor = hfx::TextOrEmpty(vendor);
}

void hfxModel_v1::SetCategory(const char* category) {
  impl_->description.category = hfx::TextOrEmpty(category);
}

void hfxModel_v1::AddFormat(int32_t colorspace, int32_t depth, const char* name,
                            int32_t imgFormat) {
  impl_->description.formats.push_back(
      {colorspace, depth, hfx::TextOrEmpty(name), name != nullptr, imgFormat});
}

void hfxModel_v1::AddInput(int32_t index, const char* displayName, const char* key,
                           int32_t dataType) {
  impl_->description.inputs.push_back(
      {index, hfx::TextOrEmpty(displayName), hfx::TextOrEmpty(key), dataType});
}

void hfxModel_v1::AddOutput(int32_t index, const char* displayName, const char* key,
                            int32_t dataType) {
  impl_->description.outputs.push_back(
      {index, hfx::TextOrEmpty(displayName), hfx::TextOrEmpty(key), dataType});
}

void hfxModel_v1::SetUpdateParamsCallback(hfxUpdateParamsCallback callback) {
  impl_->description.updateParams = callback;
}

namespace hfx {

const ModelDescription& DescriptionOf(const hfxModel_v1& model) {
  return hfxHostAccess::Of(model).description;
}

}  // namespace hfx
