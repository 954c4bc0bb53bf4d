#include "host/commands/commands.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "host/base/error.h"
#include "host/commands/command_tree.h"
#include "host/film/codecs.h"
#include "host/film/formats.h"
#include "host/jobs/task_plan.h"
#include "host/moves/presets.h"
#include "host/options/choices.h"
#include "host/options/size.h"
#include "host/terminal/standard_output.h"

namespace kelto::host {
namespace {

std::vector<std::string> WordsFor(const std::string& name) {
  std::vector<std::string> words;
  for (const ChoiceList& list : ChoiceLists()) {
    if (name != list.option) continue;
    for (const catalogue::Entry& choice : list.choices) words.emplace_back(choice.word);
  }
  if (name == "--format") {
    for (const FilmKind& kind : FilmKinds()) words.emplace_back(kind.name);
  }
  if (name == "--codec") {
    for (const FilmCodec& codec : FilmCodecs()) words.emplace_back(codec.name);
  }
  if (name == "--fields") words = {"top", "bottom", "progressive"};
  if (name == "--size") {
    for (const NamedSize& named : NamedSizes()) words.emplace_back(named.name);
  }
  if (name == "--quality") words.assign(QualityWords().begin(), QualityWords().end());
  if (name == "--speed") words.assign(SpeedWords().begin(), SpeedWords().end());
  if (name == "--ease") words = {"smooth", "linear", "in", "out"};
  if (name == "--depth") words = {"auto", "8", "10", "16"};
  if (name == "--plan-as") words.assign(PlanForms().begin(), PlanForms().end());
  if (name == "--order") words = {"natural", "given"};
  if (name == "--fit") words = {"fill", "whole"};
  if (name == "--move") {
    words = MoveWords();
    words.emplace_back("auto");
  }
  return words;
}

OptionFacts FactsOf(const CLI::Option& option) {
  OptionFacts facts;
  for (const std::string& name : option.get_snames()) facts.names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) facts.names.push_back("--" + name);
  facts.help = option.get_description();
  facts.group = option.get_group();
  if (option.get_expected_max() > 0) {
    facts.value = option.get_type_name();
    facts.file = facts.value.find("FILE") != facts.value.npos || facts.value == "FOLDER";
    facts.repeated = option.get_expected_max() > 1;
    facts.words = WordsFor(facts.names.back());
  }
  return facts;
}

void Run(const CLI::App& app, const std::string& shell, const std::string& page) {
  struct Writer {
    const char* name;
    std::string (*write)(const CLI::App&);
  };
  constexpr Writer kWriters[] = {
      {"bash", BashScript}, {"zsh", ZshScript}, {"fish", FishScript}, {"man", ManPage}};
  if (!page.empty()) {
    if (shell != "man") throw UsageError(page + ": only manual pages are of a command each");
    PrintResult(ManPageOf(app, page));
    return;
  }
  for (const Writer& writer : kWriters) {
    if (shell != writer.name) continue;
    PrintResult(writer.write(app));
    return;
  }
  throw UsageError(shell + ": choose one of bash, zsh, fish, or man for the manual page");
}

}  // namespace

std::vector<OptionFacts> OptionsOf(const CLI::App& app) {
  std::vector<OptionFacts> options;
  for (const CLI::Option* option : app.get_options()) {
    const bool named = !option->get_lnames().empty() || !option->get_snames().empty();
    if (named && !option->get_group().empty()) options.push_back(FactsOf(*option));
  }
  return options;
}

std::vector<CommandFacts> CommandsOf(const CLI::App& app) {
  std::vector<CommandFacts> commands;
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    if (command->get_group().empty()) continue;
    CommandFacts facts{command->get_name(), command->get_description(), {}, OptionsOf(*command)};
    for (const CLI::Option* option : command->get_options()) {
      if (option->get_lnames().empty() && option->get_snames().empty()) {
        facts.operands.push_back(option->get_name(true));
      }
    }
    commands.push_back(facts);
  }
  return commands;
}

CLI::App* AddCompletion(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "completion", "Print the script that completes this command line in a shell");
  const auto shell = std::make_shared<std::string>();
  command->add_option("SHELL", *shell, "bash, zsh or fish; man for the manual page")
      ->required()
      ->type_name("");
  const auto page = std::make_shared<std::string>();
  command->add_option("COMMAND", *page, "With man, the command whose page it is [kelto itself]")
      ->type_name("");
  command->final_callback([shell, page, &app] { Run(app, *shell, *page); });
  return command;
}

}  // namespace kelto::host
