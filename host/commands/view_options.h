// The options that say where the view looks.
#pragma once

#include <string>
#include <vector>

#include "host/plan/render_plan.h"

namespace CLI {
class App;
}

namespace kelto::host {

/// The options as they were typed; empty where nothing was.
struct ViewOptions {
  std::string from, to, move, fit;
  std::vector<std::string> views;
};

/// Declares the options on `command`, in this group of its help, to be parsed into `options`.
void DeclareViews(CLI::App& command, const std::string& group, ViewOptions& options);

/// Sets the views that the options ask for, by the plan's film as it stands; looks at the photo
/// where that is needed. Throws UsageError that names the option, and Error for the photo.
void ApplyViews(const ViewOptions& options, RenderPlan& plan);

}  // namespace kelto::host
