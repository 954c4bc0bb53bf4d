#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <system_error>

#include "catalogue/parameters.h"
#include "host/base/caption_length.h"
#include "host/base/error.h"
#include "host/files/input_file.h"
#include "host/files/path_text.h"
#include "host/options/rate.h"
#include "host/plan/default_plan.h"
#include "host/project/diagnostic.h"
#include "host/project/display_aspect.h"
#include "host/project/json_text.h"
#include "host/project/memory_reserve.h"
#include "host/project/paths.h"
#include "host/project/plan_json.h"
#include "host/project/project_file.h"
#include "host/project/schema.h"
#include "host/project/tour_json.h"

namespace kelto::host {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

/// Times of keys, on either side of the film; the schema's bounds of "time".
constexpr double kMaxTime = 1000.0;

/// What `read` makes of a field's text; its error gets the field in front.
template <typename Read>
auto ReadField(const FieldPath& path, Read read) {
  try {
    return read();
  } catch (const Error& error) {
    throw Error(ToString(path) + ": " + error.what());
  }
}

/// A number as it is typed on a command line.
std::string TextOf(const json& value) {
  return value.is_string() ? value.get<std::string>() : value.dump();
}

std::string ReadPath(const json& document, const char* field, const std::string& project) {
  if (!document.contains(field)) return "";
  const std::string named = document[field];
  // Nowhere in a path, and nowhere in a message of one line.
  if (std::any_of(named.begin(), named.end(), [](unsigned char c) { return c < 32; })) {
    throw Error(std::string(field) + ": " + Shown(named) + " has control characters in it");
  }
  return FromProject(project, named);
}

void ReadFilm(const json& film, RenderPlan& plan) {
  FilmFormat& format = plan.format;
  const double usualSeconds =
      HasTimes(plan.views) ? SecondsOf(plan.views) : plan.frames / format.rate.PerSecond();
  format.size.width = film.value("width", format.size.width);
  format.size.height = film.value("height", format.size.height);
  if (film.contains("rate")) {
    format.rate = ReadField({"film", "rate"}, [&] { return ParseRate(TextOf(film["rate"])); });
  }
  const double seconds = film.value("seconds", usualSeconds);
  const FieldPath length = film.contains("seconds") || !HasTimes(plan.views)
                               ? FieldPath{"film", "seconds"}
                               : FieldPath{"views"};
  plan.frames = film.contains("frames")
                    ? film["frames"].get<int32_t>()
                    : ReadField(length, [&] { return FramesOf(seconds, format.rate); });
  const std::string fields = film.value("fields", "progressive");
  format.fields = fields == "top"      ? FieldOrder::kTopFirst
                  : fields == "bottom" ? FieldOrder::kBottomFirst
                                       : FieldOrder::kProgressive;
  if (film.contains("displayAspect")) {
    format.sampleAspect = ReadField({"film", "displayAspect"}, [&] {
      return ParseDisplayAspect(TextOf(film["displayAspect"]), format.size);
    });
  }
}

SettingValue ReadValue(const catalogue::Parameter& parameter, const json& value) {
  if (value.is_boolean()) return value.get<bool>();
  if (value.is_array()) {
    if (value.size() == 2) return value.get<std::array<double, 2>>();
    return value.get<std::array<double, 3>>();
  }
  if (parameter.entries.empty()) {
    if (value.is_string()) return BackgroundFor(ParseColour(value.get<std::string>()));
    return value.get<double>();
  }
  if (value.is_string()) return value.get<std::string>();
  return parameter.entries[value.get<size_t>()].text;  // the schema has looked at the index
}

/// A key's time, 0..1 over a film of this length and rate.
double ReadTime(const json& key, const RenderPlan& plan, FieldPath path) {
  if (key.contains("time")) return key["time"];
  const bool byFrame = key.contains("frame");
  path.emplace_back(byFrame ? "frame" : "seconds");
  const double frame = byFrame ? key["frame"].get<double>()
                               : key["seconds"].get<double>() * plan.format.rate.PerSecond();
  const double time = frame / std::max(plan.frames - 1, 1);
  if (std::abs(time) > kMaxTime) {
    throw Error(ToString(path) + ": " + Shown(key[path.back()]) + " is far outside the film");
  }
  return time;
}

Setting ReadKeys(const catalogue::Parameter& parameter, const json& keys, const RenderPlan& plan) {
  Setting setting{parameter.key, std::nullopt, {}, -1};
  setting.keys.reserve(keys.size());
  for (size_t i = 0; i < keys.size(); ++i) {
    FieldPath path{"parameters", parameter.key, IndexStep(i)};
    const double time = ReadTime(keys[i], plan, path);
    if (i > 0 && !(time > setting.keys.back().time)) {
      throw Error(ToString(path) + ": does not come after the key before it");
    }
    setting.keys.push_back({time, ReadValue(parameter, keys[i]["value"])});
    if (!keys[i].value("active", false)) continue;
    if (setting.activeKey >= 0) {
      path.emplace_back("active");
      throw Error(ToString(path) + ": key " + IndexStep(static_cast<size_t>(setting.activeKey)) +
                  " is active already");
    }
    setting.activeKey = static_cast<int32_t>(i);
  }
  return setting;
}

void ReadParameters(const json& parameters, RenderPlan& plan) {
  for (const catalogue::Parameter& parameter : catalogue::kParameters) {
    const std::string name = parameter.key;
    if (!parameters.contains(name)) continue;
    const json& given = parameters[name];
    if (given.empty()) {
      std::erase_if(plan.settings, [&](const Setting& s) { return s.parameter == name; });
    } else if (given.is_array()) {
      plan.SettingOf(name) = ReadKeys(parameter, given, plan);
    } else {
      plan.Set(name, ReadValue(parameter, given["value"]));
    }
  }
}

/// The list of views, which no keys may stand beside.
void ReadViews(const json& document, const json& parameters, RenderPlan& plan) {
  if (!document.contains("views")) return;
  for (const auto& [name, ignored] : parameters.items()) {
    if (!MovesTheView(name)) continue;
    throw Error("views: says where the film looks, and so does " + ToString({"parameters", name}) +
                "; leave one of them out");
  }
  plan.SetTour(ReadTour(document["views"]));
}

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

std::string ReadText(const std::string& path) {
  CheckFile(path, "a project");
  const auto unreadable = [&] {
    return Error(path + ": cannot be read: " + std::generic_category().message(errno));
  };
  const std::unique_ptr<std::FILE, CloseFile> file(OpenFile(PathOf(path), "rb"));
  if (!file) throw unreadable();
  std::string text;
  char block[65536];
  while (text.size() <= kMaxJsonText) {
    const size_t got = std::fread(block, 1, sizeof block, file.get());
    if (got == 0) break;
    text.append(block, got);
  }
  if (std::ferror(file.get()) != 0) throw unreadable();
  return text;
}

}  // namespace

