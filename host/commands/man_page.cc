// The manual pages, from the same table as --help.
#include <algorithm>
#include <cctype>
#include <sstream>

#include "host/base/error.h"
#include "host/base/texts.h"
#include "host/commands/command_tree.h"
#include "host/commands/commands.h"

namespace kelto::host {
namespace {

/// Text as the man macros take it: no line begins with a control character, and dashes and
/// backslashes are themselves.
std::string Escaped(const std::string& text) {
  std::string escaped;
  bool lineStart = true;
  for (const char c : text) {
    if (lineStart && (c == '.' || c == '\'')) escaped += "\\&";
    if (c == '\\') {
      escaped += "\\e";
    } else if (c == '-') {
      escaped += "\\-";
    } else {
      escaped += c;
    }
    if (c == '\n') escaped += ".br\n";
    lineStart = c == '\n';
  }
  return escaped;
}

std::string Entry(const OptionFacts& option) {
  std::string head;
  for (const std::string& name : option.names) {
    if (!head.empty()) head += ", ";
    head += "\\fB" + Escaped(name) + "\\fR";
  }
  if (!option.value.empty()) head += " \\fI" + Escaped(option.value) + "\\fR";
  return ".TP\n" + head + "\n" + Escaped(option.help) + "\n";
}

std::string Heading(const std::string& name, const std::string& summary) {
  std::string title;
  for (const char c : name) title += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return ".TH " + Escaped(title) +
         " 1 " KELTO_BUILD_DATE " \"kelto " KELTO_VERSION "\" \"User Commands\"\n.SH NAME\n" +
         Escaped(name) + " \\- " + Escaped(summary) + "\n.SH SYNOPSIS\n";
}

/// "Make a film" as the line below NAME has it, where it goes on behind a name.
std::string Uncapitalized(std::string text) {
  if (!text.empty()) {
    text.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(text.front())));
  }
  return text;
}

/// The pages that a page sends readers to. What the editor's command says stands in the editor's.
std::string PageOf(const std::string& command) {
  return "\\fBkelto\\-" + Escaped(command) + "\\fR(1)";
}

std::string CommandList(const std::vector<CommandFacts>& commands) {
  std::string text = ".SH COMMANDS\n";
  for (const CommandFacts& command : commands) {
    text += ".TP\n" + PageOf(command.name) + "\n" + Escaped(command.help) + ".\n";
  }
  return text;
}

/// The options by their groups, both in the order of --help.
std::string OptionGroups(const std::vector<OptionFacts>& options) {
  std::vector<std::string> groups;
  for (const OptionFacts& option : options) {
    if (std::find(groups.begin(), groups.end(), option.group) == groups.end()) {
      groups.push_back(option.group);
    }
  }
  std::string text;
  for (const std::string& group : groups) {
    text += ".SS " + Escaped(group) + "\n";
    for (const OptionFacts& option : options) {
      if (option.group == group) text += Entry(option);
    }
  }
  return text;
}

/// Lines as they are typed, without the blanks that --help has before them.
std::string Examples(const std::string& command) {
  const std::span commands = Commands();
  const auto found = std::find_if(commands.begin(), commands.end(),
                                  [&](const Command& each) { return command == each.name; });
  if (found == commands.end() || *found->examples == '\0') return "";
  std::string text = ".SH EXAMPLES\n.EX\n";
  std::istringstream lines(found->examples);
  for (std::string line; std::getline(lines, line);) {
    text += Escaped(line.substr(std::min(line.find_first_not_of(' '), line.size()))) + "\n";
  }
  return text + ".EE\n";
}

constexpr const char* kAboutKelto =
    "\\fBkelto\\fR \\fIcommand\\fR [options]\n"
    ".SH DESCRIPTION\n"
    "\\fBkelto\\fR turns photographs into films with a moving view.\n"
    "Output appears only when complete; a failure leaves no partial file.\n"
    ".SH OPTIONS\n";

constexpr const char* kExitStatusText =
    ".SH EXIT STATUS\n"
    "0 done, 1 failed, 2 invalid command line.\n"
    "A command that is interrupted clears up and dies of the signal.\n";

constexpr const char* kProgramEnd =
    ".SH ENVIRONMENT\n"
    ".TP\n"
    "\\fBKELTO_MODULE\\fR\n"
    "The effect's module, where \\fB\\-\\-module\\fR is not given.\n"
    ".SH EXAMPLES\n"
    "A film that moves in on the upper right of a photograph:\n"
    ".PP\n"
    ".EX\n"
    "kelto render photo.jpg \\-o film.mp4 \\-\\-from 1 \\-\\-to 2.5@0.2,\\-0.1\n"
    ".EE\n"
    ".PP\n"
    "A film of each scan in a folder, going on where an earlier run was stopped:\n"
    ".PP\n"
    ".EX\n"
    "kelto batch scans \\-o films \\-\\-resume\n"
    ".EE\n";

}  // namespace

std::string ManPage(const CLI::App& app) {
  std::string page = Heading("kelto", "pan and zoom over photographs") + kAboutKelto;
  for (const OptionFacts& option : OptionsOf(app)) page += Entry(option);
  return page + CommandList(CommandsOf(app)) + kExitStatusText + kProgramEnd;
}

std::string ManPageOf(const CLI::App& app, const std::string& name) {
  const std::vector<CommandFacts> commands = CommandsOf(app);
  const auto command = std::find_if(commands.begin(), commands.end(),
                                    [&](const CommandFacts& each) { return each.name == name; });
  if (command == commands.end()) {
    std::vector<std::string> names;
    for (const CommandFacts& each : commands) names.push_back(each.name);
    throw UsageError("completion man " + name + ": there is no such command; choose one of " +
                     Joined(names));
  }
  std::string page = Heading("kelto-" + name, Uncapitalized(command->help));
  page += "\\fBkelto " + name + "\\fR";
  for (const std::string& operand : command->operands) {
    page += " \\fI" + Escaped(operand) + "\\fR";
  }
  page += " [options]\n.SH DESCRIPTION\n" + Escaped(command->help) + ".\n.SH OPTIONS\n";
  page += OptionGroups(command->options) + kExitStatusText + Examples(name);
  return page + ".SH SEE ALSO\n\\fBkelto\\fR(1)\n";
}

}  // namespace kelto::host
