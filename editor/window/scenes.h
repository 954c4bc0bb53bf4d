// A plan as its canvas and timeline show it.
#pragma once

#include "editor/rules/stop_times.h"
#include "editor/widgets/canvas.h"
#include "editor/widgets/timeline.h"
#include "framing/pixel_size.h"
#include "host/plan/render_plan.h"

namespace kelto::editor {

/// Throws Error for a view that the effect cannot show.
CanvasScene CanvasSceneOf(const host::RenderPlan& plan, PixelSize photo, int selected,
                          bool beyondEdges, const FilmWay& way);

TimelineScene TimelineSceneOf(const host::RenderPlan& plan, int selected, const FilmWay& way);

/// What is heard during a film of so many seconds that begins at `begin` of a sound with these
/// peaks, kPeaksPerSecond of them: at even times over the film.
std::vector<float> SoundDuring(const std::vector<float>& peaks, double begin, double seconds);

/// The times that a film's views really take; empty for a film of keys.
StopTimes StopTimesOf(const host::RenderPlan& plan);

/// The project's words for how the way behind a stop is left and the next stop reached; empty where
/// nothing is said.
struct EasingWords {
  std::string out, in;
};
EasingWords EasingBehind(const host::RenderPlan& plan, size_t stop);

/// The parameter's name as the user reads it.
QString LaneName(const std::string& parameter);

/// The setting whose keys the timeline shows in this lane; null where it shows none.
const host::Setting* SettingOfLane(const host::RenderPlan& plan, size_t lane);

}  // namespace kelto::editor
