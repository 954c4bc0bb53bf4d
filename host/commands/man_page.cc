// The manual page, from the same table as --help.
#include "host/commands/command_tree.h"

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

std::string Section(const CommandFacts& command) {
  std::string text = ".SS kelto " + command.name + "\n" + Escaped(command.help) + ".\n";
  std::string synopsis = "\\fBkelto " + command.name + "\\fR";
  for (const std::string& operand : command.operands) synopsis += " \\fI" + operand + "\\fR";
  text += ".PP\n" + synopsis + " [options]\n";
  for (const OptionFacts& option : command.options) text += Entry(option);
  return text;
}

constexpr const char* kBegin =
    ".TH KELTO 1 " KELTO_BUILD_DATE " \"kelto " KELTO_VERSION
    "\" \"User Commands\"\n"
    ".SH NAME\n"
    "kelto \\- pan and zoom over photographs\n"
    ".SH SYNOPSIS\n"
    "\\fBkelto\\fR \\fIcommand\\fR [options]\n"
    ".SH DESCRIPTION\n"
    "\\fBkelto\\fR turns photographs into films with a moving view.\n"
    "Output appears only when complete; a failure leaves no partial file.\n"
    ".SH OPTIONS\n";

constexpr const char* kEnd =
    ".SH EXIT STATUS\n"
    "0 done, 1 failed, 2 invalid command line.\n"
    "A command that is interrupted clears up and dies of the signal.\n"
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
  std::string page = kBegin;
  for (const OptionFacts& option : OptionsOf(app)) page += Entry(option);
  page += ".SH COMMANDS\n";
  for (const CommandFacts& command : CommandsOf(app)) page += Section(command);
  return page + kEnd;
}

}  // namespace kelto::host
