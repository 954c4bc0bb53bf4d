#include "host/effect/effect_settings.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <type_traits>

#include "catalogue/parameters.h"
#include "host/base/error.h"

namespace kelto::host {
namespace {

/// The effect's saved record: the path, zero-terminated and padded.
constexpr size_t kRecordSize = 2048;

constexpr std::array<double, 3> kBlack{0.0, 0.0, 0.0};
constexpr std::array<double, 3> kWhite{1.0, 1.0, 1.0};

hfxParameter& Find(hfx::Effect& effect, const std::string& key) {
  hfxParameter* parameter = effect.instance().FindParameter(key.c_str());
  if (parameter == nullptr) throw Error("the effect has no parameter \"" + key + "\"");
  return *parameter;
}

/// A value in the form that the host library passes on.
struct RawValue {
  std::array<uint8_t, 3 * sizeof(double)> bytes{};
  int32_t size = 0;
  template <typename Value>
  static RawValue Of(const Value& value) {
    static_assert(std::is_trivially_copyable_v<Value> && sizeof value <= sizeof RawValue::bytes);
    RawValue raw;
    std::memcpy(raw.bytes.data(), &value, sizeof value);
    raw.size = sizeof value;
    return raw;
  }
};

int32_t IndexOf(const hfxPList& list, const std::string& entry) {
  for (int32_t i = 0; i < list.GetNumEntries(); ++i) {
    if (entry == list.GetEntry(i)) return i;
  }
  throw Error("the effect's list \"" + std::string(list.GetKeyName()) + "\" has no entry \"" +
              entry + "\"");
}

struct RawForm {
  const hfxParameter& parameter;

  RawValue operator()(const std::string& entry) const {
    const auto* list = dynamic_cast<const hfxPList*>(&parameter);
    if (list == nullptr) {
      throw Error("the effect's \"" + std::string(parameter.GetKeyName()) + "\" is not a list");
    }
    return RawValue::Of(IndexOf(*list, entry));
  }
  template <typename Plain>
  RawValue operator()(const Plain& value) const {
    const RawValue raw = RawValue::Of(value);
    if (raw.size != hfx::ValueSizeOf(parameter)) {
      throw Error("the effect's parameter \"" + std::string(parameter.GetKeyName()) +
                  "\" takes no value of this kind");
    }
    return raw;
  }
};

RawValue RawOf(const hfxParameter& parameter, const SettingValue& value) {
  return std::visit(RawForm{parameter}, value);
}

bool Write(hfxParameter& parameter, const RawValue& value) {
  return hfx::SetBoundValue(parameter, value.bytes.data(), value.size);
}

/// The bound field as it is, put back at the end.
class KeptValue {
 public:
  explicit KeptValue(hfxParameter& parameter) : parameter_(parameter) {
    kept_.size = hfx::ValueSizeOf(parameter);
    hfx::BoundValueOf(parameter, kept_.bytes.data(), kept_.size);
  }
  ~KeptValue() { Write(parameter_, kept_); }
  KeptValue(const KeptValue&) = delete;
  KeptValue& operator=(const KeptValue&) = delete;

