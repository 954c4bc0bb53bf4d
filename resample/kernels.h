// One-dimensional reconstruction kernels and windows.
//
// A kernel is even but where it says otherwise, centred on 0, in units of source samples: a weight
// table asks it for each tap's distance from the sample position. Arithmetic is single precision
// but for the steps that a kernel names; each is a pure function of its arguments, safe to call
// from any thread.
#pragma once

#include <cstdint>

namespace kelto {

/// The shape of every kernel: `x` is the distance from the centre, `data` the kernel's parameters
/// (null for kernels that take none; they ignore it).
using KernelFunction = float (*)(float x, const void* data);

/// 1 for -0.5 <= x < 0.5, else 0. Half open, so that a sample halfway between two taps belongs to
/// exactly one of them. Support 0.5. (Wolberg, "Digital Image Warping", 1990, section 5.4.)
float KernelBox(float x, const void* data);

/// Linear interpolation, 1 - |x|. Support 1. (Wolberg 1990, section 5.4.)
float KernelTriangle(float x, const void* data);

/// Quadratic B-spline. Support 1.5; smooths. (Unser, "Splines: A Perfect Fit for Signal and Image
/// Processing", IEEE Signal Processing Magazine 16(6), 1999.)
float KernelQuadratic(float x, const void* data);

/// Cubic B-spline. Support 2; smooths. (Hou and Andrews, "Cubic Splines for Image Interpolation and
/// Digital Filtering", IEEE Trans. ASSP 26(6), 1978.)
float KernelCubic(float x, const void* data);

/// Catmull-Rom spline, cubic convolution with slope parameter -1/2. Support 2; interpolates, with
/// negative lobes. (Catmull and Rom, "A Class of Local Interpolating Splines", 1974; Keys, "Cubic
/// Convolution Interpolation for Digital Image Processing", IEEE Trans. ASSP 29(6), 1981.)
float KernelCatrom(float x, const void* data);

/// Polynomial coefficients of the two halves of a Mitchell-Netravali kernel: p for |x| < 1 (its
/// linear term is always 0), q for 1 <= |x| < 2; the digit is the power of |x|.
struct MitchellCoefficients {
  float p0, p2, p3;
  float q0, q1, q2, q3;
};

/// The kernel of MitchellInit's family. Support 2. `data`: a MitchellCoefficients.
float KernelMitchell(float x, const void* data);

/// Fills the coefficients for blur `b` and ringing `c`. (Mitchell and Netravali, "Reconstruction
/// Filters in Computer Graphics", SIGGRAPH 1988: equation 8; b = c = 1/3 is their choice.)
void MitchellInit(float b, float c, MitchellCoefficients* coefficients);

/// Normal density of standard deviation 1/2: sqrt(2/pi) exp(-2 x^2), scaled in double. Not cut off:
/// the caller's support bounds it (1.25 in the filter table). (Heckbert, "Fundamentals of Texture
/// Mapping and Image Warping", 1989.)
float KernelGaussian(float x, const void* data);

/// Sinc windowed by the main lobe of a sinc `a` times wider, in double; 1 at exactly 0. Not cut
/// off: the caller's support should be `a`. `data`: a double, the lobe count a > 0. (Duchon,
/// "Lanczos Filtering in One and Two Dimensions", Journal of Applied Meteorology 18, 1979.)
float KernelSinc(float x, const void* data);

/// KernelSinc at places `step` apart, within 1e-6 of it. Few sines are evaluated: the arguments'
/// sines follow from each other by addition of angles, in double.
class SincSteps {
 public:
  SincSteps(double step, double a);
  /// The kernel at `first`, `first + step`, ...: `count` values.
  void Sample(double first, int32_t count, float* values) const;

 private:
  static constexpr int32_t kChains = 4;  ///< neighbours that are worked out side by side
  struct Angle {
    double sine = 0.0, cosine = 1.0;
  };
  static Angle AngleOf(double radians);
  static Angle Sum(const Angle& a, const Angle& b);

  double a_, turn_;
  /// What is added for 0, 1, ... kChains steps, of the sinc and of its window.
  Angle turnsU_[kChains + 1], turnsV_[kChains + 1];
};

/// 0 everywhere, because the filter table lists the kernel but pictures drawn with it are not
/// wanted.
float KernelBessel(float x, const void* data);

/// Windows, for x scaled to [-1, 1]; not cut off outside. The cosines are taken in double, rounded,
/// and combined in float. (Harris, "On the Use of Windows for Harmonic Analysis with the Discrete
/// Fourier Transform", Proceedings of the IEEE 66(1), 1978: Hann, Hamming, Blackman.)
float KernelHanning(float x, const void* data);
float KernelHamming(float x, const void* data);
float KernelBlackman(float x, const void* data);

/// Parameters of a Kaiser window: its shape and 1/I0(shape).
struct KaiserParameters {
  float a;
  float i0a;
};

/// Kaiser window I0(a sqrt(1 - x^2)) / I0(a); not a number for |x| > 1. `data`: a KaiserParameters.
/// (Kaiser, "Nonrecursive Digital Filter Design Using the I0-sinh Window Function", 1974.)
float KernelKaiser(float x, const void* data);

/// Stores the shape `a` and 1/I0(a).
void KaiserInit(float a, KaiserParameters* parameters);

/// Modified Bessel function of the first kind, order 0, by its power series in float, summed until
/// a term is at most 1e-7. (Abramowitz and Stegun, "Handbook of Mathematical Functions", 9.6.12.)
float BesselI0(float x);

}  // namespace kelto
