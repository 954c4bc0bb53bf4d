#include "host/player/status_bar.h"

#include <algorithm>
#include <cmath>

#include "host/base/texts.h"
#include "host/drawing/axis_ticks.h"

namespace kelto::host {
namespace {

constexpr double kMargin = 16.0, kTrackY = 15.0, kTextY = 41.0, kTextSize = 14.0;
constexpr Ink kPaper{0.11, 0.115, 0.13}, kText{0.93, 0.93, 0.95}, kFaint{0.62, 0.63, 0.68};
constexpr Ink kTrack{0.33, 0.34, 0.38}, kDone{0.35, 0.75, 1.0}, kKey{1.0, 0.82, 0.1};

struct KeyHelp {
  const char* key;
  const char* meaning;
};
constexpr KeyHelp kKeys[] = {
    {"space", "pause, play"},
    {".   ,", "forward or back one frame"},
    {"right   left", "forward or back one second"},
    {"home   end", "first frame, last frame"},
    {"mouse", "click or drag on the bar to seek"},
    {"d", "Display: Source and Display: Target"},
    {"f", "full screen"},
    {"h", "this page"},
    {"q   Esc", "quit"},
};

/// "1:02.48".
std::string ClockText(double seconds) {
  const auto hundredths = std::llround(seconds * 100.0);
  const std::string rest = std::to_string(10000 + hundredths % 6000);  // four digits behind a one
  return std::to_string(hundredths / 6000) + ":" + rest.substr(1, 2) + "." + rest.substr(3, 2);
}

double TrackWidth(int32_t width) { return std::max(1.0, width - 2 * kMargin); }

}  // namespace

std::string PlaceText(const PlayerStatus& status) {
  return ClockText(status.seconds) + " of " + ClockText(status.length) + ", frame " +
         std::to_string(status.frame) + " of " + std::to_string(status.frames);
}

std::string DrawingText(const PlayerStatus& status) {
  const std::string pace = status.playing ? FixedText(status.shownRate, 1) + " fps, " +
                                                std::to_string(status.dropped) + " dropped"
                                          : "paused";
  return std::string(status.fullQuality ? "full" : "half") + " quality, " + pace +
         (status.target ? ", Display: Target" : ", Display: Source");
}

double StatusBar::FractionAt(int32_t x, int32_t width) {
  return std::clamp((x - kMargin) / TrackWidth(width), 0.0, 1.0);
}

FrameView StatusBar::Draw(int32_t width, const PlayerStatus& status) {
  if (!drawing_ || width_ != width) {
    drawing_ = std::make_unique<Drawing>(width, kHeight);
    width_ = width;
  }
  Drawing& bar = *drawing_;
  const double last = std::max(1, status.frames - 1);
  const double track = TrackWidth(width), at = kMargin + track * status.frame / last;
  bar.Fill({0.0, 0.0, static_cast<double>(width), kHeight}, kPaper);
  bar.Line({{kMargin, kTrackY}, {kMargin + track, kTrackY}}, kTrack, 4.0);
  bar.Line({{kMargin, kTrackY}, {at, kTrackY}}, kDone, 4.0);
  for (const double key : keys_) bar.Disc({kMargin + track * key, kTrackY}, 3.5, kKey);
  bar.Disc({at, kTrackY}, 7.5, kPaper);
  bar.Disc({at, kTrackY}, 6.0, kText);

  const std::string place = PlaceText(status), drawing = DrawingText(status);
  bar.Text(place, {kMargin, kTextY}, kTextSize, kText);
  const double free = width - 3 * kMargin - bar.WidthOf(place, kTextSize);
  if (bar.WidthOf(drawing, kTextSize) <= free) {
    bar.Text(drawing, {width - kMargin, kTextY}, kTextSize, kFaint, Align::kRight);
  }
  return bar.Pixels();
}

std::unique_ptr<Drawing> DrawHelp() {
  constexpr int32_t kWidth = 460;
  constexpr double kLine = 28.0, kTop = 36.0;
  const auto height = static_cast<int32_t>(kTop + kLine * std::size(kKeys) + 12.0);
  auto help = std::make_unique<Drawing>(kWidth, height);
  help->Fill({0.0, 0.0, kWidth, static_cast<double>(height)}, kPaper);
  help->Frame({0.5, 0.5, kWidth - 1.0, height - 1.0}, kTrack, 1.0);
  double y = kTop;
  for (const KeyHelp& line : kKeys) {
    help->Text(line.key, {130.0, y}, 15.0, kText, Align::kRight, true);
    help->Text(line.meaning, {156.0, y}, 15.0, kText);
    y += kLine;
  }
  return help;
}

}  // namespace kelto::host
