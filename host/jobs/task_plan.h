// The work of a batch as other programs read it, to spread it over cores and machines.
#pragma once

#include <span>
#include <string>
#include <vector>

namespace kelto::host {

/// A film to be made elsewhere, by the command's "render".
struct FilmTask {
  std::string picture, film, record;  ///< absolute names
  std::vector<std::string> options;   ///< of its picture and of how it is to be made, as words
};

/// Names of the forms, the usual one first: "shell", "slurm", "openjd", "opencue".
std::span<const char* const> PlanForms();

/// The tasks, each done by one run of `program`, in a form of PlanForms:
/// - shell: a command a line
/// - slurm: a script for sbatch, a job array of up to 1000 tasks, which take films in turn
/// - openjd: a job template of Open Job Description, version 2023-09, in JSON, a task a film
/// - opencue: a job specification of OpenCue, in XML, a layer a film
/// Throws UsageError for a form of another name, Error for a word that the form cannot hold.
std::string PlanText(const std::string& form, const std::string& program,
                     std::span<const FilmTask> tasks);

}  // namespace kelto::host
