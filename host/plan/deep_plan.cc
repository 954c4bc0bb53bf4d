#include "host/plan/deep_plan.h"

#include "catalogue/parameters.h"

namespace kelto::host {
namespace {

bool IsOther(const RenderPlan& plan, const char* parameter, const SettingValue& value) {
  const Setting* setting = plan.FindSetting(parameter);
  if (setting == nullptr) return false;
  const SettingValue* held = HeldValue(setting);
  return held == nullptr || *held != value;
}

}  // namespace

std::string WhyNotDeep(const RenderPlan& plan) {
  if (IsOther(plan, key::kDisplay, std::string(entry::kDisplayTarget))) {
    return "the source display";
  }
  if (IsOther(plan, key::kLevels, std::string(entry::kLevelsRGB))) return "601 levels";
  if (plan.transparent && !plan.over.empty()) return "a video behind the photo";
  if (plan.transparent && plan.beside == Beside::kBlur) return "--beside blur";
  return "";
}

bool NeedsDeep(const RenderPlan& plan) { return plan.transparent || plan.linearLight; }

}  // namespace kelto::host
