#include "adapters/openfx/actions.h"

#include <exception>
#include <new>
#include <string_view>

#include "adapters/openfx/deep_photos.h"
#include "adapters/openfx/describe.h"
#include "adapters/openfx/frame_store.h"
#include "adapters/openfx/instance.h"
#include "adapters/openfx/suites.h"

namespace kelto::openfx {
namespace {

ofx::Host* loadedBy = nullptr;

void SetHost(ofx::Host* host) { loadedBy = host; }

/// Handles are const to the entry alone.
ofx::Effect EffectOf(const void* handle) {
  return static_cast<ofx::Effect>(const_cast<void*>(handle));
}

ofx::Properties PropertiesOf(ofx::Effect effect) {
  ofx::Properties properties = nullptr;
  return TheSuites().effects->getPropertySet(effect, &properties) == ofx::kOk ? properties
                                                                              : nullptr;
}

ofx::Status CreateInstance(ofx::Effect effect) {
  Writer(PropertiesOf(effect)).Pointer(ofx::prop::kInstanceData, new Instance(effect));
  return ofx::kOk;
}

ofx::Status DestroyInstance(ofx::Effect effect) {
  delete InstanceOf(effect);
  Writer(PropertiesOf(effect)).Pointer(ofx::prop::kInstanceData, nullptr);
  return ofx::kOk;
}

ofx::Status WithInstance(std::string_view action, Instance& instance, ofx::Properties inArgs,
                         ofx::Properties outArgs) {
  if (action == ofx::action::kRender) return instance.Render(inArgs);
  if (action == ofx::action::kIsIdentity) return instance.IsIdentity(inArgs, outArgs);
  if (action == ofx::action::kRegionOfDefinition) return instance.RegionOfDefinition(outArgs);
  if (action == ofx::action::kClipPreferences) return Instance::ClipPreferences(outArgs);
  return ofx::kReplyDefault;
}

ofx::Status Act(std::string_view action, ofx::Effect effect, ofx::Properties inArgs,
                ofx::Properties outArgs) {
  if (action == ofx::action::kLoad) {
    return FetchSuites(loadedBy) ? ofx::kOk : ofx::kMissingHostFeature;
  }
  if (action == ofx::action::kUnload || action == ofx::action::kPurgeCaches) {
    EmptyFrameStore();
    ProcessDeepPhotos().Forget();
    return ofx::kOk;
  }
  if (effect == nullptr || TheSuites().effects == nullptr) return ofx::kBadHandle;
  if (action == ofx::action::kDescribe) return Describe(effect);
  if (action == ofx::action::kDescribeInContext) return DescribeInContext(effect, inArgs);
  if (action == ofx::action::kCreateInstance) return CreateInstance(effect);
  if (action == ofx::action::kDestroyInstance) return DestroyInstance(effect);
  Instance* instance = InstanceOf(effect);
  return instance == nullptr ? ofx::Status{ofx::kBadHandle}
                             : WithInstance(action, *instance, inArgs, outArgs);
}

/// Nothing is thrown into the host.
ofx::Status Main(const char* action, const void* handle, ofx::Properties inArgs,
                 ofx::Properties outArgs) {
  if (action == nullptr) return ofx::kFailed;
  try {
    return Act(action, EffectOf(handle), inArgs, outArgs);
  } catch (ofx::Status status) {
    return status;
  } catch (const std::bad_alloc&) {
    return ofx::kOutOfMemory;
  } catch (const std::exception&) {
    return ofx::kFailed;
  }
}

}  // namespace

Instance* InstanceOf(ofx::Effect effect) {
  return static_cast<Instance*>(Reader(PropertiesOf(effect)).Pointer(ofx::prop::kInstanceData));
}

ofx::Plugin& ThePlugin() {
  static ofx::Plugin plugin{
      ofx::kEffectApi, 1,   KELTO_OPENFX_IDENTIFIER, KELTO_VERSION_MAJOR, KELTO_VERSION_MINOR,
      SetHost,         Main};
  return plugin;
}

}  // namespace kelto::openfx
