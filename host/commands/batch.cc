#include "host/commands/commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <numeric>
#include <system_error>

#include "host/base/error.h"
#include "host/commands/film_options.h"
#include "host/commands/line_options.h"
#include "host/commands/picture_options.h"
#include "host/commands/plan_options.h"
#include "host/commands/sandbox_option.h"
#include "host/effect/module_file.h"
#include "host/files/input_file.h"
#include "host/files/path_text.h"
#include "host/files/program_folder.h"
#include "host/files/work_file.h"
#include "host/film/coded_films.h"
#include "host/jobs/film_job.h"
#include "host/jobs/film_record.h"
#include "host/jobs/picture_list.h"
#include "host/jobs/picture_memory.h"
#include "host/jobs/task_plan.h"
#include "host/plan/default_plan.h"
#include "host/processes/task_processes.h"
#include "host/sources/media.h"
#include "host/terminal/events.h"
#include "host/terminal/interrupt.h"
#include "host/terminal/progress.h"
#include "host/terminal/standard_output.h"
#include "host/terminal/terminal.h"

namespace kelto::host {
namespace {

namespace fs = std::filesystem;

/// The options as they were typed; empty where nothing was.
struct BatchOptions {
  std::vector<std::string> inputs;
  std::string folder, order, planForm;
  bool resume = false, list = false;
  FilmOptions film;
  PlanOptions plan;
};

/// A picture and its film.
struct Item {
  std::string picture, film, record;
  std::string place;  ///< of the options that a list has for the picture
  std::shared_ptr<const PictureOptions> options;
};

class Batch {
 public:
  Batch(const BatchOptions& options, std::vector<std::string> words)
      : options_(options),
        common_(std::make_shared<PictureOptions>(PictureOptions{options.plan, std::move(words)})),
        kind_(KindFor("", options.film.format.empty() ? UsualFilmKind() : options.film.format)) {
    if (options.folder.empty()) throw UsageError("-o is empty; name the folder for the films");
    if (kind_.pictures) {
      throw UsageError("--format " + options.film.format +
                       ": a batch makes a film of each picture; render numbered pictures one film "
                       "at a time");
    }
    // What is wrong with the options is reported once, not for every picture.
    CheckOptions();
    CollectItems();
  }

  void PrintTasks() const {
    // What Run would refuse; only a module that is named must be the same elsewhere.
    JobsAsked(options_.film, 1);
    if (!options_.film.module.empty()) FindModule(options_.film.module);
    const std::string program = TextOf(ProgramFile());
    std::vector<FilmTask> tasks;
    for (const Item& item : items_) tasks.push_back(TaskOf(item));
    PrintResult(PlanText(options_.planForm.empty() ? PlanForms().front() : options_.planForm,
                         program.empty() ? "kelto" : program, tasks));
  }

  void Run() {
    module_ = FindModule(options_.film.module);
    MakeFolders(options_.folder);
    // Here, once for all the processes that make films.
    for (const std::string& folder : {options_.folder, RecordFolderOf(options_.folder)}) {
      RemoveAbandonedParts(PathOf(folder));
    }
    const int32_t jobs = JobsAsked(options_.film, CoreCount());
    if (Events()) {
      PrintEvent("start", {{"output", options_.folder},
                           {"films", static_cast<int64_t>(items_.size())},
                           {"kept", kept_},
                           {"jobs", int64_t{jobs}}});
    }
    MakeFilms(jobs);
    if (Events()) {
      PrintEvent("done",
                 {{"output", options_.folder}, {"films", over_ - failed_}, {"failed", failed_}});
    }
    if (failed_ > 0) throw ToldError();
  }

 private:
  void CheckOptions() const {
    if (!options_.plan.over.empty()) CheckVideo(options_.plan.over);
    RenderPlan plan = DefaultPlan("");
    PlanOptions common = options_.plan;
    common.views.movesByItself = false;
    try {
      ApplyOptions(common, plan);
    } catch (const UsageError&) {
      throw;
    } catch (const Error&) {
      // Some options mean what they mean for a certain picture, and there is none yet.
    }
    CheckRequest(kind_, RequestFor("film", plan));
    if (!options_.plan.audio.empty()) CheckSoundFile(options_.plan.audio);
  }

