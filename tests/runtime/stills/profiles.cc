#include "tests/runtime/stills/profiles.h"

#include <lcms2.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace kelto::stills {
namespace {

constexpr cmsCIExyY kD65 = {0.3127, 0.3290, 1};

Bytes Saved(cmsHPROFILE profile) {
  cmsUInt32Number length = 0;
  cmsSaveProfileToMem(profile, nullptr, &length);
  Bytes bytes(length);
  const bool saved = cmsSaveProfileToMem(profile, bytes.data(), &length);
  cmsCloseProfile(profile);
  if (!saved) throw std::runtime_error("a profile of the tests cannot be saved");
  return bytes;
}

cmsToneCurve* SrgbCurve() {
  const double parameters[] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
  return cmsBuildParametricToneCurve(nullptr, 4, parameters);
}

Bytes RgbProfile(const cmsCIExyYTRIPLE& primaries, cmsToneCurve* curve) {
  cmsToneCurve* curves[] = {curve, curve, curve};
  Bytes bytes = Saved(cmsCreateRGBProfile(&kD65, &primaries, curves));
  cmsFreeToneCurve(curve);
  return bytes;
}

constexpr cmsCIExyYTRIPLE kSrgbPrimaries = {{0.64, 0.33, 1}, {0.30, 0.60, 1}, {0.15, 0.06, 1}};

/// Lightness of the ink profile, in the 16-bit Lab encoding of version 4.
cmsInt32Number InkToLab(const cmsUInt16Number ink[], cmsUInt16Number lab[], void*) {
  const double black = std::max({ink[1], ink[2], ink[3]}) / 65535.0;
  lab[0] = static_cast<cmsUInt16Number>(std::lround((1 - black) * 65535));
  lab[1] = lab[2] = 0x8080;
  return TRUE;
}

}  // namespace

Bytes SrgbProfile() { return Saved(cmsCreate_sRGBProfile()); }

Bytes SwappedProfile() {
  return RgbProfile({kSrgbPrimaries.Green, kSrgbPrimaries.Red, kSrgbPrimaries.Blue}, SrgbCurve());
}

Bytes DisplayP3Profile() {
  return RgbProfile({{0.680, 0.320, 1}, {0.265, 0.690, 1}, {0.150, 0.060, 1}}, SrgbCurve());
}

Bytes WideGammaProfile() {
  return RgbProfile({{0.64, 0.33, 1}, {0.21, 0.71, 1}, {0.15, 0.06, 1}},
                    cmsBuildGamma(nullptr, 563.0 / 256));
}

Bytes LinearProfile() { return RgbProfile(kSrgbPrimaries, cmsBuildGamma(nullptr, 1)); }

Bytes GreyProfile(double gamma) {
  cmsToneCurve* curve = cmsBuildGamma(nullptr, gamma);
  Bytes bytes = Saved(cmsCreateGrayProfile(cmsD50_xyY(), curve));
  cmsFreeToneCurve(curve);
  return bytes;
}

Bytes InkProfile() {
  cmsHPROFILE profile = cmsCreateProfilePlaceholder(nullptr);
  cmsSetProfileVersion(profile, 4.3);
  cmsSetDeviceClass(profile, cmsSigOutputClass);
  cmsSetColorSpace(profile, cmsSigCmykData);
  cmsSetPCS(profile, cmsSigLabData);
  cmsPipeline* pipeline = cmsPipelineAlloc(nullptr, 4, 3);
  cmsStage* table = cmsStageAllocCLut16bit(nullptr, 5, 4, 3, nullptr);
  cmsStageSampleCLut16bit(table, InkToLab, nullptr, 0);
  // Identity curves on both sides: the tag's form asks for them.
  cmsPipelineInsertStage(pipeline, cmsAT_END, cmsStageAllocToneCurves(nullptr, 4, nullptr));
  cmsPipelineInsertStage(pipeline, cmsAT_END, table);
  cmsPipelineInsertStage(pipeline, cmsAT_END, cmsStageAllocToneCurves(nullptr, 3, nullptr));
  cmsWriteTag(profile, cmsSigAToB0Tag, pipeline);
  cmsWriteTag(profile, cmsSigMediaWhitePointTag, cmsD50_XYZ());
  cmsPipelineFree(pipeline);
  return Saved(profile);
}

double SrgbToLinear(double v) {
  return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
}

double LinearToSrgb(double v) {
  return v <= 0.0031308 ? v * 12.92 : 1.055 * std::pow(v, 1 / 2.4) - 0.055;
}

}  // namespace kelto::stills
