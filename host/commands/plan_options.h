// The options that settle a plan, shared by every command that takes a photograph.
#pragma once

#include <string>
#include <vector>

#include "host/commands/view_options.h"
#include "host/jobs/frame_source.h"
#include "host/plan/render_plan.h"
#include "host/sandbox/sandbox.h"

namespace CLI {
class App;
}

namespace kelto::host {

/// The options as they were typed; empty where nothing was.
struct PlanOptions {
  std::string size, rate, seconds, frames, fields;
  ViewOptions views;
  std::string background, playMode, ease, caption, beside, rotate;
  std::string over, audio;
  bool linearLight = false;  ///< whether filters mix light
  bool fitAudio = false;     ///< whether the film is as long as its sound
  /// A word for each of ChoiceLists(), in its order.
  std::vector<std::string> words;
};

/// Declares the options on `command`, and those that settle the sandbox, to be parsed into
/// `options`, which must outlive the parsing.
void DeclarePlan(CLI::App& command, PlanOptions& options);

/// Those of them alone that concern one picture: views, and how it is drawn.
void DeclarePicture(CLI::App& command, PlanOptions& options);

/// The plan of `input`, the path of a photograph or of a project file, without options. Throws
/// Error for the project. Decodes nothing.
RenderPlan PlanOf(const std::string& input);

/// The same with the options that were given. Some need to know what is in the picture or video, so
/// this process enters the sandbox first, where it touches the plan's files and `others`. Throws
/// UsageError that names the option, and Error.
RenderPlan PlanFor(const std::string& input, const PlanOptions& options, SandboxAccess others);

/// All frames of a plan. One more frame of a film that comes back to its
/// beginning would be the first one again: it is left out.
Scene WholeScene(RenderPlan plan);

/// PlanFor in a process that is in a sandbox already, one that allows AddSources. `calm` gets the
/// move that has limits of speed, for films whose length is settled later.
RenderPlan ChangedPlan(const std::string& input, const PlanOptions& options,
                       std::optional<AskedMove>* calm = nullptr);

/// The same of a plan from a project; `place` stands before its fields in messages, such as
/// "photo.json: ".
RenderPlan ChangedPlan(RenderPlan plan, const std::string& place, const PlanOptions& options,
                       std::optional<AskedMove>* calm = nullptr);

/// The files that ChangedPlan reads, added to `access`. Throws Error for the project.
void AddSources(const std::string& input, const PlanOptions& options, SandboxAccess& access);

/// Those of a plan and its options.
void AddSources(const RenderPlan& plan, const PlanOptions& options, SandboxAccess& access);

/// Lets the options that were given change `plan`; `calm` is as in ChangedPlan. Whether views are
/// among them. Throws UsageError that names the option, and Error for a photo that an option needs
/// to know the size of.
bool ApplyOptions(const PlanOptions& options, RenderPlan& plan,
                  std::optional<AskedMove>* calm = nullptr);

}  // namespace kelto::host
