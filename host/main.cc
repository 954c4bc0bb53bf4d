// The `kelto` command.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstring>
#include <exception>
#include <new>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "host/base/error.h"
#include "host/base/texts.h"
#include "host/commands/commands.h"
#include "host/commands/help_text.h"
#include "host/commands/hints.h"
#include "host/effect/effect_name.h"
#include "host/files/start.h"
#include "host/terminal/interrupt.h"
#include "host/terminal/library_text.h"
#include "host/terminal/standard_output.h"
#include "host/terminal/standard_streams.h"
#include "host/terminal/terminal.h"
#include "platform/win32.h"
#include "runtime/hfx/host.h"

namespace kelto::host {
namespace {

constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kMisused = 2;

constexpr const char* kExitCodes =
    "Exit codes: 0 done, 1 failed, 2 invalid command line.\n"
    "Output appears only when complete; a failure leaves no partial file.";

BOOL KELTO_WINAPI NoFile(OPENFILENAMEA*) { return 0; }

int KELTO_WINAPI ShowMessage(HWND, const char* text, const char*, unsigned) {
  PrintMessage(TextFromEffect(text));
  return IDOK;
}

/// A command line has no dialogs: questions are answered with no, messages go where errors do.
void AnswerModules() {
  win32().GetOpenFileNameA = NoFile;
  win32().MessageBoxA = ShowMessage;
  hfx::SetConsole([](const std::string& text) { PrintMessage(TextFromEffect(text)); });
}

/// The parser itself would only say that a command is missing.
void CheckCommandName(const CLI::App& app, int argc, char** argv) {
  if (argc < 2 || argv[1][0] == '-') return;
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    if (command->check_name(argv[1])) return;
    if (command->get_group().empty()) continue;  // one that is not shown
    names.push_back(command->get_name());
  }
  throw UsageError("there is no command \"" + std::string(argv[1]) + "\"; there are " +
                   Joined(names) + "; see kelto --help");
}

/// Whoever reads events gets those of a faulty command line as events, too.
void ReportAsAsked(int argc, char** argv) {
  if (argc < 2) return;
  const auto is = [](const char* word) {
    return [word](const char* other) { return std::strcmp(word, other) == 0; };
  };
  const std::span commands = Commands();
  const auto given = std::find_if(commands.begin(), commands.end(), [&](const Command& command) {
    return is(argv[1])(command.name);
  });
  if (given == commands.end() || !given->reportsEvents) return;
  // Behind "--" are names only.
  char** const end = std::find_if(argv, argv + argc, is("--"));
  if (std::any_of(argv, end, is("--json"))) SetReporting(Reporting::kJson);
}

int Run(int argc, char** argv) {
  CLI::App app("Pans and zooms over photographs.", "kelto");
  app.set_version_flag("--version", VersionText, "Version, instruction set and libraries");
  // One command line on all systems; "/photo.jpg" is a file, not an option.
  app.allow_windows_style_options(false);
  app.require_subcommand(1);
  app.footer(kExitCodes);

  for (const Command& command : Commands()) {
    if (CLI::App* const added = command.add(app)) {
      added->footer(std::string("Examples:\n") + command.examples + "\n" + kExitCodes);
    }
  }

  CheckCommandName(app, argc, argv);
  ReportAsAsked(argc, argv);
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& request) {
    std::ostringstream text;  // help or version
    const int code = app.exit(request, text);
    const bool version = dynamic_cast<const CLI::CallForVersion*>(&request) != nullptr;
    PrintResult(version ? text.str() : Wrapped(text.str(), HelpColumns()));
    return code;
  } catch (const CLI::ParseError& error) {
    throw UsageError(FaultText(app, {argv + 1, argv + argc}, error));
  }
  return kDone;
}

int RunAndReport(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const UsageError& error) {
    PrintFailure(error.what());
    return kMisused;
  } catch (const ToldError&) {
    return kFailed;
  } catch (const std::bad_alloc&) {
    if (InterruptSignal() == 0) PrintFailure("there is not enough memory");
  } catch (const std::exception& error) {
    // An interrupt is no failure worth a message.
    if (InterruptSignal() == 0) PrintFailure(error.what());
  }
  ClearProgress();
  return kFailed;
}

}  // namespace
}  // namespace kelto::host

int main(int argc, char** argv) {
  using namespace kelto::host;
  OpenStandardStreams();
  HoldLibraryText();
  SearchNoLibrariesInTheCurrentFolder();
  CatchInterrupts();
  AnswerModules();
  std::vector<std::string> words = CommandLineWords(argc, argv);
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  const int code = RunAndReport(static_cast<int>(words.size()), pointers.data());
  PrintLibraryText("");
  if (code == kFailed && IsInterrupted()) DieOf(InterruptSignal());
  return code;
}
