#include "host/drawing/motion_plot.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <vector>

#include "host/base/error.h"
#include "host/base/texts.h"
#include "host/drawing/axis_ticks.h"
#include "host/drawing/drawing.h"
#include "host/facts/key_times.h"
#include "host/files/path_text.h"
#include "host/options/size.h"
#include "host/terminal/interrupt.h"

namespace kelto::host {
namespace {

constexpr double kWidth = 1200.0, kHeight = 1000.0;
constexpr double kLeft = 96.0, kRight = 1168.0;
constexpr double kFirstPanel = 104.0, kPanelHeight = 228.0, kPanelGap = 56.0;
constexpr double kTextSize = 15.0, kSmall = 13.0, kTitle = 22.0;
/// More points than this no diagram shows; of longer films, frames are left out evenly.
constexpr int32_t kMaxPoints = 2000;

constexpr Ink kPaper{1.0, 1.0, 1.0}, kText{0.13, 0.13, 0.15}, kFaint{0.45, 0.46, 0.5};
constexpr Ink kGrid{0.9, 0.9, 0.92}, kBorder{0.7, 0.7, 0.74}, kKeyLine{0.55, 0.55, 0.62};
// Distinct for people who confuse red and green, and in grey.
constexpr Ink kBlue{0.0, 0.38, 0.68}, kOrange{0.85, 0.42, 0.0}, kGrey{0.3, 0.3, 0.33};

/// What an axis spans at least: less is rounding, and would look like a move.
constexpr double kLeastSpan = 0.02;

struct Curve {
  const char* name;
  Ink ink;
  std::vector<double> values;  ///< one for each sample
};

struct Panel {
  const char* title;  ///< what is shown, with its unit
  std::vector<Curve> curves;
};

/// What is sampled: times in seconds and the facts there.
struct Samples {
  std::vector<FrameFacts> frames;
  double seconds = 0.0;  ///< of the last frame
};

Samples TakeSamples(FrameInspector& inspector) {
  const int32_t frames = inspector.Plan().frames;
  const int32_t step = (frames - 1) / kMaxPoints + 1;
  Samples samples;
  for (int32_t number = 0; number < frames; number += step) {
    CheckInterrupt();
    samples.frames.push_back(inspector.Of(number));
  }
  if (samples.frames.back().number != frames - 1) {
    samples.frames.push_back(inspector.Of(frames - 1));
  }
  samples.seconds = samples.frames.back().seconds;
  return samples;
}

template <typename Value>
std::vector<double> Each(const Samples& samples, Value value) {
  std::vector<double> values;
  values.reserve(samples.frames.size());
  for (const FrameFacts& facts : samples.frames) values.push_back(value(facts));
  return values;
}

std::vector<Panel> PanelsOf(const Samples& samples) {
  const auto each = [&](auto value) { return Each(samples, value); };
  return {
      {"Centre of the view (widths, heights)",
       {{"x, to the right", kBlue, each([](const FrameFacts& f) { return f.view.centreX; })},
        {"y, down", kOrange, each([](const FrameFacts& f) { return f.view.centreY; })}}},
      {"Zoom (times)", {{"zoom", kBlue, each([](const FrameFacts& f) { return f.view.zoom; })}}},
      {"Speed (per second)",
       {{"perceived", kGrey, each([](const FrameFacts& f) { return f.speed.perceived; })},
        {"pan, in frame widths", kBlue, each([](const FrameFacts& f) { return f.speed.pan; })},
        {"zoom, in doublings", kOrange, each([](const FrameFacts& f) { return f.speed.zoom; })}}}};
}

class Plot {
 public:
  Plot(Drawing& drawing, const RenderPlan& plan, const Samples& samples)
      : drawing_(drawing), samples_(samples), keys_(KeyTimesOf(plan)) {
    most_ = samples.seconds > 0.0 ? samples.seconds : 1.0 / plan.format.rate.PerSecond();
    times_ = TicksWithin(0.0, most_, 10);
    frameSeconds_ = 1.0 / plan.format.rate.PerSecond();
  }

  void DrawHead(const std::string& title, const std::string& facts) {
    drawing_.Fill({0.0, 0.0, kWidth, kHeight}, kPaper);
    drawing_.Text(drawing_.Shortened(title, kRight - kLeft, kTitle, true), {kLeft, 40.0}, kTitle,
                  kText, Align::kLeft, true);
    drawing_.Text(facts, {kLeft, 64.0}, kTextSize, kFaint);
  }
  void DrawPanel(const Panel& panel, double top);
  /// The keys' numbers above the first panel, the time axis's name below the last.
  void DrawKeyNumbers();
  void DrawTimeName(double bottom) {
    drawing_.Text("Time (seconds)", {(kLeft + kRight) / 2, bottom + 58.0}, kTextSize, kText,
                  Align::kCentre);
  }

 private:
  double X(double seconds) const { return kLeft + seconds / most_ * (kRight - kLeft); }
  double XOfKey(const KeyTime& key) const { return X(key.time * samples_.seconds); }
  double Y(double value) const {
    return bottom_ - (value - axis_.least) / (axis_.most - axis_.least) * kPanelHeight;
  }
  void DrawGrid(double top);
  void DrawLegend(const Panel& panel, double top);
  void DrawCurve(const Curve& curve, double thickness);

