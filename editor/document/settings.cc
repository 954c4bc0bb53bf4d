#include "editor/document/settings.h"

#include <cmath>
#include <nlohmann/json.hpp>

#include "host/base/error.h"
#include "host/options/number.h"
#include "host/options/rate.h"
#include "host/project/paths.h"

namespace kelto::editor {
namespace {

using nlohmann::ordered_json;

ordered_json JsonOf(const host::SettingValue& value) {
  return std::visit([](const auto& held) { return ordered_json(held); }, value);
}

/// A file that the project names in `field`.
Document WithFile(const Document& document, const char* field, const std::string& path) {
  return Changed(document, [&](ordered_json& json) {
    if (path.empty()) {
      json.erase(field);
    } else {
      json[field] = host::ForProject(document.path, path);
    }
  });
}

Document WithFilm(const Document& document, const char* field, const ordered_json& value) {
  return Changed(document, [&](ordered_json& json) { json["film"][field] = value; });
}

}  // namespace

Document WithMotion(const Document& document, host::MotionLaw law) {
  return Changed(document, [&](ordered_json& json) { json["motion"] = host::WordOf(law); });
}

Document WithSize(const Document& document, int32_t width, int32_t height) {
  return Changed(document, [&](ordered_json& json) {
    json["film"]["width"] = width;
    json["film"]["height"] = height;
    // The shape of another size; pixels are square unless a project says otherwise.
    json["film"].erase("displayAspect");
  });
}

Document WithRate(const Document& document, const std::string& rate) {
  const host::RenderPlan plan = PlanOf(document);
  const double seconds = plan.frames / plan.format.rate.PerSecond();
  const host::FrameRate parsed = host::ParseRate(rate);
  return Changed(document, [&](ordered_json& json) {
    ordered_json& film = json["film"];
    if (parsed.denominator == 1) {
      film["rate"] = parsed.numerator;
    } else {
      film["rate"] = std::to_string(parsed.numerator) + "/" + std::to_string(parsed.denominator);
    }
    if (film.contains("frames")) film["frames"] = host::FramesOf(seconds, parsed);
  });
}

Document WithFields(const Document& document, host::FieldOrder fields) {
  const char* word = fields == host::FieldOrder::kTopFirst      ? "top"
                     : fields == host::FieldOrder::kBottomFirst ? "bottom"
                                                                : "progressive";
  return WithFilm(document, "fields", word);
}

Document WithLength(const Document& document, double seconds) {
  return Changed(document, [&](ordered_json& json) {
    json["film"].erase("frames");
    json["film"]["seconds"] = std::round(seconds * 1000.0) / 1000.0;
  });
}

Document WithParameter(const Document& document, const std::string& parameter,
                       const host::SettingValue& value) {
  return Changed(document, [&](ordered_json& json) {
    json["parameters"][parameter] = {{"value", JsonOf(value)}};
  });
}

Document WithKeys(const Document& document, const host::Setting& setting) {
  return Changed(document, [&](ordered_json& json) {
    ordered_json keys = ordered_json::array();
    for (size_t i = 0; i < setting.keys.size(); ++i) {
      ordered_json key = {{"time", setting.keys[i].time}, {"value", JsonOf(setting.keys[i].value)}};
      if (static_cast<int32_t>(i) == setting.activeKey) key["active"] = true;
      keys.push_back(key);
    }
    if (keys.empty()) {
      json["parameters"][setting.parameter] = ordered_json::object();
    } else {
      json["parameters"][setting.parameter] = keys;
    }
  });
}

Document WithAudio(const Document& document, const std::string& path) {
  return WithFile(document, "audio", path);
}

Document WithVideo(const Document& document, const std::string& path) {
  const Document changed = WithFile(document, "over", path);
  if (path.empty()) return changed;
  return WithParameter(changed, "compositeover", std::string("Background: Video"));
}

Document WithCaption(const Document& document, const std::string& text) {
  return Changed(document, [&](ordered_json& json) {
    if (text.empty()) {
      json.erase("caption");
    } else {
      json["caption"] = text;
    }
  });
}

Document WithPhoto(const Document& document, const std::string& path) {
  return WithFile(document, "image", path);
}

}  // namespace kelto::editor
