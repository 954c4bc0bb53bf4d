#include "host/facts/film_summary.h"

#include <algorithm>
#include <cstdio>

#include "host/base/error.h"
#include "host/base/shown_text.h"
#include "host/effect/render_state.h"
#include "host/options/size.h"
#include "host/terminal/interrupt.h"

namespace kelto::host {
namespace {

std::string Fixed(double value, int decimals) {
  char text[64];
  std::snprintf(text, sizeof text, "%.*f", decimals, value);
  return text;
}

std::string At(const FilmMoment& moment) { return "at " + Fixed(moment.seconds, 2) + " s"; }

}  // namespace

FilmSummary SummaryOf(FrameInspector& inspector) {
  FilmSummary summary;
  const RenderPlan& plan = inspector.Plan();
  bool first = true;
  for (int32_t number = 0; number < plan.frames; ++number) {
    if (InterruptSignal() != 0) throw Error("interrupted");
    for (int32_t field = 0; field < FieldsOf(plan); ++field) {
      const FrameFacts facts = inspector.Of(number, field);
      const DrawnArea area = inspector.ViewArea(facts);
      const FilmMoment speed{facts.seconds, facts.speed.perceived};
      const FilmMoment enlargement{facts.seconds, 1.0 / std::min(area.scaleX, area.scaleY)};
      if (first || speed.value < summary.slowest.value) summary.slowest = speed;
      if (first || speed.value > summary.fastest.value) {
        summary.fastest = speed;
        summary.most = facts.speed;
      }
      if (first || enlargement.value > summary.enlargement.value) summary.enlargement = enlargement;
      first = false;
    }
  }
  return summary;
}

std::string SummaryText(FrameInspector& inspector, const Photo& photo) {
  const FilmSummary summary = SummaryOf(inspector);
  const RenderPlan& plan = inspector.Plan();
  const FilmFormat& format = plan.format;
  const double rate = format.rate.PerSecond();
  char perSecond[32];
  std::snprintf(perSecond, sizeof perSecond, "%.6g", rate);
  std::string text = "photo:        " + ShownText(photo.given) + ", " +
                     std::to_string(photo.width) + "x" + std::to_string(photo.height) + " pixels\n";
  text += "film:         " + Fixed(plan.frames / rate, 2) + " s, " + std::to_string(plan.frames) +
          " frames at " + perSecond + " fps, " + ToString(format.size) +
          (format.Interlaced() ? ", interlaced\n" : "\n");
  if (!plan.over.empty()) text += "over:         " + ShownText(plan.over) + "\n";
  if (!plan.audio.empty()) text += "sound:        " + ShownText(plan.audio) + "\n";
  text += "slowest:      perceived speed " + Fixed(summary.slowest.value, 3) + " " +
          At(summary.slowest) + "\n";
  text += "fastest:      perceived speed " + Fixed(summary.fastest.value, 3) + " " +
          At(summary.fastest) + ": " + Fixed(summary.most.pan, 3) + " frame widths and " +
          Fixed(summary.most.zoom, 3) + " doublings of the zoom a second\n";
  text += "enlargement:  " + Fixed(summary.enlargement.value, 2) + " times at the most, " +
          At(summary.enlargement) + "\n";
  if (summary.enlargement.value > kMostEnlargement) {
    text += "warning:      above " + Fixed(kMostEnlargement, 1) +
            " times the picture looks soft; zoom in less, make the film smaller, or use a larger "
            "photo\n";
  }
  return text;
}

}  // namespace kelto::host
