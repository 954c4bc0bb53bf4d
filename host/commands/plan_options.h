// The options that settle a plan, shared by every command that takes a photograph.
#pragma once

#include <string>
#include <vector>

#include "host/plan/render_plan.h"

namespace CLI {
class App;
}

namespace kelto::host {

/// The options as they were typed; empty where nothing was.
struct PlanOptions {
  std::string size, rate, seconds, frames, fields;
  std::string from, to;
  std::string background, playMode;
  /// A word for each of ChoiceLists(), in its order.
  std::vector<std::string> words;
};

/// Declares the options on `command`, to be parsed into `options`, which must outlive the parsing.
void DeclarePlan(CLI::App& command, PlanOptions& options);

/// The plan of `input`, a photograph's path, with the options that were given. Throws UsageError
/// that names the option.
RenderPlan PlanFor(const std::string& input, const PlanOptions& options);

/// What a film of a photograph is when no option says otherwise.
RenderPlan DefaultPlan(const std::string& photo);

/// Moves `plan`'s view from one to the other, with the usual velocities.
void SetMove(RenderPlan& plan, const View& from, const View& to);

/// Lets the options that were given change `plan`. Throws UsageError that names the option.
void ApplyOptions(const PlanOptions& options, RenderPlan& plan);

}  // namespace kelto::host
