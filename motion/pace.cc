#include "motion/pace.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>

#include "motion/slope.h"

namespace kelto::motion {
namespace {

constexpr int kBisections = 60;
/// What bisection leaves open, of a rate.
constexpr double kSlack = 1e-9;
/// Above that: coming back from the last milestone, where the rate leaves one speed alone.
constexpr double kPaceRounding = 1e-6;

struct Range {
  double low, high;
  double Nearest(double value) const { return std::clamp(value, low, high); }
};

std::optional<Range> Both(const Range& a, const Range& b) {
  const Range both{std::max(a.low, b.low), std::min(a.high, b.high)};
  if (both.low > both.high) return std::nullopt;
  return both;
}

/// A line of the speed at one end of a stretch over the speed at the other.
struct Line {
  double start, fall;
  double At(double speed) const { return start - fall * speed; }
};

/// Between two milestones. The speed changes evenly to the middle of the time and from there; where
/// that would take it below nothing, it falls to nothing, rests, and rises for as long.
struct Stretch {
  double duration, length;

  double Mean() const { return length / duration; }
  /// The sum of both ends' speeds above which it rests in between.
  double Resting() const { return 4 * Mean(); }

  /// The speeds at one end for which the speed needs to change at no larger rate than `rate`, when
  /// the speed at the other end is in `other`.
  std::optional<Range> Reach(Range other, double rate) const {
    const double change = rate * duration, whole = Resting();
    // Without a rest it is twice the mean less half of both ends' in the middle, so that with u and
    // v at the ends both |whole - 3u - v| and |whole - u - 3v| are `change` at most.
    const std::array<Line, 2> highest{Line{whole + change, 3.0},
                                      Line{(whole + change) / 3, 1.0 / 3}};
    const std::array<Line, 3> lowest{Line{whole - change, 3.0}, Line{(whole - change) / 3, 1.0 / 3},
                                     Line{0.0, 0.0}};
    for (const Line& low : lowest) {
      for (const Line& high : highest) {
        const double room = high.start - low.start, closing = high.fall - low.fall;
        if (closing > 0.0) other.high = std::min(other.high, room / closing);
        if (closing < 0.0) other.low = std::max(other.low, room / closing);
        if (closing == 0.0 && room < 0.0) return std::nullopt;
      }
    }
    // From here on it would stop before the middle and have to cover less than nothing.
    if (change >= 2 * whole) other.high = std::min(other.high, std::sqrt(2 * length * rate));
    if (other.low > other.high) return std::nullopt;
    Range reach{0.0, std::min(highest[0].At(other.low), highest[1].At(other.low))};
    if (other.low + reach.high > whole) reach.high = WithRest(other.low, rate);
    for (const Line& low : lowest) reach.low = std::max(reach.low, low.At(other.high));
    reach.high = std::max(reach.high, reach.low);  // but for rounding
    return reach;
  }

 private:
  /// The largest speed at one end with `speed` at the other, both lost or won at this rate at most
  /// while the stretch is covered.
  double WithRest(double speed, double rate) const {
    const double square = 2 * length * rate;  // speed times the sum of speeds, at the most
    double most = (std::sqrt(speed * speed + 4 * square) - speed) / 2;
    if (speed > 0.0) most = std::min(most, square / speed - speed);
    return std::max({0.0, most, Resting() - speed});
  }
};

/// The speeds at all milestones.
class Speeds {
 public:
  Speeds(const std::vector<Milestone>& milestones, double calm) {
    for (size_t i = 0; i + 1 < milestones.size(); ++i) {
      const Milestone &from = milestones[i], &to = milestones[i + 1];
      const double duration = to.time - from.time;
      stretches_.push_back({duration, to.length - from.length});
    }
    const size_t last = milestones.size() - 1;
    for (size_t i = 0; i <= last; ++i) {
      const Stretch &before = stretches_[i == 0 ? 0 : i - 1],
                    &after = stretches_[std::min(i, last - 1)];
      usual_.push_back(MeanSlope(before.duration, before.Mean(), after.duration, after.Mean()));
      fastest_ = std::max({fastest_, before.Mean(), after.Mean()});
      const double straight = milestones[i].straightness;
      most_.push_back(straight < 1.0 ? usual_[i] * straight / (1.0 - straight)
                                     : std::numeric_limits<double>::infinity());
    }
    const double mean = (milestones.back().length - milestones.front().length) /
                        (milestones.back().time - milestones.front().time);
    Choose(calm * mean);
  }

  const std::vector<double>& Chosen() const { return chosen_; }

