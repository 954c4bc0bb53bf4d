#include "host/commands/show_operand.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <fstream>

#include "host/base/error.h"
#include "host/commands/film_options.h"
#include "host/files/input_file.h"
#include "host/files/path_text.h"
#include "host/jobs/film_job.h"
#include "host/jobs/picture_list.h"
#include "host/jobs/show_film.h"
#include "host/jobs/slideshow.h"
#include "host/options/rate.h"
#include "host/options/usual_times.h"
#include "host/project/project_file.h"

namespace kelto::host {
namespace {

namespace fs = std::filesystem;

/// Whether a file begins as texts do; every kind of picture has other bytes near its beginning.
bool BeginsAsText(const std::string& path) {
  std::ifstream file(ForCalls(PathOf(path)), std::ios::binary);
  char bytes[512];
  file.read(bytes, sizeof bytes);
  const auto count = file.gcount();
  return count > 0 && std::all_of(bytes, bytes + count, [](unsigned char c) {
           return c >= 32 || c == '\n' || c == '\r' || c == '\t';
         });
}

/// Those words of the command line that say what pictures show, as lines of a list may.
std::vector<std::string> PictureWords(const CLI::App& command) {
  CLI::App known;
  PlanOptions ignored;
  DeclarePlan(known, ignored);
  std::vector<std::string> words;
  bool kept = false;
  for (const std::string& word : WordsGiven(command)) {
    if (word.starts_with("--")) {
      kept = word != "--loop" && known.get_option_no_throw(word) != nullptr;
    }
    if (kept) words.push_back(word);
  }
  return words;
}

void RefuseLength(const PlanOptions& plan) {
  const std::pair<const char*, bool> given[] = {{"--seconds", !plan.seconds.empty()},
                                                {"--frames", !plan.frames.empty()},
                                                {"--over", !plan.over.empty()},
                                                {"--loop", plan.views.loop},
                                                {"--fit-audio", plan.fitAudio}};
  for (const auto& [option, isGiven] : given) {
    if (!isGiven) continue;
    throw UsageError(
        std::string(option) +
        ": is for films of one picture; --each says how long those of a show are seen");
  }
}

}  // namespace

void DeclareShown(CLI::App& command, std::vector<std::string>& inputs) {
  command
      .add_option("INPUT", inputs,
                  "The photograph or project; or a show: its project, a folder, a list, or several "
                  "photographs")
      ->required()
      ->type_name("");
}

bool NamesShow(const std::vector<std::string>& inputs) {
  if (inputs.size() > 1) return true;
  const std::string& input = inputs.front();
  if (fs::is_directory(StatusOf(PathOf(input)))) return true;
  if (!IsFile(input)) return false;
  if (IsProjectName(input)) return IsShowText(ReadProjectText(input), input);
  return !EndsLikeAPicture(input) && BeginsAsText(input);
}

std::string ShownName(const std::vector<std::string>& inputs) {
  const std::string first = NameOf(AbsoluteText(inputs.front()));
  if (inputs.size() == 1) return first;
  return first + " and " + std::to_string(inputs.size() - 1) + " more";
}

OpenedShow OpenShow(const ShowOptions& options, const CLI::App& command, SandboxAccess& access,
                    bool entersLater) {
  RefuseLength(options.plan);
  ShowPictures pictures = PicturesFor(options, PictureWords(command));
  AddSourcesOf(pictures, access);
  if (!entersLater) EnterSandbox(access);
  OpenedShow show;
  show.plans = PlansFor(pictures, CoreCount(), [](const RenderPlan&, const Photo&) {});
  SetFades(pictures, show.plans);
  CheckFormats(show.plans.plans);
  if (!pictures.title.empty()) {
    show.title.text = pictures.title;
    show.title.frames = FramesOf(kTitleSeconds, show.plans.plans.front().format.rate);
    show.title.fade = TitleFadeFor(show.title.frames, pictures, show.plans);
  }
  PlaceCaptions(show.plans.plans, show.plans.fades, show.title.fade);
  if (pictures.fadeKind == "dip") show.fadeKind = FadeKind::kDip;
  show.audio = options.plan.audio.empty() ? pictures.audio : options.plan.audio;
  return show;
}

void CheckIsShow(const ShowOptions& options) {
  if (!options.eachGiven && !options.fadeGiven) return;
  throw UsageError(std::string(options.eachGiven ? "--each" : "--fade") +
                   ": is for shows: folders, lists, and projects of slideshows");
}

int32_t FramesOfShow(const OpenedShow& show) {
  Slideshow film;
  film.plans = show.plans.plans;
  film.fades = show.plans.fades;
  film.title = show.title;
  return SlideshowFrames(film);
}

std::vector<PictureOfShow> PlacedPictures(const OpenedShow& show) {
  const auto& [plans, photos, moves, fades] = show.plans;
  const std::vector<int32_t> begins = BeginningsOf(plans, fades);
  std::vector<PictureOfShow> pictures;
  for (size_t i = 0; i < plans.size(); ++i) {
    pictures.push_back(
        {plans[i], photos[i], show.title.Lead() + begins[i], i < fades.size() ? fades[i] : 0});
  }
  return pictures;
}

}  // namespace kelto::host
