#include "runtime/stills/lcms_profile.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace kelto::stills {

bool IsSrgbInEffect(void* profile, void* srgb) {
  const Transform transform(cmsCreateTransformTHR(cmsGetProfileContextID(profile), profile,
                                                  TYPE_BGRA_8, srgb, TYPE_BGRA_8, kColorIntent,
                                                  kColorFlags));
  if (!transform) return false;
  std::vector<uint8_t> lattice;
  for (int b = 0; b <= 255; b += 17) {
    for (int g = 0; g <= 255; g += 17) {
      for (int r = 0; r <= 255; r += 17) {
        const int pixel[] = {b, g, r, 255};
        lattice.insert(lattice.end(), pixel, pixel + 4);
      }
    }
  }
  std::vector<uint8_t> seen(lattice.size());
  cmsDoTransform(transform.get(), lattice.data(), seen.data(),
                 static_cast<cmsUInt32Number>(lattice.size() / 4));
  return std::equal(lattice.begin(), lattice.end(), seen.begin(),
                    [](uint8_t a, uint8_t b) { return std::abs(a - b) <= 1; });
}

uint32_t ColorSpaceOf(std::span<const uint8_t> icc) {
  constexpr size_t kPlace = 16;
  if (icc.size() < kPlace + 4) return 0;
  return uint32_t{icc[kPlace]} << 24 | uint32_t{icc[kPlace + 1]} << 16 |
         uint32_t{icc[kPlace + 2]} << 8 | icc[kPlace + 3];
}

}  // namespace kelto::stills
