#include "host/jobs/job_template.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "host/base/error.h"
#include "host/base/shown_text.h"

namespace kelto::host {
namespace {

using TemplateJson = nlohmann::ordered_json;

/// Values that a task parameter can have, and characters of each.
constexpr size_t kMaxValues = 1024;
constexpr size_t kMaxValueLength = 1024;

size_t CharactersIn(const std::string& text) {
  return static_cast<size_t>(std::count_if(
      text.begin(), text.end(), [](unsigned char byte) { return (byte & 0xC0) != 0x80; }));
}

/// The word, which the template replaces nothing in.
const std::string& Literal(const std::string& word) {
  const auto refuse = [&](const std::string& why) {
    throw Error(ShownText(word) + ": " + why +
                ", which no job template can hold; use "
                "--plan-as shell");
  };
  if (word.find("{{") != word.npos) refuse("has {{ in it");
  const bool control = std::any_of(word.begin(), word.end(),
                                   [](unsigned char byte) { return byte < 0x20 || byte == 0x7F; });
  // ShownText replaces what is not UTF-8, and letters that change how a terminal reads others.
  if (control || ShownText(word) != word) refuse("has control characters, or is not UTF-8");
  return word;
}

const std::string& Value(const std::string& path) {
  if (CharactersIn(Literal(path)) > kMaxValueLength) {
    throw Error(path + ": the name has more than " + std::to_string(kMaxValueLength) +
                " characters, which no job template can hold; use --plan-as shell");
  }
  return path;
}

TemplateJson Paths(const char* name, std::span<const FilmTask> tasks,
                   const std::string FilmTask::*path) {
  TemplateJson values = TemplateJson::array();
  for (const FilmTask& task : tasks) values.push_back(Value(task.*path));
  return {{"name", name}, {"type", "PATH"}, {"range", std::move(values)}};
}

TemplateJson Step(const std::string& program, std::span<const FilmTask> tasks, size_t first) {
  TemplateJson words = {
      "render",   "{{Task.Param.Picture}}", "-o", "{{Task.Param.Film}}", "--jobs", "1",
      "--record", "{{Task.Param.Record}}"};
  for (const std::string& word : tasks.front().options) words.push_back(Literal(word));
  const std::string last = std::to_string(first + tasks.size() - 1);
  return {{"name", "Films " + std::to_string(first) + " to " + last},
          {"parameterSpace",
           {{"taskParameterDefinitions",
             {Paths("Picture", tasks, &FilmTask::picture), Paths("Film", tasks, &FilmTask::film),
              Paths("Record", tasks, &FilmTask::record)}},
            {"combination", "(Picture, Film, Record)"}}},
          {"script",
           {{"actions",
             {{"onRun",
               {{"command", Literal(program)},
                {"args", std::move(words)},
                // An interrupted film clears up.
                {"cancelation", {{"mode", "NOTIFY_THEN_TERMINATE"}}}}}}}}}};
}

}  // namespace

std::string JobTemplate(const std::string& program, std::span<const FilmTask> tasks) {
  if (tasks.empty()) return "";
  TemplateJson steps = TemplateJson::array();
  for (size_t first = 0; first < tasks.size();) {
    size_t end = first + 1;
    while (end < tasks.size() && end - first < kMaxValues &&
           tasks[end].options == tasks[first].options) {
      ++end;
    }
    steps.push_back(Step(program, tasks.subspan(first, end - first), first + 1));
    first = end;
  }
  const TemplateJson job = {{"specificationVersion", "jobtemplate-2023-09"},
                            {"name", "kelto"},
                            {"steps", std::move(steps)}};
  return job.dump(2) + "\n";
}

}  // namespace kelto::host
