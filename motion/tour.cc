#include "motion/tour.h"

#include <algorithm>
#include <utility>

namespace kelto::motion {

namespace {

/// The part of its mean that the speed may gain or lose a second where nothing asks for haste.
constexpr double kCalm = 0.9;

}  // namespace

Tour::Tour(std::vector<Stop> stops, Law law, Path path, const Room& room, double seconds)
    : stops_(std::move(stops)) {
  if (path == Path::kSpline) {
    MakeSmoothLegs(room);
  } else {
    MakeLegs(law, room);
  }
  lengths_.assign(stops_.size(), 0.0);
  for (size_t i = 0; i < legs_.size(); ++i) lengths_[i + 1] = lengths_[i] + legs_[i].Length();
  MakeRuns(path);
  if (path == Path::kSpline) MakePaces(seconds);
}

void Tour::MakeLegs(Law law, const Room& room) {
  for (size_t i = 0; i + 1 < stops_.size(); ++i) {
    const Window &from = stops_[i].window, &to = stops_[i + 1].window;
    const auto flight = law == Law::kFly ? FlyWithin(room, from, to) : std::nullopt;
    legs_.push_back(flight ? Leg(*flight) : Leg(SteadyWay(from, to)));
  }
}

void Tour::MakeSmoothLegs(const Room& room) {
  straightness_.assign(stops_.size(), 1.0);
  size_t first = 0;
  while (first + 1 < stops_.size()) {
    size_t last = first + 1;
    while (last + 1 < stops_.size() && !PiecesMeet(last)) ++last;
    AddSmoothPiece(first, last, room);
    first = last;
  }
}

void Tour::AddSmoothPiece(size_t first, size_t last, const Room& room) {
  if (last - first == 1) {
    legs_.emplace_back(SteadyWay(stops_[first].window, stops_[last].window));
    return;
  }
  std::vector<Window> windows;
  for (size_t i = first; i <= last; ++i) windows.push_back(stops_[i].window);
  const SmoothPath path = SmoothThrough(windows, room);
  for (const SmoothWay& way : path.ways) legs_.emplace_back(way);
  std::copy(path.straightness.begin(), path.straightness.end(),
            straightness_.begin() + static_cast<ptrdiff_t>(first));
}

/// Whether a smooth path ends at an inner stop, to begin anew.
bool Tour::PiecesMeet(size_t stop) const {
  return IsPause(stop - 1) || IsPause(stop) || Jumps(stop - 1) || Jumps(stop);
}

bool Tour::IsPassed(size_t stop, Path path) const {
  if (stop == 0 || stop + 1 == stops_.size() || PiecesMeet(stop)) return false;
  const Stop& view = stops_[stop];
  if (view.arrival == Arrival::kConstant && view.departure == Departure::kConstant) return true;
  return path == Path::kSpline && view.arrival == Arrival::kLinear &&
         view.departure == Departure::kLinear;
}

void Tour::MakeRuns(Path path) {
  size_t first = 0;
  for (size_t stop = 1; stop < stops_.size(); ++stop) {
    if (IsPassed(stop, path)) continue;
    runs_.push_back({first, stop, 0});
    first = stop;
  }
}

void Tour::MakePaces(double seconds) {
  std::vector<Milestone> milestones;
  const auto finish = [&] {
    if (!milestones.empty()) paces_.emplace_back(milestones, kCalm * seconds);
    milestones.clear();
  };
  for (Run& run : runs_) {
    if (run.first == 0 || PiecesMeet(run.first)) finish();
    if (milestones.empty()) {
      milestones.push_back({stops_[run.first].time, lengths_[run.first], 1.0});
    }
    for (size_t i = run.first + 1; i <= run.last; ++i) {
      // Those passed at constant speed are met when their length is covered.
      if (i < run.last && stops_[i].arrival == Arrival::kConstant) continue;
      const double time = i < run.last ? EasedTime(run, stops_[i].time) : stops_[i].time;
      // Eased, two times may become one.
      while (milestones.size() > 1 && milestones.back().time >= time) milestones.pop_back();
      if (time > milestones.back().time) {
        milestones.push_back({time, lengths_[i], straightness_[i]});
      }
    }
    run.pace = paces_.size();
  }
  finish();
}

double Tour::EasedTime(const Run& run, double time) const {
  const Stop &from = stops_[run.first], &to = stops_[run.last];
  const double length = to.time - from.time;
  return from.time + length * Eased(from.departure, to.arrival, (time - from.time) / length);
}

Window Tour::AtLength(double length, size_t first, size_t last) const {
  const auto begin = lengths_.begin() + static_cast<ptrdiff_t>(first) + 1;
  const auto end = lengths_.begin() + static_cast<ptrdiff_t>(last);
  const auto leg = static_cast<size_t>(std::upper_bound(begin, end, length) - begin) + first;
  return legs_[leg].AtLength(length - lengths_[leg]);
}

const Tour::Run& Tour::RunAt(double time) const {
  return *std::partition_point(runs_.begin(), runs_.end(),
                               [&](const Run& one) { return stops_[one.last].time < time; });
}

double Tour::ShareAt(const Run& run, double time) const {
  const Stop &from = stops_[run.first], &to = stops_[run.last];
  return (EasedTime(run, time) - from.time) / (to.time - from.time);
}

Window Tour::At(double time) const {
  if (time <= stops_.front().time) return stops_.front().window;
  if (time >= stops_.back().time) return stops_.back().window;
  const Run& run = RunAt(time);
  if (time == stops_[run.last].time) return stops_[run.last].window;
  if (Jumps(run.first)) return stops_[run.first].window;
  if (paces_.empty() && run.last == run.first + 1) return legs_[run.first].At(ShareAt(run, time));
  return AtLength(LengthAt(time), run.first, run.last);
}

double Tour::LengthAt(double time) const {
  if (time <= stops_.front().time) return 0.0;
  if (time >= stops_.back().time) return lengths_.back();
  const Run& run = RunAt(time);
  const double start = lengths_[run.first], end = lengths_[run.last];
  if (time == stops_[run.last].time) return end;
  if (Jumps(run.first)) return start;
  if (!paces_.empty()) return std::clamp(paces_[run.pace].At(EasedTime(run, time)), start, end);
  const double share = ShareAt(run, time);
  if (run.last == run.first + 1) return start + legs_[run.first].LengthTo(share);
  return start + share * (end - start);
}

}  // namespace kelto::motion
