#include "host/base/error.h"
#include "host/effect/effect_name.h"

namespace kelto::host {

EffectName NameForEffect(const std::string& path) {
  if (path.size() <= kEffectPathBytes) return {path};
  std::string shortest = ShortestForm(path);
  if (shortest.size() <= kEffectPathBytes) return {std::move(shortest)};
  throw Error(path + ": the path has " + std::to_string(shortest.size()) +
              " characters and the effect takes 255; change to the photo's folder or link to it");
}

std::string TextFromEffect(const std::string& text) { return text; }

}  // namespace kelto::host