std::string ReadLetters(const json& document, const char* field) {
  std::string text = document.value(field, "");
  if (text.size() > kLongestCaption) {
    throw Error(std::string(field) + ": is longer than " + std::to_string(kLongestCaption) +
                " bytes");
  }
  return text;
}

namespace {

void RefuseShow(const json& document) {
  if (!document.contains("pictures")) return;
  throw Error("pictures: this is a slideshow, whose film kelto slideshow makes");
}

}  // namespace

void RefuseShowsFields(const json& document) {
  for (const char* field : {"each", "fade", "fadeKind", "title", "move", "fit", "amount"}) {
    if (document.contains(field)) {
      throw Error(std::string(field) + ": is for slideshows, which have \"pictures\"");
    }
  }
}

void CheckFilm(const json& film) {
  RenderPlan scratch;
  ReadFilm(film, scratch);
}

RenderPlan PlanOfFilm(const json& document, const std::string& path) {
  RenderPlan plan = DefaultPlan(ReadPath(document, "image", path));
  plan.rotate = document.value("rotate", 0);
  plan.over = ReadPath(document, "over", path);
  plan.audio = ReadPath(document, "audio", path);
  plan.playMode = document.value("playMode", plan.playMode);
  if (document.value("beside", "colour") == "blur") plan.beside = Beside::kBlur;
  if (plan.beside == Beside::kBlur && !plan.over.empty()) {
    throw Error("beside: a video lies beside the picture; leave one of beside and over out");
  }
  plan.caption.text = ReadLetters(document, "caption");
  plan.transparent = document.value("transparent", plan.transparent);
  plan.linearLight = document.value("linearLight", plan.linearLight);
  const json parameters = document.value("parameters", json::object());
  ReadViews(document, parameters, plan);
  plan.loop = document.value("loop", false);
  if (plan.loop && plan.views.empty()) {
    throw Error("loop: the film has keys of its own; give it a list of views");
  }
  if (plan.loop) CloseTour(plan.views);
  const MotionLaw usual = plan.views.empty() ? MotionLaw::kLinear : MotionLaw::kSteady;
  plan.motion = ParseMotionLaw(document.value("motion", WordOf(usual)));
  ReadFilm(document.value("film", json::object()), plan);
  ReadParameters(parameters, plan);
  return plan;
}

bool IsProjectName(const std::string& path) {
  std::string ending = TextOf(PathOf(path).extension());
  for (char& c : ending) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return ending == ".json";
}

RenderPlan ParseProject(const std::string& text, const std::string& path) {
  const MemoryReserve reserve(text.size());
  try {
    const json document = ParseJson(text);
    CheckProject(document);
    RefuseShow(document);
    RefuseShowsFields(document);
    return PlanOfFilm(document, path);
  } catch (const Error& error) {
    throw Error(path + ": " + error.what());
  }
}

std::string ReadProjectText(const std::string& path) { return ReadText(path); }

RenderPlan ReadProject(const std::string& path) { return ParseProject(ReadText(path), path); }

}  // namespace kelto::host
