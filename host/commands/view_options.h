// The options that say where the view looks.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/commands/tour_options.h"
#include "host/moves/calm_move.h"
#include "host/plan/render_plan.h"

namespace CLI {
class App;
}

namespace kelto::host {

/// The options as they were typed; empty where nothing was.
struct ViewOptions {
  std::string from, to, move, fit, amount, motion, faceModel, maxSpeed, maxZoomRate;
  std::vector<std::string> views, holds, goes;
  /// The last three in the order in which they were typed.
  std::vector<TourWord> tour;
  /// Set by the command, not typed. Whether a photograph without a view gets a gentle move.
  bool movesByItself = false;
  /// The picture's place in a show, 0-based, where it is in one.
  std::optional<int32_t> turn;
  /// Whether the film comes back to its beginning.
  bool loop = false;
  /// Whether something else says how long the film is.
  bool lengthGiven = false;
};

/// Declares the options on `command`, in this group of its help, to be parsed into `options`.
void DeclareViews(CLI::App& command, const std::string& group, ViewOptions& options);

/// What ApplyViews set.
struct AppliedViews {
  bool given = false;  ///< whether there were views
  /// The limits of a move that has any, for SetCalmMove once the plan says how its views are
  /// reached and left.
  std::optional<AskedMove> calm{};
};

/// Sets the views and the motion law that the options ask for, by the plan's film as it stands;
/// looks at the photo where that is needed. Throws UsageError that names the option, and Error for
/// the photo.
AppliedViews ApplyViews(const ViewOptions& options, RenderPlan& plan);

/// Checks the list of views that a plan has from a project, as far as only the photo says what is
/// wrong with it; `place` is what stands before "views" in messages, such as "photo.json: ". Opens
/// the photo where one is given in its pixels. Throws Error that names file and field, or the
/// photo.
void CheckViews(const std::string& place, const RenderPlan& plan);

}  // namespace kelto::host
