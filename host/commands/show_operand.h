// Operands that name a show, for commands that show something of it.
#pragma once

#include <string>
#include <vector>

#include "host/commands/show_plans.h"
#include "host/facts/show_summary.h"
#include "host/jobs/cross_fade.h"
#include "host/jobs/slideshow.h"

namespace CLI {
class App;
}

namespace kelto::host {

/// Declares the operand of commands that show a film of one picture or a show; one at the least.
void DeclareShown(CLI::App& command, std::vector<std::string>& inputs);

/// Whether `inputs` are several, or a folder, a list of pictures, or a project of a show: not one
/// photograph, nor a project of one.
bool NamesShow(const std::vector<std::string>& inputs);

/// What a sheet or a window with a film of these is called: by its file, or by its first.
std::string ShownName(const std::vector<std::string>& inputs);

/// What is to be known of a show.
struct OpenedShow {
  ShowPlans plans;
  std::string audio;  ///< its project's or that of --audio; empty for none
  FadeKind fadeKind = FadeKind::kCross;
  TitleCard title{};
};

/// Looks at the show that `options` names, all of whose plans make one kind of film; `command` has
/// parsed them. `access` gets the files that the pictures are made of, and this process enters the
/// sandbox with it unless `entersLater`. Throws UsageError and Error.
OpenedShow OpenShow(const ShowOptions& options, const CLI::App& command, SandboxAccess& access,
                    bool entersLater = false);

/// Throws UsageError where --each or --fade was given for one picture.
void CheckIsShow(const ShowOptions& options);

/// The frames of its film, with the title's card. Throws UsageError for too many.
int32_t FramesOfShow(const OpenedShow& show);

/// Its pictures, with where in that film each begins; they refer to `show`.
std::vector<PictureOfShow> PlacedPictures(const OpenedShow& show);

}  // namespace kelto::host
