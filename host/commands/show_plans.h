// The pictures of a show, as operands, folders, lists and projects name them, and their plans.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/commands/line_options.h"
#include "host/effect/photo.h"
#include "host/project/show_project.h"

namespace kelto::host {

/// The options as they were typed; empty or as usual where nothing was.
struct ShowOptions {
  std::vector<std::string> inputs;
  std::string order;
  std::string each = "5", fade = "1";  ///< a usual fade is shorter where pictures are seen briefly
  bool eachGiven = false, fadeGiven = false;
  PlanOptions plan;
};

/// Declares --each and --fade on `command`, in this group of its help.
void DeclareTimes(CLI::App& command, const std::string& group, ShowOptions& options);

/// A picture of the show, and how long it is seen, as text.
struct PictureInShow {
  ListedPicture listed;
  PictureOptions options;
  std::string each, fade;  ///< the line's or project's own, or the command line's
  bool fadeGiven = false;
  std::optional<RenderPlan> plan{};  ///< by the show's project, without the options
  std::string place{};  ///< stands before its fields in messages, "show.json: pictures[2]."
};

struct ShowPictures {
  std::vector<PictureInShow> pictures;
  std::string audio{}, fadeKind{}, title{};  ///< of the show's project; empty where nothing is said
};

/// The pictures that the inputs name: a project of a show alone, or else as PicturesOf has it.
/// `words` are the command line's options as WordsGiven has them. Throws Error.
ShowPictures PicturesFor(const ShowOptions& options, const std::vector<std::string>& words);

/// Leaves out the pictures that `work` fails for, with a message. Throws Error where none remains,
/// and, where warnings are errors, for the first.
void KeepThose(std::vector<PictureInShow>& pictures,
               const std::function<void(const PictureInShow&)>& work);

/// Adds the files that the pictures are made of to `access`; those that cannot be read are left
/// out.
void AddSourcesOf(ShowPictures& show, SandboxAccess& access);

/// What each picture shows, and for how many frames it fades into the next one.
struct ShowPlans {
  std::vector<RenderPlan> plans;
  std::vector<Photo> photos;                    ///< of the plans
  std::vector<std::optional<AskedMove>> moves;  ///< of the plans, where they have limits of speed
  std::vector<int32_t> fades;                   ///< one less
};

/// The plans of all pictures, without fades, with `looked` called for each; those that cannot be
/// shown are left out. Up to `workers` processes look at photographs side by side, as far as these
/// fit into memory; what comes of it is the same. To be called in the sandbox, which allows
/// AddSourcesOf. Throws UsageError and Error.
ShowPlans PlansFor(ShowPictures& show, int32_t workers,
                   const std::function<void(const RenderPlan&, const Photo&)>& looked);

/// Sets how long each picture is seen so that the film, with a card of `titleFrames` at its
/// beginning or 0 for none, is as long as its sound. Throws UsageError where that cannot be.
void FitToSound(const std::string& audio, int32_t titleFrames, ShowPictures& show,
                ShowPlans& plans);

/// Has all moves keep to their limits of speed again, after pictures have got other times.
void KeepCalm(ShowPlans& plans);

/// Frames of the fade from such a card into the first picture, which is as that picture's own.
int32_t TitleFadeFor(int32_t titleFrames, const ShowPictures& show, const ShowPlans& plans);

/// Sets the fades. Throws UsageError for one that is too long.
void SetFades(const ShowPictures& show, ShowPlans& plans);

/// Throws UsageError unless all plans, of one at least, make one kind of film.
void CheckFormats(const std::vector<RenderPlan>& plans);

/// The show as a project that makes the same film.
ShowProject ProjectOf(const ShowPlans& show, const std::string& audio);

}  // namespace kelto::host