 private:
  void Choose(double calm) {
    double shortest = stretches_.front().duration;
    for (const Stretch& one : stretches_) shortest = std::min(shortest, one.duration);
    const double enough = 4 * fastest_ / shortest;  // to stop at every milestone
    const auto least = [&](double haste) {
      return Least(enough, [&](double rate) { return Try(rate, haste); });
    };
    const double slowing = least(0.0);
    double rate = slowing;
    if (slowing > calm) rate = std::max(calm, least(1.0));
    rate = std::min(rate, slowing) * (1 + kSlack);
    const double haste = Least(1.0, [&](double share) { return Try(rate, share); });
    Try(rate, haste);
    Pick(rate * (1 + kPaceRounding));
  }

  /// The least of 0..`most` with which `works`; it does with `most`.
  template <typename Works>
  static double Least(double most, const Works& works) {
    if (works(0.0)) return 0.0;
    double low = 0.0, high = most;
    for (int i = 0; i < kBisections; ++i) {
      const double middle = (low + high) / 2;
      (works(middle) ? high : low) = middle;
    }
    return high;
  }

  /// Finds the speeds that can be had at each milestone, coming from the first: with changes of
  /// this rate at most, and turns passed faster than they should be by a share of what can be.
  bool Try(double rate, double haste) {
    ranges_.clear();
    for (size_t i = 0; i < most_.size(); ++i) {
      std::optional<Range> range = Range{0.0, most_[i] + haste * 4 * fastest_};
      if (i > 0) {
        const auto reach = stretches_[i - 1].Reach(ranges_.back(), rate);
        range = reach ? Both(*range, *reach) : std::nullopt;
      }
      if (!range) return false;
      ranges_.push_back(*range);
    }
    return true;
  }

  /// Of these speeds, from the last one, those next to the usual ones.
  void Pick(double rate) {
    const size_t last = usual_.size() - 1;
    chosen_.assign(last + 1, 0.0);
    for (size_t i = last + 1; i-- > 0;) {
      Range range = ranges_[i];
      if (i < last) {
        const auto back = stretches_[i].Reach({chosen_[i + 1], chosen_[i + 1]}, rate);
        if (back) range = {range.Nearest(back->low), range.Nearest(back->high)};
      }
      chosen_[i] = range.Nearest(usual_[i]);
    }
  }

  std::vector<Stretch> stretches_;
  std::vector<double> usual_, most_;  ///< at each milestone
  double fastest_ = 0.0;              ///< mean of a stretch
  std::vector<Range> ranges_;
  std::vector<double> chosen_;
};

}  // namespace

Pace::Pace(const std::vector<Milestone>& milestones, double calm) {
  if (milestones.size() < 2) {
    for (const Milestone& one : milestones) knots_.push_back({one.time, one.length, 0.0});
    return;
  }
  const Speeds speeds(milestones, calm);
  for (size_t i = 0; i < milestones.size(); ++i) {
    const Milestone& one = milestones[i];
    if (i > 0) AddBetween(milestones[i - 1], one, speeds.Chosen()[i - 1], speeds.Chosen()[i]);
    knots_.push_back({one.time, one.length, speeds.Chosen()[i]});
  }
}

void Pace::AddBetween(const Milestone& from, const Milestone& to, double leaving, double arriving) {
  const Stretch stretch{to.time - from.time, to.length - from.length};
  if (leaving + arriving > stretch.Resting()) {
    const double fall = 2 * stretch.length / (leaving + arriving);
    const double length = from.length + fall * leaving / 2;
    knots_.push_back({from.time + fall, length, 0.0});
    knots_.push_back({to.time - fall, length, 0.0});
    return;
  }
  const double half = stretch.duration / 2;
  const double middle = std::max(0.0, stretch.length / half - (leaving + arriving) / 2);
  knots_.push_back({from.time + half, from.length + half * (leaving + middle) / 2, middle});
}

double Pace::At(double time) const {
  if (knots_.empty()) return 0.0;
  if (time <= knots_.front().time) return knots_.front().length;
  if (time >= knots_.back().time) return knots_.back().length;
  const auto after = std::upper_bound(knots_.begin(), knots_.end(), time,
                                      [](double at, const Knot& knot) { return at < knot.time; });
  const Knot &a = *(after - 1), &b = *after;
  const double u = (time - a.time) / (b.time - a.time);
  const double length = a.length + (time - a.time) * (a.speed + (b.speed - a.speed) * u / 2);
  return std::clamp(length, a.length, b.length);
}

}  // namespace kelto::motion
