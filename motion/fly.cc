#include "motion/fly.h"

#include <algorithm>
#include <cmath>

namespace kelto::motion {
namespace {

/// Of the wider window; below it there is no pan.
constexpr double kNoPan = 1e-9;
/// The flattest path that is distinguished from a straight one.
constexpr double kLeastRho = 0.05;
/// What rounding may add to a width of 1.
constexpr double kRounding = 1e-9;

double Distance(const Window& from, const Window& to) {
  return std::hypot(to.x - from.x, to.y - from.y);
}

/// The largest value of `f`, which has one maximum, for 0..1.
template <typename Function>
double Largest(Function f) {
  constexpr double kGolden = 0.6180339887498949;
  double low = 0.0, high = 1.0;
  double a = high - kGolden * (high - low), b = low + kGolden * (high - low);
  double atA = f(a), atB = f(b);
  for (int i = 0; i < 60; ++i) {
    if (atA > atB) {
      high = b, b = a, atB = atA;
      a = high - kGolden * (high - low), atA = f(a);
    } else {
      low = a, a = b, atA = atB;
      b = low + kGolden * (high - low), atB = f(b);
    }
  }
  return std::max({atA, atB, f(0.0), f(1.0)});
}

bool StaysWithin(const Room& room, const Window& from, const Window& to, double rho) {
  const double distance = Distance(from, to);
  const double bulge = std::pow(rho, 4) * distance * distance;
  // The way is an arc of an ellipse: the square of the width is a parabola over the centre's way.
  const auto width = [&](double share) {
    const double straight = from.width * from.width * (1.0 - share) + to.width * to.width * share;
    return std::sqrt(straight + bulge * share * (1.0 - share));
  };
  const auto x = [&](double share) { return from.x + (to.x - from.x) * share; };
  const auto y = [&](double share) { return from.y + (to.y - from.y) * share; };
  const double slack = kRounding;
  return Largest(width) <= room.widest + slack &&
         Largest([&](double u) { return x(u) + width(u) / 2; }) <= room.right + slack &&
         Largest([&](double u) { return width(u) / 2 - x(u); }) <= slack - room.left &&
         Largest([&](double u) { return y(u) + width(u) * room.shape / 2; }) <=
             room.bottom + slack &&
         Largest([&](double u) { return width(u) * room.shape / 2 - y(u); }) <= slack - room.top;
}

}  // namespace

FlyWay::FlyWay(const Window& from, const Window& to, double rho)
    : from_(from), to_(to), rho_(rho), distance_(Distance(from, to)) {
  const double w0 = from.width, w1 = to.width, bulge = std::pow(rho, 4) * distance_ * distance_;
  const double spread = 2 * rho * rho * distance_;
  // The paper's ln(sqrt(b^2 + 1) - b), without its cancellation.
  start_ = -std::asinh((w1 * w1 - w0 * w0 + bulge) / (w0 * spread));
  const double end = -std::asinh((w1 * w1 - w0 * w0 - bulge) / (w1 * spread));
  length_ = (end - start_) / rho;
}

Window FlyWay::At(double e) const {
  if (e <= 0.0) return from_;
  if (e >= 1.0) return to_;
  const double s = rho_ * length_ * e;
  // The paper's difference of two tanh, which may be close to each other, as one quotient.
  const double covered = from_.width * std::sinh(s) / (rho_ * rho_ * std::cosh(s + start_));
  const double share = covered / distance_;
  const double width = from_.width * std::cosh(start_) / std::cosh(s + start_);
  return {from_.x + (to_.x - from_.x) * share, from_.y + (to_.y - from_.y) * share, width};
}

double FlyWay::Speed(double e) const {
  const double at = rho_ * length_ * e + start_;
  return length_ * PerceivedStep(1.0 / (rho_ * std::cosh(at)), rho_ * std::tanh(at));
}

std::optional<FlyWay> FlyWithin(const Room& room, const Window& from, const Window& to) {
  if (Distance(from, to) < kNoPan * std::max(from.width, to.width)) return std::nullopt;
  const Room wide = RoomFor(room, from, to);
  if (StaysWithin(wide, from, to, kRho)) return FlyWay(from, to, kRho);
  double low = kLeastRho, high = kRho;
  if (!StaysWithin(wide, from, to, low)) return std::nullopt;
  for (int i = 0; i < 50; ++i) {
    const double middle = (low + high) / 2;
    (StaysWithin(wide, from, to, middle) ? low : high) = middle;
  }
  return FlyWay(from, to, low);
}

}  // namespace kelto::motion
