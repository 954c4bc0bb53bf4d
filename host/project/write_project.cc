#include <filesystem>
#include <nlohmann/json.hpp>
#include <system_error>

#include "catalogue/parameters.h"
#include "host/base/error.h"
#include "host/base/shown_text.h"
#include "host/files/output_file.h"
#include "host/files/path_text.h"
#include "host/options/rate.h"
#include "host/plan/default_plan.h"
#include "host/project/display_aspect.h"
#include "host/project/layout.h"
#include "host/project/memory_reserve.h"
#include "host/project/paths.h"
#include "host/project/plan_json.h"
#include "host/project/project_file.h"
#include "host/project/schema.h"
#include "host/project/tour_json.h"
#include "host/project/written_project.h"

namespace kelto::host {
namespace {

using nlohmann::ordered_json;

/// Whether a project without a length would be as long as the plan by its list of views. The length
/// is left out then, so that changed times of views are not scaled to it.
bool LengthFollowsFromViews(const RenderPlan& plan) {
  if (plan.views.empty()) return false;
  const double seconds = HasTimes(plan.views) ? SecondsOf(plan.views) : kUsualSeconds;
  return seconds * plan.format.rate.PerSecond() < kMaxFrames &&
         plan.frames == FramesOf(seconds, plan.format.rate);
}

ordered_json FilmOf(const RenderPlan& plan) {
  const FilmFormat& format = plan.format;
  ordered_json film;
  film["width"] = format.size.width;
  film["height"] = format.size.height;
  if (format.rate.denominator == 1) {
    film["rate"] = format.rate.numerator;
  } else {
    film["rate"] =
        std::to_string(format.rate.numerator) + "/" + std::to_string(format.rate.denominator);
  }
  if (!LengthFollowsFromViews(plan)) film["frames"] = plan.frames;
  film["fields"] = format.fields == FieldOrder::kTopFirst      ? "top"
                   : format.fields == FieldOrder::kBottomFirst ? "bottom"
                                                               : "progressive";
  film["displayAspect"] = DisplayAspectText(format);
  return film;
}

ordered_json JsonOf(const SettingValue& value) {
  return std::visit([](const auto& held) { return ordered_json(held); }, value);
}

ordered_json JsonOf(const Setting& setting) {
  if (setting.keys.empty()) {
    ordered_json constant = ordered_json::object();
    if (setting.value) constant["value"] = JsonOf(*setting.value);
    return constant;
  }
  ordered_json keys = ordered_json::array();
  for (size_t i = 0; i < setting.keys.size(); ++i) {
    ordered_json key;
    key["time"] = setting.keys[i].time;
    key["value"] = JsonOf(setting.keys[i].value);
    if (static_cast<int32_t>(i) == setting.activeKey) key["active"] = true;
    keys.push_back(std::move(key));
  }
  return keys;
}

ordered_json ParametersOf(const RenderPlan& plan) {
  ordered_json parameters = ordered_json::object();
  for (const catalogue::Parameter& parameter : catalogue::kParameters) {
    const std::string name = parameter.key;
    if (!plan.views.empty() && MovesTheView(name)) continue;
    const Setting* setting = plan.FindSetting(name);
    // Said outright, since a project that is silent means the usual value.
    parameters[name] = setting != nullptr ? JsonOf(*setting) : ordered_json::object();
  }
  for (const Setting& setting : plan.settings) {
    if (!parameters.contains(setting.parameter)) {
      throw Error("a project has no parameter \"" + setting.parameter + "\"");
    }
  }
  return parameters;
}

}  // namespace

ordered_json FilmJson(const std::string& path, const RenderPlan& plan) {
  ordered_json document;
  // A name that means the same on every machine; editors look for it beside the project.
  document["$schema"] = "project.schema.json";
  document["image"] = ForProject(path, plan.photo);
  if (plan.rotate != 0) document["rotate"] = plan.rotate;
  if (!plan.over.empty()) document["over"] = ForProject(path, plan.over);
  if (!plan.audio.empty()) document["audio"] = ForProject(path, plan.audio);
  if (plan.loop) document["loop"] = true;
  if (plan.beside == Beside::kBlur) document["beside"] = "blur";
  if (!plan.caption.text.empty()) document["caption"] = plan.caption.text;
  document["film"] = FilmOf(plan);
  document["motion"] = WordOf(plan.motion);
  if (!plan.views.empty()) document["views"] = JsonOf(plan.views);
  document["playMode"] = plan.playMode;
  if (plan.transparent) document["transparent"] = true;
  if (plan.linearLight) document["linearLight"] = true;
  document["parameters"] = ParametersOf(plan);
  return document;
}

std::string WrittenProject(const std::string& path, const std::function<ordered_json()>& document,
                           const std::function<void(const std::string& text)>& read) {
  try {
    const MemoryReserve reserve(0);
    std::string text = LaidOut(document());
    // Nothing is written that could not be read.
    read(text);
    return text;
  } catch (const Error& error) {
    const std::string name = path + ": ";
    std::string fault = error.what();
    if (fault.starts_with(name)) fault.erase(0, name.size());
    throw Error(name + "cannot be kept as a project: " + fault);
  }
}

std::string ProjectText(const std::string& path, const RenderPlan& plan) {
  return WrittenProject(
      path, [&] { return FilmJson(path, plan); },
      [&](const std::string& text) { ParseProject(text, path); });
}

void CheckProjectName(const std::string& path) {
  if (IsProjectName(path)) return;
  throw UsageError(path + ": a project's name ends in .json, or it would be taken for a picture");
}

void WriteProjectText(const std::string& path, const std::string& json,
                      const std::vector<std::string>& sources) {
  for (const std::string& used : sources) {
    std::error_code error;
    if (std::filesystem::equivalent(PathOf(path), PathOf(used), error)) {
      throw Error(path + ": is used by the project itself; give the project another name");
    }
  }
  OutputFile file(path);
  // The same values, wherever it is read from; the standard output may be a terminal.
  const std::string text = path == kStandardOutput ? ShownJson(json) : json;
  file.Write(text.data(), text.size());
  file.Finish();
}

void WriteProject(const std::string& path, const RenderPlan& plan) {
  if (path != kStandardOutput) CheckProjectName(path);
  WriteProjectText(path, ProjectText(path, plan), {plan.photo, plan.over, plan.audio});
}

}  // namespace kelto::host
