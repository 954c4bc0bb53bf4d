// ICC profiles for tests, made by Little CMS.
#pragma once

#include "tests/runtime/stills/still_test.h"

namespace kelto::stills {

Bytes SrgbProfile();
/// sRGB whose red and green primaries have changed places: red pixels look green.
Bytes SwappedProfile();
/// Wide primaries with the sRGB curve (Display P3) and with a gamma of 563/256 (Adobe RGB 1998).
Bytes DisplayP3Profile();
Bytes WideGammaProfile();
/// sRGB primaries with samples proportional to light.
Bytes LinearProfile();
/// Grey of a gamma.
Bytes GreyProfile(double gamma);
/// Ink whose cyan darkens nothing: C, M, Y and K of full strength leave the lightness given by
/// magenta, yellow and black alone, without colour.
Bytes InkProfile();

/// The sRGB curve (IEC 61966-2-1) on 0..1.
double SrgbToLinear(double v);
double LinearToSrgb(double v);

}  // namespace kelto::stills