 private:
  hfxParameter& parameter_;
  RawValue kept_;
};

void CheckDone(bool done, const std::string& error) {
  if (!done) throw Error("the effect: " + error);
}

/// Whether two pictures share any pixel's brightness: luma, or green.
bool ShareBrightness(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b,
                     const hfxImage& image) {
  const bool rgb = image.GetColorspace() == hfxColorspaceRGB;
  for (size_t i = rgb ? 1 : 0; i < a.size(); i += rgb ? 4 : 2) {
    if (a[i] == b[i]) return true;
  }
  return false;
}

}  // namespace

void SetPhoto(hfx::Effect& effect, const Photo& photo) {
  std::array<char, kRecordSize> record{};
  std::memcpy(record.data(), photo.path.data(), std::min(photo.path.size(), kRecordSize - 1));
  effect.instance().SetInstanceData(record.data(), kRecordSize);
  effect.instance().SetInstanceDataModified(false);
}

void Apply(hfx::Effect& effect, const Setting& setting) {
  hfxParameter& parameter = Find(effect, setting.parameter);
  if (hfx::KindOf(parameter) == hfx::ParamKind::Group) {
    throw Error("the effect's \"" + setting.parameter + "\" is a group, which has no value");
  }
  hfx::RemoveAllKeys(parameter);
  if (setting.value) Write(parameter, RawOf(parameter, *setting.value));
  for (const SettingKey& key : setting.keys) {
    const RawValue value = RawOf(parameter, key.value);
    if (hfx::SetKey(parameter, key.time, value.bytes.data(), value.size) < 0) {
      throw Error("the effect's parameter \"" + setting.parameter + "\" takes no such key");
    }
  }
  hfx::SetActiveKey(parameter, setting.activeKey);
}

void ApplyWithoutMove(hfx::Effect& effect, std::span<const Setting> settings) {
  constexpr std::array kMoving = {key::kSize, key::kPosition, key::kInVelocity, key::kOutVelocity,
                                  key::kPath};
  for (const Setting& setting : settings) {
    if (std::find(kMoving.begin(), kMoving.end(), setting.parameter) == kMoving.end()) {
      Apply(effect, setting);
    }
  }
  // The effect measures smooth paths anew with every view, at as many points as the film is long.
  Apply(effect, {key::kPath, entry::kPathLinear, {}, -1});
}

void ShowView(hfx::Effect& effect, const View& view) {
  // The effect takes no notice of a single key. Equal ones need no easing and no length.
  const auto hold = [&](const char* key, const RawValue& value) {
    hfxParameter& parameter = Find(effect, key);
    for (const double time : {0.0, 1.0}) {
      if (hfx::SetKey(parameter, time, value.bytes.data(), value.size) < 0) {
        throw Error("the effect's parameter \"" + std::string(key) + "\" takes no such key");
      }
    }
  };
  hold(key::kSize, RawValue::Of(view.zoom));
  hold(key::kPosition, RawValue::Of(std::array{view.centreX, view.centreY}));
  effect.ParametersChanged();
}

bool HasPicture(hfx::Effect& effect, const Photo& photo, hfx::RenderState state, int32_t playMode,
                hfxImage& input, hfx::ImageBuffer& output) {
  // Without keys the effect fits the photo to the frame, and where the display has the photo's own
  // shape the frame holds nothing else: drawn over black and over white, a photo looks the same
  // twice, and no photo nowhere.
  hfxParameter &display = Find(effect, key::kDisplay),
               &background = Find(effect, key::kBackgroundColor);
  hfxParameter& over = Find(effect, key::kCompositeOver);
  const KeptValue keptDisplay(display), keptBackground(background), keptOver(over);
  Write(display, RawOf(display, std::string(entry::kDisplayTarget)));
  Write(over, RawOf(over, std::string(entry::kOverColor)));
  state.displayAspect = static_cast<double>(photo.width) / photo.height;
  state.quality = 0.5;  // the fastest filter
  const auto draw = [&](const std::array<double, 3>& rgb) {
    std::string error;
    Write(background, RawOf(background, rgb));
    CheckDone(effect.Render(state, &input, output.image(), &error), error);
    return output.bytes();
  };
  std::string error;
  CheckDone(effect.BeginRender(playMode, &error), error);
  bool shown = false;
  try {
    const std::vector<uint8_t> overBlack = draw(kBlack);
    shown = ShareBrightness(overBlack, draw(kWhite), *output.image());
  } catch (...) {
    effect.EndRender(nullptr);
    throw;
  }
  CheckDone(effect.EndRender(&error), error);
  return shown;
}

std::string WhyNoPicture(const Photo& photo) {
  if (const auto fault = FindFault(photo)) {
    return photo.given + ": cannot be read as a picture: " + *fault;
  }
  // A photo of a single row or column is one that the effect may have and yet not draw.
  if (std::min(photo.width, photo.height) == 1) return "";
  return photo.given + ": the effect could not load it; " + std::to_string(photo.width) + "x" +
         std::to_string(photo.height) + " pixels may need more memory than there is";
}

}  // namespace kelto::host