  Drawing& drawing_;
  const Samples& samples_;
  std::vector<KeyTime> keys_;
  double most_ = 1.0;  ///< seconds that the time axis has
  double frameSeconds_ = 0.0;
  Ticks times_;
  Ticks axis_;           ///< of the panel being drawn
  double bottom_ = 0.0;  ///< of the same
};

void Plot::DrawGrid(double top) {
  for (const double value : axis_.at) {
    drawing_.Line({{kLeft, Y(value)}, {kRight, Y(value)}}, kGrid, 1.0);
    drawing_.Text(FixedText(value, axis_.decimals), {kLeft - 10.0, Y(value) + 4.5}, kSmall, kText,
                  Align::kRight);
  }
  for (const double time : times_.at) {
    drawing_.Line({{X(time), top}, {X(time), bottom_}}, kGrid, 1.0);
    drawing_.Text(FixedText(time, times_.decimals), {X(time), bottom_ + 19.0}, kSmall, kText,
                  Align::kCentre);
  }
  for (const KeyTime& key : keys_) {
    drawing_.Dashes({XOfKey(key), top}, {XOfKey(key), bottom_}, kKeyLine, 1.2);
  }
  drawing_.Frame({kLeft, top, kRight - kLeft, kPanelHeight}, kBorder, 1.0);
}

void Plot::DrawLegend(const Panel& panel, double top) {
  double x = kRight;
  for (auto curve = panel.curves.rbegin(); curve != panel.curves.rend(); ++curve) {
    drawing_.Text(curve->name, {x, top - 9.0}, kTextSize, kText, Align::kRight);
    x -= drawing_.WidthOf(curve->name, kTextSize) + 8.0;
    drawing_.Line({{x - 22.0, top - 14.0}, {x, top - 14.0}}, curve->ink, 3.0);
    x -= 46.0;
  }
}

void Plot::DrawCurve(const Curve& curve, double thickness) {
  std::vector<Point> points;
  points.reserve(curve.values.size());
  for (size_t i = 0; i < curve.values.size(); ++i) {
    points.push_back({X(samples_.frames[i].seconds), Y(curve.values[i])});
  }
  drawing_.Line(points, curve.ink, thickness);
  // The frame nearest to a key: a film of whole frames seldom has one at its very time.
  for (const KeyTime& key : keys_) {
    const double seconds = key.frame * frameSeconds_;
    const auto after =
        std::lower_bound(samples_.frames.begin(), samples_.frames.end(), seconds,
                         [](const FrameFacts& facts, double time) { return facts.seconds < time; });
    const auto index = std::min<ptrdiff_t>(after - samples_.frames.begin(),
                                           static_cast<ptrdiff_t>(points.size()) - 1);
    const Point at = points[static_cast<size_t>(index)];
    drawing_.Disc(at, 5.0, kPaper);
    drawing_.Disc(at, 3.8, curve.ink);
  }
}

void Plot::DrawPanel(const Panel& panel, double top) {
  double least = panel.curves[0].values[0], most = least;
  for (const Curve& curve : panel.curves) {
    const auto [low, high] = std::minmax_element(curve.values.begin(), curve.values.end());
    least = std::min(least, *low);
    most = std::max(most, *high);
  }
  axis_ = TicksFor(least, most, 5, kLeastSpan);
  bottom_ = top + kPanelHeight;
  DrawGrid(top);
  drawing_.Text(panel.title, {kLeft, top - 9.0}, kTextSize, kText, Align::kLeft, true);
  DrawLegend(panel, top);
  const Drawing::Clip clip(drawing_, {kLeft - 8.0, top, kRight - kLeft + 16.0, kPanelHeight});
  // The first shows under one that takes the same way.
  for (const Curve& curve : panel.curves)
    DrawCurve(curve, &curve == panel.curves.data() ? 3.2 : 1.7);
}

void Plot::DrawKeyNumbers() {
  const double y = kFirstPanel + 3 * kPanelHeight + 2 * kPanelGap + 37.0;
  double free = 0.0;  // where the last number ended
  for (size_t i = 0; i < keys_.size(); ++i) {
    const std::string number = "key " + std::to_string(i + 1);
    const double half = drawing_.WidthOf(number, kSmall) / 2;
    const double x = std::clamp(XOfKey(keys_[i]), kLeft, kRight);
    if (x - half < free) continue;
    drawing_.Text(number, {x, y}, kSmall, kFaint, Align::kCentre);
    free = x + half + 6.0;
  }
}

std::string FactsLine(const RenderPlan& plan, const Photo& photo) {
  return std::to_string(photo.width) + "x" + std::to_string(photo.height) + " photo, " +
         ToString(plan.format.size) + " frames, " + std::to_string(plan.frames) + " of them at " +
         FixedText(plan.format.rate.PerSecond(), plan.format.rate.denominator == 1 ? 0 : 3) +
         " fps";
}

}  // namespace

void DrawMotionPlot(FrameInspector& inspector, const Photo& photo, const std::string& file) {
  Drawing drawing(file, kWidth, kHeight);
  const Samples samples = TakeSamples(inspector);
  Plot plot(drawing, inspector.Plan(), samples);
  plot.DrawHead("Motion over " + NameOf(photo.given), FactsLine(inspector.Plan(), photo));
  double top = kFirstPanel;
  for (const Panel& panel : PanelsOf(samples)) {
    plot.DrawPanel(panel, top);
    top += kPanelHeight + kPanelGap;
  }
  plot.DrawKeyNumbers();
  plot.DrawTimeName(top - kPanelGap);
  drawing.Finish();
}

}  // namespace kelto::host
