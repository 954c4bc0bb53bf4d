#include "tests/host/command/run.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <optional>
#include <regex>
#include <sstream>
#include <utility>

#include "tests/support/process.h"

namespace kelto::test {
namespace {

/// The parent of the process that a folder in /proc tells of; nothing when there is no such process
/// or it has ended.
std::optional<pid_t> ParentOfRunning(const std::filesystem::path& folder) {
  std::ifstream stat(folder / "stat");
  std::string text;
  if (!std::getline(stat, text)) return std::nullopt;
  // "PID (NAME) STATE PARENT ...", and the name may hold anything.
  std::istringstream rest(text.substr(text.rfind(')') + 1));
  char state = 0;
  pid_t parent = 0;
  if (!(rest >> state >> parent) || state == 'Z' || state == 'X') return std::nullopt;
  return parent;
}

/// "kelto: frame 51 of 170, 4.9 per second, 25 s left" comes every few seconds, if it takes so
/// long.
std::string WithoutProgress(const std::string& text) {
  static const std::regex progress(
      "kelto: (frame|film|photo) [0-9]+ of [0-9]+, [0-9.]+ a second, [0-9]+ s left\n");
  return std::regex_replace(text, progress, "");
}

}  // namespace

Command::Command(const Words& arguments, const std::string& output, const std::string& errors,
                 const std::string& program)
    : output_(output.empty() ? folder_ / "out" : output),
      errors_(errors.empty() ? folder_ / "err" : errors) {
  std::vector<std::string> words{program};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  argv.reserve(words.size() + 1);
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  process_ = Fork();
  if (process_ != 0) return;
  // As from a shell's command line, even where the tests themselves run in the background.
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) std::signal(signal, SIG_DFL);
  const int out = open(output_.c_str(), O_WRONLY | O_CREAT, 0600);
  const int err = open(errors_.c_str(), O_WRONLY | O_CREAT, 0600);
  if (out < 0 || err < 0 || dup2(out, 1) < 0 || dup2(err, 2) < 0) _exit(126);
  execvp(program.c_str(), argv.data());
  _exit(127);
}

Command::~Command() {
  if (process_ <= 0) return;
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
}

void Command::Signal(int signal) const { test::Signal(process_, signal); }

Outcome Command::Wait() {
  if (process_ <= 0) throw std::logic_error("the command's end has been waited for");
  int status = 0;
  Outcome outcome;
  outcome.peakMiB = UsageOf(std::exchange(process_, -1), &status).ru_maxrss / 1024;
  if (WIFEXITED(status)) outcome.code = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) outcome.signal = WTERMSIG(status);
  if (output_ == folder_ / "out") outcome.out = BytesOf(output_);
  if (errors_ == folder_ / "err") outcome.err = WithoutProgress(BytesOf(errors_));
  return outcome;
}

Outcome RunKelto(const Words& arguments, const std::string& output) {
  return Command(arguments, output).Wait();
}

Outcome RunShell(const std::string& script) {
  return Command({"-c", script, KELTO_COMMAND}, "", "", "sh").Wait();
}

std::vector<pid_t> ChildrenOf(pid_t parent) {
  std::vector<pid_t> children;
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    if (ParentOfRunning(entry.path()) == parent) {
      children.push_back(static_cast<pid_t>(std::stoi(entry.path().filename().string())));
    }
  }
  return children;
}

bool IsRunning(pid_t process) {
  return ParentOfRunning("/proc/" + std::to_string(process)).has_value();
}

Outcome Render(const std::string& photo, const std::string& out, const Words& more) {
  Words words{"render", photo, "-o", out};
  const auto lacks = [&](const char* option) {
    return std::find(more.begin(), more.end(), option) == more.end();
  };
  if (lacks("--size")) words.insert(words.end(), {"--size", "96x64"});
  if (lacks("--frames") && lacks("--seconds")) words.insert(words.end(), {"--frames", "3"});
  words.insert(words.end(), more.begin(), more.end());
  return RunKelto(words);
}

bool IsOneLine(const std::string& text) {
  return text.starts_with("kelto: ") && text.size() > 8 &&
         std::count(text.begin(), text.end(), '\n') == 1 && text.back() == '\n';
}

std::vector<std::string> NamesIn(const TempFolder& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder / "")) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace kelto::test