  void MakeFilms(int32_t jobs) {
    Progress progress("film", std::max<int64_t>(1, static_cast<int64_t>(items_.size())));
    std::map<size_t, double> underWay;  // how much of each film
    const auto show = [&] {
      progress.Show(
          std::accumulate(underWay.begin(), underWay.end(), static_cast<double>(over_),
                          [](double sum, const auto& film) { return sum + film.second; }));
    };
    const TaskList tasks{items_.size(),
                         PictureMemory(),
                         [&](size_t index, const TaskOwner& owner) { Make(items_[index], owner); },
                         [&](size_t index, const std::string& failure) {
                           Tell(items_[index], failure);
                           underWay.erase(index);
                           ++over_;
                           show();
                         },
                         [&](size_t index, const std::string& text) {
                           const std::string& picture = items_[index].picture;
                           PrintMessage(text.starts_with(picture) ? text : picture + ": " + text);
                         },
                         [&](size_t index, double share) {
                           underWay[index] = share;
                           show();
                         }};
    show();
    try {
      RunTasks(tasks, jobs);
    } catch (const Error&) {
      if (InterruptSignal() != 0) {
        PrintMessage("interrupted after " + std::to_string(over_) + " of " +
                     std::to_string(items_.size()) + " films; use --resume to go on");
      }
      throw;
    }
  }

  static bool Events() { return CurrentReporting() == Reporting::kJson; }

  FilmRequest RequestFor(const std::string& film, const RenderPlan& plan) const {
    FilmRequest request;
    request.output = film;
    request.format = plan.format;
    request.frames = plan.frames;
    request.transparent = plan.transparent;
    request.audio = SoundFor(plan, kind_);
    ApplyToRequest(options_.film, request);
    return request;
  }

  /// The pictures whose films are to be made; with --resume those that have none yet.
  void CollectItems() {
    const std::vector<ListedPicture> pictures =
        PicturesOf(options_.inputs, OrderAsked(options_.order));
    const std::vector<std::string> names = FilmNames(PathsOf(pictures), kind_.name);
    std::vector<std::string> others;
    for (size_t i = 0; i < pictures.size(); ++i) {
      const ListedPicture& picture = pictures[i];
      const fs::path folder = PathOf(options_.folder);
      const Item item{picture.path, TextOf(folder / PathOf(names[i])),
                      TextOf(PathOf(RecordFolderOf(options_.folder)) / PathOf(names[i] + ".json")),
                      picture.place, OptionsOf(picture)};
      if (options_.resume && IsMade(item, others)) {
        ++kept_;
      } else {
        items_.push_back(item);
      }
    }
    if (others.empty()) return;
    throw UsageError("--resume: " + others.front() +
                     (others.size() == 1 ? " has been" : " and others have been") +
                     " made with other options; leave --resume out to make all films again, or "
                     "choose another folder");
  }

  std::shared_ptr<const PictureOptions> OptionsOf(const ListedPicture& picture) const {
    if (picture.options.empty()) return common_;
    return std::make_shared<PictureOptions>(ReadLineOptions(picture, *common_, LineUse::kFilm));
  }

  /// Whether the film is there as it was made, of the picture as it is now and of all else that
  /// went into it. A film has its name only when it is whole, and its record only after that. One
  /// made with other options is added to `others`.
  bool IsMade(const Item& item, std::vector<std::string>& others) const {
    if (!IsFile(item.film)) return false;
    const auto record = ReadRecord(item.record);
    if (!record) return false;
    if (!IsOf(*record, item.picture)) return false;
    const bool asAsked = record->options == item.options->words;
    if (!asAsked) others.push_back(item.film);
    return asAsked && IsTheFilm(*record, item.film) && IsCurrent(*record);
  }

