#include "host/jobs/task_plan.h"

#include <algorithm>

#include "host/base/error.h"
#include "host/base/texts.h"
#include "host/jobs/cue_spec.h"
#include "host/jobs/job_template.h"
#include "host/jobs/task_line.h"

namespace kelto::host {
namespace {

constexpr const char* kPlanForms[] = {"shell", "slurm", "openjd", "opencue"};

/// Slurm allows an array no higher index than 1000 unless its configuration says otherwise.
constexpr size_t kMaxArraySize = 1000;

std::string RenderLine(const std::string& program, const FilmTask& task) {
  std::vector<std::string> words{program,  "render", task.picture, "-o",       task.film,
                                 "--jobs", "1",      "--record",   task.record};
  words.insert(words.end(), task.options.begin(), task.options.end());
  return TaskLine(words);
}

std::string ShellPlan(const std::string& program, std::span<const FilmTask> tasks) {
  std::string text;
  for (const FilmTask& task : tasks) text += RenderLine(program, task) + "\n";
  return text;
}

std::string SlurmPlan(const std::string& program, std::span<const FilmTask> tasks) {
  if (tasks.empty()) return "";
  const std::string films = std::to_string(tasks.size());
  const std::string step = std::to_string(std::min(tasks.size(), kMaxArraySize));
  std::string text =
      "#!/bin/sh\n"
      "#SBATCH --job-name=kelto\n"
      "#SBATCH --cpus-per-task=1\n"
      "#SBATCH --array=1-" +
      step +
      "\n"
      "# Each task makes the film of its number, and those that come " +
      step + " by " + step +
      " after it.\n"
      "film() {\n"
      "  case $1 in\n";
  size_t number = 0;
  for (const FilmTask& task : tasks) {
    text += "    " + std::to_string(++number) + ") " + RenderLine(program, task) + " ;;\n";
  }
  return text +
         "  esac\n"
         "}\n"
         "code=0\n"
         "number=${SLURM_ARRAY_TASK_ID:?submit this script with sbatch}\n"
         "while [ \"$number\" -le " +
         films +
         " ]; do\n"
         "  film \"$number\" || code=$?\n"
         "  number=$((number + " +
         step +
         "))\n"
         "done\n"
         "exit \"$code\"\n";
}

std::string CuePlan(const std::string& program, std::span<const FilmTask> tasks) {
  if (tasks.empty()) return "";
  std::vector<std::string> lines;
  for (const FilmTask& task : tasks) lines.push_back(RenderLine(program, task));
  return CueSpec(CueSiteOfEnvironment(), lines);
}

}  // namespace

std::span<const char* const> PlanForms() { return kPlanForms; }

std::string PlanText(const std::string& form, const std::string& program,
                     std::span<const FilmTask> tasks) {
  if (form == "shell") return ShellPlan(program, tasks);
  if (form == "slurm") return SlurmPlan(program, tasks);
  if (form == "openjd") return JobTemplate(program, tasks);
  if (form == "opencue") return CuePlan(program, tasks);
  throw UsageError("--plan-as " + form + ": choose one of " + Joined(kPlanForms));
}

}  // namespace kelto::host
