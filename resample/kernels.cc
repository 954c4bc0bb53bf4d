#include "resample/kernels.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kelto {
namespace {

constexpr double kPi = std::numbers::pi;

// cos(k pi x), rounded before the float arithmetic of the windows that use it.
float CosineOfHalfTurns(double k, float x) { return static_cast<float>(std::cos(k * kPi * x)); }

}  // namespace

// In the piecewise kernels the tests run upwards, so that a boundary value belongs to the interval
// that starts there.

float KernelBox(float x, const void*) { return x >= -0.5f && x < 0.5f ? 1.0f : 0.0f; }

float KernelTriangle(float x, const void*) {
  if (x < -1.0f) return 0.0f;
  if (x < 0.0f) return 1.0f + x;
  if (x < 1.0f) return 1.0f - x;
  return 0.0f;
}

float KernelQuadratic(float x, const void*) {
  if (x < -1.5f) return 0.0f;
  if (x < -0.5f) return 0.5f * ((x + 1.5f) * (x + 1.5f));
  if (x < 0.5f) return 0.75f - x * x;
  if (x < 1.5f) return 0.5f * ((x - 1.5f) * (x - 1.5f));
  return 0.0f;
}

float KernelCubic(float x, const void*) {
  if (x < -2.0f) return 0.0f;
  if (x < -1.0f) return (2.0f + x) * (2.0f + x) * (2.0f + x) / 6.0f;
  if (x < 0.0f) return (x * x * (-3.0f * x - 6.0f) + 4.0f) / 6.0f;
  if (x < 1.0f) return (x * x * (3.0f * x - 6.0f) + 4.0f) / 6.0f;
  if (x < 2.0f) return (2.0f - x) * (2.0f - x) * (2.0f - x) / 6.0f;
  return 0.0f;
}

float KernelCatrom(float x, const void*) {
  if (x < -2.0f) return 0.0f;
  if (x < -1.0f) return 0.5f * (((5.0f + x) * x + 8.0f) * x + 4.0f);
  if (x < 0.0f) return 0.5f * (x * x * (-3.0f * x - 5.0f) + 2.0f);
  if (x < 1.0f) return 0.5f * (x * x * (3.0f * x - 5.0f) + 2.0f);
  if (x < 2.0f) return 0.5f * (((5.0f - x) * x - 8.0f) * x + 4.0f);
  return 0.0f;
}

float KernelMitchell(float x, const void* data) {
  const auto& [p0, p2, p3, q0, q1, q2, q3] = *static_cast<const MitchellCoefficients*>(data);
  if (x < -2.0f) return 0.0f;
  if (x < -1.0f) return q0 - x * (q1 - x * (q2 - q3 * x));
  if (x < 0.0f) return p0 + x * x * (p2 - p3 * x);
  if (x < 1.0f) return p0 + x * x * (p2 + p3 * x);
  if (x < 2.0f) return q0 + x * (q1 + x * (q2 + q3 * x));
  return 0.0f;
}

void MitchellInit(float b, float c, MitchellCoefficients* coefficients) {
  coefficients->p0 = (6.0f - 2.0f * b) / 6.0f;
  coefficients->p2 = (-18.0f + 12.0f * b + 6.0f * c) / 6.0f;
  coefficients->p3 = (12.0f - 9.0f * b - 6.0f * c) / 6.0f;
  coefficients->q0 = (8.0f * b + 24.0f * c) / 6.0f;
  coefficients->q1 = (-12.0f * b - 48.0f * c) / 6.0f;
  coefficients->q2 = (6.0f * b + 30.0f * c) / 6.0f;
  coefficients->q3 = (-b - 6.0f * c) / 6.0f;
}

float KernelGaussian(float x, const void*) {
  constexpr double kRootTwoOverPi = 0.7978845608028654;
  return static_cast<float>(std::exp(-2.0f * x * x) * kRootTwoOverPi);
}

float KernelSinc(float x, const void* data) {
  if (x == 0.0f) return 1.0f;
  const double a = *static_cast<const double*>(data);
  const double u = kPi * x;
  const double v = u / a;
  return static_cast<float>((std::sin(u) / u) * (std::sin(v) / v));
}

SincSteps::Angle SincSteps::AngleOf(double radians) {
  return {std::sin(radians), std::cos(radians)};
}

SincSteps::Angle SincSteps::Sum(const Angle& a, const Angle& b) {
  return {a.sine * b.cosine + a.cosine * b.sine, a.cosine * b.cosine - a.sine * b.sine};
}

SincSteps::SincSteps(double step, double a) : a_(a), turn_(kPi * step) {
  for (int32_t i = 0; i <= kChains; ++i) {
    turnsU_[i] = AngleOf(i * turn_);
    turnsV_[i] = AngleOf(i * turn_ / a);
  }
}

void SincSteps::Sample(double first, int32_t count, float* values) const {
  // sin(u) sin(v) a / u^2 for u = pi x, v = u / a.
  constexpr double kSmall = 1e-4;  // below, the kernel is 1 to float's precision
  const double start = kPi * first;
  const Angle startU = AngleOf(start), startV = AngleOf(start / a_);
  Angle u[kChains], v[kChains];
  for (int32_t i = 0; i < kChains; ++i) {
    u[i] = Sum(startU, turnsU_[i]);
    v[i] = Sum(startV, turnsV_[i]);
  }
  for (int32_t k = 0; k < count; k += kChains) {
    float chunk[kChains];
    for (int32_t i = 0; i < kChains; ++i) {
      const double radians = start + (k + i) * turn_;
      const double sinc = u[i].sine * v[i].sine * a_ / (radians * radians);
      chunk[i] = static_cast<float>(std::abs(radians) < kSmall ? 1.0 : sinc);
      u[i] = Sum(u[i], turnsU_[kChains]);
      v[i] = Sum(v[i], turnsV_[kChains]);
    }
    std::copy_n(chunk, std::min(kChains, count - k), values + k);
  }
}

float KernelBessel(float, const void*) { return 0.0f; }

float KernelHanning(float x, const void*) { return 0.5f + 0.5f * CosineOfHalfTurns(1.0, x); }

float KernelHamming(float x, const void*) { return 0.54f + 0.46f * CosineOfHalfTurns(1.0, x); }

float KernelBlackman(float x, const void*) {
  return 0.42f + 0.5f * CosineOfHalfTurns(1.0, x) + 0.08f * CosineOfHalfTurns(2.0, x);
}

float KernelKaiser(float x, const void* data) {
  const auto& [a, i0a] = *static_cast<const KaiserParameters*>(data);
  const float z = std::sqrt(1.0f - x * x) * a;
  if (std::isnan(z)) return z;  // BesselI0 would answer 1
  return BesselI0(z) * i0a;
}

void KaiserInit(float a, KaiserParameters* parameters) {
  parameters->a = a;
  parameters->i0a = 1.0f / BesselI0(a);
}

float BesselI0(float x) {
  constexpr double kSmallestTerm = 1e-7;
  const float y = 0.25f * (x * x);
  if (!(y > kSmallestTerm)) return 1.0f;
  float sum = 1.0f;
  float term = y;
  float k = 2.0f;
  do {
    sum += term;
    term = term * y / (k * k);
    k += 1.0f;
  } while (term > kSmallestTerm);
  return sum;
}

}  // namespace kelto
