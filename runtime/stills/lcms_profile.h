// What the conversions to sRGB have in common, whatever they convert to.
#pragma once

#include <lcms2.h>

#include <cstdint>
#include <memory>
#include <span>

#include "runtime/stills/lcms_context.h"

namespace kelto::stills {

// Perceptual, as press profiles' tables are made for pictures; black point compensation keeps
// blacks black where a profile has no perceptual table.
constexpr cmsUInt32Number kColorIntent = INTENT_PERCEPTUAL;
constexpr cmsUInt32Number kColorFlags = cmsFLAGS_BLACKPOINTCOMPENSATION | cmsFLAGS_COPY_ALPHA;

inline cmsContext RawContext(const LcmsContext& context) {
  return static_cast<cmsContext>(context.get());
}

struct ProfileCloser {
  void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using Profile = std::unique_ptr<void, ProfileCloser>;

struct TransformDeleter {
  void operator()(void* transform) const { cmsDeleteTransform(transform); }
};
using Transform = std::unique_ptr<void, TransformDeleter>;

/// Whether no colour of a lattice moves by more than one level of 255: true of every variant of
/// sRGB in circulation, whatever it calls itself.
bool IsSrgbInEffect(void* profile, void* srgb);

/// The colour space that a profile's header names: ICC.1:2022, 7.2.8. Little CMS would give it as
/// an enumeration, which damaged profiles leave.
uint32_t ColorSpaceOf(std::span<const uint8_t> icc);

}  // namespace kelto::stills