  void Make(const Item& item, const TaskOwner& owner) const {
    FilmJob job;
    SandboxAccess access = AccessFor(options_.film.module, {item.film, item.record});
    AddDevices(options_.film, access);
    const RenderPlan plan = AtPlaceOf({item.picture, "", item.place}, [&] {
      return PlanFor(item.picture, item.options->plan, access);
    });
    job.module = module_;
    job.scene = WholeScene(plan);
    job.kind = &kind_;
    job.request = RequestFor(item.film, plan);
    job.ends = EndsAsked(options_.film, job.request);
    job.depth = DepthAskedBy(options_.film);
    CheckJob(job);
    owner.await(job.memory);
    MakeOnRecord(item.record,
                 RecordOf({item.picture, plan.photo, plan.over, plan.audio}, item.options->words),
                 item.film, [&] {
                   const auto frames = static_cast<double>(job.scene.part.Count());
                   MakeFilm(job,
                            [&](int32_t done, const FrameView&) { owner.report(done / frames); });
                 });
  }

  void Tell(const Item& item, const std::string& failure) {
    const bool named = failure.starts_with(item.picture) || failure.starts_with(item.film) ||
                       (!item.place.empty() && failure.starts_with(item.place));
    const std::string text = named ? failure : item.picture + ": " + failure;
    if (!failure.empty()) ++failed_;
    if (!Events()) {
      if (!failure.empty()) PrintFailure(text);
    } else if (failure.empty()) {
      PrintEvent("film", {{"picture", item.picture}, {"output", item.film}, {"state", "made"}});
    } else {
      PrintEvent(
          "film",
          {{"picture", item.picture}, {"output", item.film}, {"state", "failed"}, {"text", text}});
    }
  }

  FilmTask TaskOf(const Item& item) const {
    FilmTask task{
        AbsoluteText(item.picture), AbsoluteText(item.film), AbsoluteText(item.record), {}};
    if (!options_.film.module.empty()) {
      task.options.insert(task.options.end(), {"--module", AbsoluteText(options_.film.module)});
    }
    if (options_.film.strict) task.options.emplace_back("--strict");
    if (CurrentSandboxUse() != SandboxUse::kAvailable) {
      const bool none = CurrentSandboxUse() == SandboxUse::kNone;
      task.options.emplace_back(none ? "--no-sandbox" : "--sandbox");
    }
    task.options.insert(task.options.end(), item.options->words.begin(), item.options->words.end());
    return task;
  }

  const BatchOptions& options_;
  std::shared_ptr<const PictureOptions> common_;
  const FilmKind& kind_;
  std::string module_;
  std::vector<Item> items_;
  int64_t kept_ = 0, over_ = 0, failed_ = 0;
};

void Run(const BatchOptions& options, const CLI::App& command) {
  ApplyReporting(options.film);
  Batch batch(options, WordsGiven(command));
  if (options.list || !options.planForm.empty()) {
    batch.PrintTasks();
  } else {
    batch.Run();
  }
}

}  // namespace

CLI::App* AddBatch(CLI::App& app) {
  CLI::App* command = app.add_subcommand("batch", "Make a film of each of many photographs");
  const auto options = std::make_shared<BatchOptions>();
  DeclarePictures(*command, options->inputs, options->order);
  constexpr const char* kFiles = "Files";
  command
      ->add_option("-o,--output", options->folder,
                   "Folder for the films, named like their photographs; made if it is not there")
      ->group(kFiles)
      ->type_name("FOLDER")
      ->required();
  DeclareFilm(*command, options->film,
              "Films made side by side, each by a process [one for each core]");
  DeclareDepth(*command, options->film);
  command->get_option("--format")
      ->description(std::string("Kind of the films; see kelto render --help [") + UsualFilmKind() +
                    "]");
  command
      ->add_flag("--resume", options->resume,
                 "Go on where a batch with the same options was stopped: films that are there stay")
      ->group("Work");
  command
      ->add_flag("--plan", options->list,
                 "Print the work as lines for a shell, a film each, and do nothing; with --resume "
                 "those that are left")
      ->group("Work");
  command
      ->add_option(
          "--plan-as", options->planForm,
          "Print the work as a shell's lines (shell), a job array for sbatch (slurm), a job "
          "template of Open Job Description (openjd) or a job specification of OpenCue (opencue), "
          "and do nothing [shell]")
      ->group("Work")
      ->type_name("FORM");
  DeclarePlan(*command, options->plan);
  command->final_callback([options, command] { Run(*options, *command); });
  return command;
}

}  // namespace kelto::host
