#include "motion/leg.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <utility>

namespace kelto::motion {
namespace {

constexpr size_t kSteps = 32;

/// Where a step begins: they are short at the ends, where a smooth way may all but turn back.
double StepAt(size_t i) {
  return (1 - std::cos(std::numbers::pi * static_cast<double>(i) / kSteps)) / 2;
}

/// Gauss's five places and weights on -1..1.
constexpr std::array<std::array<double, 2>, 5> kGauss{{{-0.9061798459386640, 0.2369268850561891},
                                                       {-0.5384693101056831, 0.4786286704993665},
                                                       {0.0, 0.5688888888888889},
                                                       {0.5384693101056831, 0.4786286704993665},
                                                       {0.9061798459386640, 0.2369268850561891}}};

}  // namespace

Leg::Leg(Way way) : way_(std::move(way)) {
  const bool even = std::visit([](const auto& one) { return one.kEven; }, way_);
  if (even) {
    lengths_ = {Speed(0.0)};
    return;
  }
  lengths_ = {0.0};
  for (size_t i = 0; i < kSteps; ++i) {
    lengths_.push_back(lengths_.back() + LengthFrom(StepAt(i), StepAt(i + 1)));
  }
}

Window Leg::At(double e) const {
  return std::visit([&](const auto& way) { return way.At(e); }, way_);
}

double Leg::Speed(double e) const {
  return std::visit([&](const auto& way) { return way.Speed(e); }, way_);
}

double Leg::LengthFrom(double from, double to) const {
  const double half = (to - from) / 2, middle = (from + to) / 2;
  double sum = 0.0;
  for (const auto& [place, weight] : kGauss) sum += weight * Speed(middle + half * place);
  return sum * half;
}

double Leg::LengthTo(double e) const {
  if (e <= 0.0) return 0.0;
  if (e >= 1.0) return Length();
  if (lengths_.size() == 1) return Length() * e;
  size_t step = 0;
  while (step + 1 < kSteps && StepAt(step + 1) <= e) ++step;
  return lengths_[step] + LengthFrom(StepAt(step), e);
}

Window Leg::AtLength(double length) const {
  if (length <= 0.0) return At(0.0);
  if (length >= Length()) return At(1.0);
  if (lengths_.size() == 1) return At(length / Length());
  const auto after = std::upper_bound(lengths_.begin(), lengths_.end(), length);
  const auto step = std::min(static_cast<size_t>(after - lengths_.begin()), kSteps) - 1;
  const double start = StepAt(step);
  const double rest = length - lengths_[step];
  // Newton's steps, held within the stretch that is known to have the answer.
  double low = start, high = StepAt(step + 1);
  double e = low + (high - low) * rest / (lengths_[step + 1] - lengths_[step]);
  for (int i = 0; i < 30; ++i) {
    const double miss = LengthFrom(start, e) - rest;
    if (std::abs(miss) <= 1e-14 * Length()) break;
    (miss > 0.0 ? high : low) = e;
    const double next = e - miss / Speed(e);
    e = next > low && next < high ? next : (low + high) / 2;
  }
  return At(e);
}

}  // namespace kelto::motion
