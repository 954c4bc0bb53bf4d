// Completion scripts. Each shell has its own words for the same table.
#include <algorithm>

#include "host/commands/command_tree.h"

namespace kelto::host {
namespace {

constexpr const char* kHeader = "completion for kelto, printed by `kelto completion`\n";

std::string Joined(const std::vector<std::string>& words, const char* between) {
  std::string text;
  for (const std::string& word : words) {
    if (!text.empty()) text += between;
    text += word;
  }
  return text;
}

std::vector<std::string> NamesOf(const std::vector<OptionFacts>& options) {
  std::vector<std::string> names;
  for (const OptionFacts& option : options) {
    names.insert(names.end(), option.names.begin(), option.names.end());
  }
  return names;
}

/// The help text's first line.
std::string ShortHelp(const std::string& help) { return help.substr(0, help.find('\n')); }

/// `text` with `to` in every place of `from`.
std::string Replaced(const std::string& text, const std::string& from, const std::string& to) {
  std::string result;
  size_t at = 0;
  for (size_t found; (found = text.find(from, at)) != text.npos; at = found + from.size()) {
    result.append(text, at, found - at).append(to);
  }
  return result.append(text, at);
}

/// Text between single quotes, for sh and its kin.
std::string Quoted(const std::string& text) {
  return std::string("'") + Replaced(text, "'", "'\\''") + "'";
}

/// Text for a bracket of zsh's _arguments.
std::string ZshText(std::string text) {
  for (const char* special : {"\\", "[", "]", ":"}) {
    text = Replaced(text, special, std::string("\\") + special);
  }
  return text;
}

std::string ZshOption(const OptionFacts& option) {
  std::string value;
  if (!option.value.empty()) {
    value = std::string(":") + ZshText(option.value) + ":";
    if (option.file) value += "_files";
    if (!option.words.empty()) value.append("(").append(Joined(option.words, " ")).append(")");
  }
  std::string lines;
  for (const std::string& name : option.names) {
    std::string entry = option.repeated ? "*" + name : name;
    entry.append("[").append(ZshText(ShortHelp(option.help))).append("]").append(value);
    lines += " \\\n        ";
    lines += Quoted(entry);
  }
  return lines;
}

std::string FishOption(const std::string& command, const OptionFacts& option) {
  std::string line = "complete -c kelto -n '__fish_seen_subcommand_from " + command + "'";
  for (const std::string& name : option.names) {
    line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
  }
  if (!option.value.empty()) line += option.file ? " -r -F" : " -x";
  if (!option.words.empty()) line += " -a '" + Joined(option.words, " ") + "'";
  return line + " -d " + Replaced(Quoted(ShortHelp(option.help)), "'\\''", "\\'") + "\n";
}

}  // namespace

std::string BashScript(const CLI::App& app) {
  std::string names, values, options;
  for (const CommandFacts& command : CommandsOf(app)) {
    names += command.name + " ";
    options +=
        "    " + command.name + ") words='" + Joined(NamesOf(command.options), " ") + "' ;;\n";
    for (const OptionFacts& option : command.options) {
      if (option.value.empty() || option.file) continue;
      for (const std::string& name : option.names) {
        values += "    '" + command.name + " " + name + "')\n      COMPREPLY=($(compgen -W '" +
                  Joined(option.words, " ") + "' -- \"$current\"))\n      return ;;\n";
      }
    }
  }
  names += Joined(NamesOf(OptionsOf(app)), " ");
  return std::string("# bash ") + kHeader +
         "_kelto() {\n"
         "  local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}\n"
         "  local command=${COMP_WORDS[1]} words=\n"
         "  COMPREPLY=()\n"
         // The "=" of --option=value is a word of its own.
         "  [ \"$current\" != = ] || current=\n"
         "  [ \"$before\" != = ] || before=${COMP_WORDS[COMP_CWORD-2]}\n"
         "  if [ \"$COMP_CWORD\" -eq 1 ]; then\n"
         "    COMPREPLY=($(compgen -W '" +
         names +
         "' -- \"$current\"))\n"
         "    return\n"
         "  fi\n"
         "  case \"$command $before\" in\n" +
         values +
         "  esac\n"
         "  case $command in\n" +
         options +
         "  esac\n"
         "  case $current in\n"
         "    -*) COMPREPLY=($(compgen -W \"$words\" -- \"$current\")) ;;\n"
         // bash itself completes names of files, and quotes what is in them.
         "    *) compopt -o default 2>/dev/null ;;\n"
         "  esac\n"
         "}\n"
         "complete -F _kelto kelto\n";
}

std::string ZshScript(const CLI::App& app) {
  std::string commands, cases;
  for (const CommandFacts& command : CommandsOf(app)) {
    commands += "        " + Quoted(command.name + ":" + ZshText(command.help)) + "\n";
    cases += "    (" + command.name + ")\n      _arguments -s";
    for (const OptionFacts& option : command.options) cases += ZshOption(option);
    cases += " \\\n        '*:file:_files' ;;\n";
  }
  return std::string("#compdef kelto\n# zsh ") + kHeader +
         "_kelto() {\n"
         "  local state line\n"
         "  local -a commands\n"
         "  _arguments -C '--version[version and libraries]' '--help[help]' '1:command:->command' "
         "'*::argument:->arguments'\n"
         "  case $state in\n"
         "  (command)\n"
         "    commands=(\n" +
         commands +
         "    )\n"
         "    _describe command commands ;;\n"
         "  (arguments)\n"
         "    case $line[1] in\n" +
         cases +
         "    esac ;;\n"
         "  esac\n"
         "}\n"
         "_kelto \"$@\"\n";
}

std::string FishScript(const CLI::App& app) {
  std::string script = std::string("# fish ") + kHeader;
  for (const CommandFacts& command : CommandsOf(app)) {
    script += "complete -c kelto -n __fish_use_subcommand -f -a " + command.name + " -d " +
              Replaced(Quoted(command.help), "'\\''", "\\'") + "\n";
  }
  script += "complete -c kelto -n __fish_use_subcommand -l version -d 'Version and libraries'\n";
  for (const CommandFacts& command : CommandsOf(app)) {
    for (const OptionFacts& option : command.options) script += FishOption(command.name, option);
  }
  return script;
}

}  // namespace kelto::host
