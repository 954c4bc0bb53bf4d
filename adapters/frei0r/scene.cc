#include "adapters/frei0r/scene.h"

#include <array>
#include <cmath>

#include "adapters/frei0r/console.h"
#include "catalogue/parameters.h"
#include "host/base/error.h"
#include "host/effect/photo.h"
#include "host/options/choices.h"
#include "host/options/rate.h"
#include "host/options/view.h"
#include "host/project/project_file.h"

namespace kelto::frei0r {
namespace {

constexpr const char *kVideo = "video", *kNone = "none";

/// What `parse` makes of a text; of the default, when that fails.
template <typename Parse>
auto Read(const Values& values, Role role, int index, Parse parse) {
  const Parameter& parameter = Parameters(role)[static_cast<size_t>(index)];
  const std::string& text = values.texts[static_cast<size_t>(index)];
  try {
    return parse(text.empty() ? parameter.text : text);
  } catch (const host::Error& error) {
    SayOnce(std::string(parameter.name) + " " + text + ": " + error.what());
  }
  return parse(parameter.text);
}

std::string EntryAt(const Values& values, Role role, int index) {
  const char* list = Parameters(role)[static_cast<size_t>(index)].list;
  return Read(values, role, index,
              [&](const std::string& word) { return host::EntryOf(host::ListOf(list), word); });
}

std::optional<View> ViewAt(const Values& values, Role role, int index) {
  return Read(values, role, index, [](const std::string& text) -> std::optional<View> {
    if (text.empty()) return std::nullopt;
    return host::ParseView(text);
  });
}

std::vector<host::ViewKey> KeysOf(const Values& values, Role role) {
  const auto from = ViewAt(values, role, kFrom), to = ViewAt(values, role, kTo);
  const View still{values.numbers[kZoom], values.numbers[kX], values.numbers[kY]};
  const std::string arrival = EntryAt(values, role, kArrive);
  const std::string departure = EntryAt(values, role, kLeave);
  return {{0.0, from.value_or(to.value_or(still)), arrival, departure},
          {1.0, to.value_or(from.value_or(still)), arrival, departure}};
}

std::optional<host::Colour> BackgroundAt(const Values& values, Role role) {
  return Read(values, role, kBackground, [&](const std::string& text) {
    if (text == kNone) return std::optional(host::kNothing);
    if (text != kVideo) return std::optional(host::ParseColour(text));
    if (role == Role::kSource) throw host::UsageError("a source has no video behind its picture");
    return std::optional<host::Colour>();
  });
}

/// Whether a text is still as it was at first.
bool IsUnset(const Values& values, Role role, int index) {
  const std::string& text = values.texts[static_cast<size_t>(index)];
  return text.empty() || text == Parameters(role)[static_cast<size_t>(index)].text;
}

bool ViewsAreUnset(const Values& values, Role role) {
  const Values usual = DefaultValues(role);
  for (const int index : {kZoom, kX, kY}) {
    if (values.numbers[static_cast<size_t>(index)] != usual.numbers[static_cast<size_t>(index)]) {
      return false;
    }
  }
  return IsUnset(values, role, kFrom) && IsUnset(values, role, kTo);
}

/// The place of the photograph's name: the first that is set, "image" without any.
int PhotoPlace(const Values& values) {
  for (const int index : kPhotoNames) {
    if (!values.texts[static_cast<size_t>(index)].empty()) return index;
  }
  return kImage;
}

/// The plan of a project; null, with a line on the console, when it cannot be read.
std::shared_ptr<const host::RenderPlan> ProjectAt(const std::string& path, const char* parameter) {
  try {
    return std::make_shared<const host::RenderPlan>(host::ReadProject(path));
  } catch (const host::Error& error) {
    SayOnce(std::string(parameter) + " " + error.what());
    return nullptr;
  }
}

/// Lets the parameters change `plan`: all of them, or those that are not as they were at first.
void ApplyParameters(const Values& values, Role role, bool all, host::RenderPlan& plan) {
  for (const int index : {kFilter, kPath, kDisplay, kLevels}) {
    if (!all && IsUnset(values, role, index)) continue;
    plan.Set(Parameters(role)[static_cast<size_t>(index)].list, EntryAt(values, role, index));
  }
  if (all || !ViewsAreUnset(values, role)) plan.SetViews(KeysOf(values, role));
  for (const int index : {kLeave, kArrive}) {
    if (IsUnset(values, role, index)) continue;
    plan.SetVelocity(Parameters(role)[static_cast<size_t>(index)].list,
                     EntryAt(values, role, index));
  }
  if (!all && IsUnset(values, role, kBackground)) return;
  const auto background = BackgroundAt(values, role);
  plan.Set(key::kCompositeOver, std::string(background ? entry::kOverColor : entry::kOverVideo));
  if (background) plan.Set(key::kBackgroundColor, host::BackgroundFor(*background));
}

/// The law of the parameter "motion"; else the plan's, but views that were given go steadily.
host::MotionLaw MotionAt(const Values& values, Role role, const host::RenderPlan& plan) {
  const bool views = !IsUnset(values, role, kFrom) || !IsUnset(values, role, kTo);
  const bool steady = views && plan.motion == host::MotionLaw::kLinear;
  const host::MotionLaw usual = steady ? host::MotionLaw::kSteady : plan.motion;
  return Read(values, role, kMotion, [&](const std::string& text) {
    return text.empty() ? usual : host::ParseMotionLaw(text);
  });
}

/// The entry of a list that the effect holds it to: its active key's, or the first without one.
std::string HeldEntry(const host::RenderPlan& plan, const char* list, const char* first) {
  const host::SettingValue* value = host::HeldValue(plan.FindSetting(list));
  const std::string* entry = value == nullptr ? nullptr : std::get_if<std::string>(value);
  return entry == nullptr ? first : *entry;
}

/// The colour that is seen beside the picture; none where the video is.
std::optional<host::Colour> ColourBehind(const host::RenderPlan& plan) {
  if (HeldEntry(plan, key::kCompositeOver, entry::kOverColor) == entry::kOverVideo)
    return std::nullopt;
  const host::SettingValue* value = host::HeldValue(plan.FindSetting(key::kBackgroundColor));
  const auto* rgb = value == nullptr ? nullptr : std::get_if<std::array<double, 3>>(value);
  if (rgb == nullptr) return host::Colour{};
  return host::ColourOf(*rgb);
}

}  // namespace

Scene SceneOf(const Values& values, Role role, const Scene& last) {
  const int place = PhotoPlace(values);
  const std::string& image = values.texts[static_cast<size_t>(place)];
  if (image.empty()) SayOnce("no photograph: set the parameter \"image\" or \"filename\"");
  Scene scene;
  host::RenderPlan plan;
  if (host::IsProjectName(image)) {
    scene.projectPath = image;
    scene.project = last.projectPath == image
                        ? last.project
                        : ProjectAt(image, Parameters(role)[static_cast<size_t>(place)].name);
    if (scene.project) plan = *scene.project;
  } else {
    plan.photo = image;
  }
  ApplyParameters(values, role, scene.project == nullptr, plan);
  scene.photo = host::PhotoName(plan);
  scene.settings = plan.settings;
  scene.views = plan.views;
  scene.motion = MotionAt(values, role, plan);
  scene.playMode = plan.playMode;
  scene.format = plan.format;
  scene.levels = HeldEntry(plan, key::kLevels, entry::kLevelsRGB);
  const bool projectsBackground = scene.project && IsUnset(values, role, kBackground);
  scene.background = projectsBackground ? ColourBehind(plan) : BackgroundAt(values, role);
  scene.outlined = HeldEntry(plan, key::kDisplay, entry::kDisplaySource) == entry::kDisplaySource;
  // A project runs by itself, too, unless the host leads it.
  if (scene.project && values.numbers[kProgress] == 0.0) scene.frames = plan.frames;
  scene.frames = Read(values, role, kFrames, [&](const std::string& text) {
    return text.empty() ? scene.frames : host::ParseFrames(text);
  });
  scene.format.rate = Read(values, role, kFps, [&](const std::string& text) {
    return text.empty() ? scene.format.rate : host::ParseRate(text);
  });
  return scene;
}

Moment MomentAt(double progress) {
  // Continued fractions; 65,000 steps are finer than any pixel.
  constexpr int64_t kMaxDenominator = 65000;
  constexpr double kCloseEnough = 1e-9;
  if (!(progress > 0.0)) return {0, 2};
  if (progress >= 1.0) return {1, 2};
  int64_t numerator = 0, denominator = 1, lastNumerator = 1, lastDenominator = 0;
  double rest = progress;
  while (std::abs(progress - static_cast<double>(numerator) / denominator) > kCloseEnough) {
    rest = 1.0 / rest;
    const double whole = std::floor(rest);
    if (whole * denominator + lastDenominator > kMaxDenominator) break;
    const auto digit = static_cast<int64_t>(whole);
    const int64_t nextNumerator = digit * numerator + lastNumerator;
    const int64_t nextDenominator = digit * denominator + lastDenominator;
    lastNumerator = numerator;
    lastDenominator = denominator;
    numerator = nextNumerator;
    denominator = nextDenominator;
    rest -= whole;
  }
  return {static_cast<int32_t>(numerator), static_cast<int32_t>(denominator + 1)};
}

}  // namespace kelto::frei0r
