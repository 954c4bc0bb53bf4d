#include "adapters/frei0r/scene.h"

#include <cmath>
#include <filesystem>

#include "adapters/frei0r/console.h"
#include "host/error.h"
#include "host/options/choices.h"
#include "host/options/rate.h"
#include "host/options/view.h"

namespace kelto::frei0r {
namespace {

constexpr const char* kVideo = "video";
constexpr const char* kDisplaySource = "Display: Source";

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

std::optional<host::View> ViewAt(const Values& values, Role role, int index) {
  return Read(values, role, index, [](const std::string& text) -> std::optional<host::View> {
    if (text.empty()) return std::nullopt;
    return host::ParseView(text);
  });
}

std::vector<host::ViewKey> KeysOf(const Values& values, Role role) {
  const auto from = ViewAt(values, role, kFrom), to = ViewAt(values, role, kTo);
  const host::View still{values.numbers[kZoom], values.numbers[kX], values.numbers[kY]};
  const std::string arrival = EntryAt(values, role, kArrive);
  const std::string departure = EntryAt(values, role, kLeave);
  return {{0.0, from.value_or(to.value_or(still)), arrival, departure},
          {1.0, to.value_or(from.value_or(still)), arrival, departure}};
}

std::optional<host::Colour> BackgroundAt(const Values& values, Role role) {
  return Read(values, role, kBackground, [&](const std::string& text) {
    if (text != kVideo) return std::optional(host::ParseColour(text));
    if (role == Role::kSource) throw host::UsageError("a source has no video behind its picture");
    return std::optional<host::Colour>();
  });
}

/// The photograph that the parameter "image" names. Its text may also come to name a project file,
/// which the reference host's library does not read yet; this is the place where it will be opened.
std::string PhotoOf(const std::string& image) {
  if (std::filesystem::path(image).extension() != ".json") return image;
  SayOnce("image " + image + ": project files are not read here yet; showing the background");
  return "";
}

}  // namespace

Scene SceneOf(const Values& values, Role role) {
  Scene scene;
  scene.photo = PhotoOf(values.texts[kImage]);
  scene.levels = EntryAt(values, role, kLevels);
  host::RenderPlan plan;
  for (const int index : {kFilter, kPath, kDisplay, kLevels}) {
    plan.Set(Parameters(role)[static_cast<size_t>(index)].list, EntryAt(values, role, index));
  }
  plan.SetViews(KeysOf(values, role));
  scene.background = BackgroundAt(values, role);
  plan.Set("compositeover",
           std::string(scene.background ? "Background: Color" : "Background: Video"));
  if (scene.background) plan.Set("bgcolor", host::BackgroundFor(*scene.background));
  scene.settings = plan.settings;
  scene.outlined = EntryAt(values, role, kDisplay) == kDisplaySource;
  scene.frames = Read(values, role, kFrames, [](const std::string& text) {
    return text.empty() ? 0 : host::ParseFrames(text);
  });
  scene.rate = Read(values, role, kFps, host::ParseRate);
  if (values.texts[kImage].empty()) SayOnce("no photograph: set the parameter \"image\"");
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
