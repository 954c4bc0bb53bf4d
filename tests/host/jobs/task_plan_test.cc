// What a batch prints for other programs, read as they do.
#include "host/jobs/task_plan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cctype>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>

#include "host/base/error.h"
#include "host/jobs/cue_spec.h"
#include "tests/support/photo.h"

namespace kelto::host {
namespace {

using Json = nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

FilmTask TaskFor(const std::string& name, std::vector<std::string> options = {}) {
  return {"/photos/" + name + ".jpg", "/films/" + name + ".mp4", "/films/.kelto/" + name + ".json",
          std::move(options)};
}

std::vector<FilmTask> Tasks(size_t count) {
  std::vector<FilmTask> tasks;
  for (size_t i = 1; i <= count; ++i) tasks.push_back(TaskFor("it's " + std::to_string(i)));
  return tasks;
}

std::string TextOfFile(const std::string& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// A program that adds the words that it is run with to a file, "|" behind each, and fails for
/// films called "bad".
class TaskPlan : public testing::Test {
 protected:
  TaskPlan() : program_(folder_ / "a program"), words_(folder_ / "words") {
    std::ofstream(program_) << "#!/bin/sh\nprintf '%s|' \"$@\" >>'" << words_ << "'\necho >>'"
                            << words_ << "'\n[ \"$4\" != /films/bad.mp4 ]\n";
    chmod(program_.c_str(), 0755);
  }
  /// Runs a script and reports its exit code.
  int RunScript(const std::string& script, const std::string& environment = "") {
    std::ofstream(folder_ / "script") << script;
    const int status = std::system((environment + " sh '" + (folder_ / "script") + "'").c_str());
    return WEXITSTATUS(status);
  }
  std::string Ran() { return TextOfFile(words_); }

  test::TempFolder folder_;
  std::string program_, words_;
};

std::string RunOf(const std::string& name, const std::string& more = "") {
  return "render|/photos/" + name + ".jpg|-o|/films/" + name +
         ".mp4|--jobs|1|--record|/films/.kelto/" + name + ".json|" + more + "\n";
}

TEST_F(TaskPlan, ForAShellIsACommandALine) {
  const std::vector<FilmTask> tasks{TaskFor("it's a $HOME"), TaskFor("b", {"--caption", "a  b"})};
  EXPECT_EQ(RunScript(PlanText("shell", program_, tasks)), 0);
  EXPECT_EQ(Ran(), RunOf("it's a $HOME") + RunOf("b", "--caption|a  b|"));
}

TEST_F(TaskPlan, ForSlurmMakesTheFilmsOfATask) {
  const std::vector<FilmTask> tasks{TaskFor("it's 1"), TaskFor("bad"), TaskFor("c")};
  const std::string script = PlanText("slurm", program_, tasks);
  EXPECT_THAT(script, HasSubstr("\n#SBATCH --array=1-3\n"));
  EXPECT_EQ(RunScript(script, "SLURM_ARRAY_TASK_ID=1"), 0);
  EXPECT_EQ(Ran(), RunOf("it's 1"));
  EXPECT_EQ(RunScript(script, "SLURM_ARRAY_TASK_ID=2"), 1);
  EXPECT_NE(RunScript(script, "unset SLURM_ARRAY_TASK_ID;"), 0) << "not by sbatch";
  EXPECT_EQ(Ran(), RunOf("it's 1") + RunOf("bad"));
}

TEST_F(TaskPlan, ForSlurmFitsIntoAnArrayOfAThousand) {
  std::vector<FilmTask> tasks = Tasks(2003);
  tasks[1002 - 1] = TaskFor("bad");
  const std::string script = PlanText("slurm", program_, tasks);
  EXPECT_THAT(script, HasSubstr("\n#SBATCH --array=1-1000\n"));
  EXPECT_EQ(RunScript(script, "SLURM_ARRAY_TASK_ID=2"), 1) << "and goes on after a bad picture";
  EXPECT_EQ(Ran(), RunOf("it's 2") + RunOf("bad") + RunOf("it's 2002"));
}

// Rules of Open Job Description's template schema, version 2023-09, that a template can break.

void ExpectKeys(const Json& object, const std::set<std::string>& known) {
  for (const auto& [key, value] : object.items()) EXPECT_TRUE(known.contains(key)) << key;
}

void ExpectName(const Json& name, size_t length) {
  EXPECT_GE(name.get<std::string>().size(), 1u);
  EXPECT_LE(name.get<std::string>().size(), length);
}

/// The text with the names of a task's parameters replaced, as a farm does before it runs it.
std::string Resolved(std::string text, const Json& values) {
  for (size_t at; (at = text.find("{{")) != text.npos;) {
    const size_t end = text.find("}}", at);
    EXPECT_NE(end, text.npos) << text;
    const std::string name = text.substr(at + 2, end - at - 2);
    EXPECT_EQ(name.rfind("Task.Param.", 0), 0u) << name;
    text.replace(at, end + 2 - at, values.at(name.substr(11)).get<std::string>());
  }
  return text;
}

/// The command lines of a step's tasks, after a look at all that the schema says of a step.
std::vector<std::vector<std::string>> LinesOf(const Json& step) {
  ExpectKeys(step, {"name", "parameterSpace", "script"});
  ExpectName(step.at("name"), 64);
  const Json& space = step.at("parameterSpace");
  ExpectKeys(space, {"taskParameterDefinitions", "combination"});
  std::string all;
  size_t tasks = 0;
  for (const Json& parameter : space.at("taskParameterDefinitions")) {
    ExpectKeys(parameter, {"name", "type", "range"});
    EXPECT_EQ(parameter.at("type"), "PATH");
    all += (all.empty() ? "" : ", ") + parameter.at("name").get<std::string>();
    tasks = parameter.at("range").size();
    EXPECT_GE(tasks, 1u);
    EXPECT_LE(tasks, 1024u);
    EXPECT_EQ(tasks, space["taskParameterDefinitions"][0]["range"].size());
    for (const Json& value : parameter.at("range")) ExpectName(value, 1024);
  }
  EXPECT_EQ(space.at("combination"), "(" + all + ")") << "each once, taken together";
  const Json& script = step.at("script");
  ExpectKeys(script, {"actions"});
  ExpectKeys(script.at("actions"), {"onRun"});
  const Json& action = script.at("actions").at("onRun");
  ExpectKeys(action, {"command", "args", "cancelation"});
  EXPECT_EQ(action.at("cancelation").at("mode"), "NOTIFY_THEN_TERMINATE");
  std::vector<std::vector<std::string>> lines;
  for (size_t task = 0; task < tasks; ++task) {
    Json values;
    for (const Json& parameter : space["taskParameterDefinitions"]) {
      values[parameter["name"].get<std::string>()] = parameter["range"][task];
    }
    std::vector<std::string> line{Resolved(action.at("command"), values)};
    for (const Json& word : action.at("args")) line.push_back(Resolved(word, values));
    lines.push_back(line);
  }
  return lines;
}

std::vector<std::vector<std::string>> LinesOfTemplate(const std::string& text) {
  const Json job = Json::parse(text);
  ExpectKeys(job, {"specificationVersion", "name", "steps"});
  EXPECT_EQ(job.at("specificationVersion"), "jobtemplate-2023-09");
  ExpectName(job.at("name"), 128);
  std::set<std::string> names;
  std::vector<std::vector<std::string>> lines;
  for (const Json& step : job.at("steps")) {
    EXPECT_TRUE(names.insert(step.at("name")).second) << "steps have names of their own";
    for (const auto& line : LinesOf(step)) lines.push_back(line);
  }
  EXPECT_FALSE(names.empty());
  return lines;
}

/// The text between two tags, behind `from`, which is moved there; what XML has other names for as
/// it is meant.
std::string ElementText(const std::string& xml, const std::string& name, size_t& from) {
  const size_t begin = xml.find("<" + name + ">", from);
  if (begin == xml.npos) return "";
  const size_t end = xml.find("</" + name + ">", begin);
  from = end;
  std::string text = xml.substr(begin + name.size() + 2, end - begin - name.size() - 2);
  for (const auto& [escape, meant] : {std::pair("&lt;", "<"), {"&gt;", ">"}, {"&amp;", "&"}}) {
    for (size_t at; (at = text.find(escape)) != text.npos;) {
      text.replace(at, std::string(escape).size(), meant);
    }
  }
  return text;
}

/// The names of all tags, in their order.
std::string TagsOf(const std::string& xml) {
  std::string tags;
  for (size_t at = 0; (at = xml.find('<', at)) != xml.npos; ++at) {
    if (std::isalpha(static_cast<unsigned char>(xml[at + 1])) == 0) continue;
    tags += xml.substr(at + 1, xml.find_first_of(" >", at) - at - 1) + " ";
  }
  return tags;
}

/// A user's environment for OpenCue, which the tests of a machine may not have.
class CuePlan : public TaskPlan {
 protected:
  CuePlan() {
    setenv("USER", "ann", 1);
    unsetenv("SHOW");
    unsetenv("SHOT");
  }
};

TEST_F(CuePlan, HasTheElementsOfItsDocumentTypeInTheirOrder) {
  const std::string spec = PlanText("opencue", "kelto", Tasks(2));
  EXPECT_THAT(spec, testing::StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                        "<!DOCTYPE spec PUBLIC \"SPI Cue Specification Language\" "
                                        "\"http://localhost:8080/spcue/dtd/cjsl-1.12.dtd\">\n"));
  EXPECT_EQ(TagsOf(spec),
            "spec show shot user job layers layer cmd range chunk layer cmd range chunk ");
  size_t at = 0;
  EXPECT_EQ(ElementText(spec, "show", at), "testing");
  EXPECT_EQ(ElementText(spec, "shot", at), "default");
  EXPECT_EQ(ElementText(spec, "user", at), "ann");
  EXPECT_THAT(spec, HasSubstr("<layer name=\"film_2\" type=\"Render\">"));
  EXPECT_EQ(PlanText("opencue", "kelto", {}), "");
}

TEST_F(CuePlan, RunsTheCommandOncePerFilm) {
  const std::vector<FilmTask> tasks{TaskFor("it's <a> & $HOME"),
                                    TaskFor("b", {"--caption", "Zürich #1"})};
  const std::string spec = PlanText("opencue", program_, tasks);
  size_t at = 0;
  for (int i = 0; i < 2; ++i) EXPECT_EQ(RunScript(ElementText(spec, "cmd", at)), 0);
  EXPECT_EQ(Ran(), RunOf("it's <a> & $HOME") + RunOf("b", "--caption|Zürich #1|"));
}

TEST_F(CuePlan, HasNoMoreLayersInAJobThanTheServerTakes) {
  const std::string spec = PlanText("opencue", "kelto", Tasks(2003));
  std::vector<int> layers;
  for (size_t at = 0; (at = spec.find('<', at)) != spec.npos; ++at) {
    if (spec.compare(at, 5, "<job ") == 0) layers.push_back(0);
    if (spec.compare(at, 7, "<layer ") == 0) ++layers.back();
  }
  EXPECT_THAT(layers, ElementsAre(1000, 1000, 3));
  EXPECT_THAT(spec, HasSubstr("<job name=\"kelto_3\">"));
}

TEST_F(CuePlan, RefusesWhatItCannotHold) {
  const auto refusal = [](const FilmTask& task) -> std::string {
    try {
      PlanText("opencue", "kelto", {&task, 1});
    } catch (const Error& error) {
      return error.what();
    }
    return "";
  };
  EXPECT_THAT(
      refusal(TaskFor("a", {"--caption", "#IFRAME#"})),
      HasSubstr("has a word between #, which is replaced, which no job of OpenCue can hold"));
  // Words are quoted for a shell without control characters; other lines may have some.
  const std::string line = "a\x1b";
  EXPECT_THROW(CueSpec(CueSiteOfEnvironment(), {&line, 1}), Error);
  EXPECT_THAT(refusal(TaskFor("a", {"--caption", std::string(4000, 'a')})),
              HasSubstr("longer than 4000 bytes"));
  setenv("SHOT", "a shot", 1);
  EXPECT_THAT(refusal(TaskFor("a")), HasSubstr("SHOT is \"a shot\"; set it to a name of"));
  setenv("SHOT", "sh010", 1);
  EXPECT_EQ(refusal(TaskFor("a")), "");
  setenv("USER", "root", 1);
  EXPECT_THAT(refusal(TaskFor("a")), HasSubstr("OpenCue runs no jobs of root; set USER"));
}

TEST(JobTemplate, RunsTheCommandOncePerFilm) {
  const std::vector<FilmTask> tasks{TaskFor("it's $1", {"--caption", "a \"b\""}),
                                    TaskFor("b", {"--caption", "a \"b\""}), TaskFor("Zürich")};
  const auto lines = LinesOfTemplate(PlanText("openjd", "/usr/bin/kelto", tasks));
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_THAT(lines[0], ElementsAre("/usr/bin/kelto", "render", "/photos/it's $1.jpg", "-o",
                                    "/films/it's $1.mp4", "--jobs", "1", "--record",
                                    "/films/.kelto/it's $1.json", "--caption", "a \"b\""));
  EXPECT_EQ(lines[1][2], "/photos/b.jpg");
  EXPECT_EQ(lines[2][2], "/photos/Zürich.jpg");
  EXPECT_EQ(lines[2].size(), 9u) << "without the others' options";
}

TEST(JobTemplate, SpreadsManyFilmsOverSteps) {
  const std::vector<FilmTask> tasks = Tasks(1030);
  const auto lines = LinesOfTemplate(PlanText("openjd", "kelto", tasks));
  ASSERT_EQ(lines.size(), 1030u);
  for (size_t i = 0; i < lines.size(); ++i) EXPECT_EQ(lines[i][2], tasks[i].picture);
}

TEST(JobTemplate, RefusesWhatItCannotHold) {
  const auto refusal = [](const FilmTask& task) -> std::string {
    try {
      PlanText("openjd", "kelto", {&task, 1});
    } catch (const Error& error) {
      return error.what();
    }
    return "";
  };
  EXPECT_EQ(refusal(TaskFor("a", {"--caption", "{{name}}"})),
            "{{name}}: has {{ in it, which no job template can hold; use --plan-as "
            "shell");
  EXPECT_THAT(refusal(TaskFor("a\x1b")), HasSubstr("control characters"));
  EXPECT_THAT(refusal(TaskFor("a\xff")), HasSubstr("is not UTF-8"));
  EXPECT_THAT(refusal(TaskFor(std::string(1025, 'a'))), HasSubstr("more than 1024 characters"));
}

TEST(PlanForms, AreThoseThatArePrinted) {
  setenv("USER", "ann", 1);
  const std::vector<FilmTask> tasks = Tasks(1), none;
  for (const std::string form : PlanForms()) {
    EXPECT_THAT(PlanText(form, "kelto", tasks), HasSubstr("it"));
    EXPECT_EQ(PlanText(form, "kelto", none), "") << form;
  }
  EXPECT_THROW(PlanText("post", "kelto", tasks), UsageError);
}

}  // namespace
}  // namespace kelto::host
