#include "host/effect/drawn_state.h"

#include <array>

#include "catalogue/parameters.h"
#include "host/base/error.h"

namespace kelto::host {
namespace {

hfxParameter& Find(hfx::Effect& effect, const char* key) {
  hfxParameter* parameter = effect.instance().FindParameter(key);
  if (parameter == nullptr) throw Error("the effect has no parameter \"" + std::string(key) + "\"");
  return *parameter;
}

template <typename Value>
Value ReadField(hfx::Effect& effect, const char* key) {
  Value value{};
  if (!hfx::BoundValueOf(Find(effect, key), &value, sizeof value)) {
    throw Error("the effect's parameter \"" + std::string(key) + "\" is of another kind");
  }
  return value;
}

}  // namespace

View DrawnView(hfx::Effect& effect) {
  const auto centre = ReadField<std::array<double, 2>>(effect, key::kPosition);
  return {ReadField<double>(effect, key::kSize), centre[0], centre[1]};
}

bool DrewSquarePixels(hfx::Effect& effect) { return ReadField<bool>(effect, key::kSquarePixels); }

std::array<double, 3> DrawnBackground(hfx::Effect& effect) {
  return ReadField<std::array<double, 3>>(effect, key::kBackgroundColor);
}

std::string DrawnEntry(hfx::Effect& effect, const char* list) {
  const auto index = ReadField<int32_t>(effect, list);
  const auto* entries = dynamic_cast<const hfxPList*>(&Find(effect, list));
  if (entries == nullptr || index < 0 || index >= entries->GetNumEntries()) {
    throw Error("the effect's list \"" + std::string(list) + "\" has no entry " +
                std::to_string(index));
  }
  return entries->GetEntry(index);
}

}  // namespace kelto::host
