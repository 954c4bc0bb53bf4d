#include "host/commands/commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "host/base/error.h"
#include "host/base/shown_text.h"
#include "host/commands/module_option.h"
#include "host/effect/module_file.h"
#include "host/faces/detectors.h"
#include "host/live/live_picture.h"
#include "host/machine/checks.h"
#include "host/machine/libraries.h"
#include "host/moves/auto_move.h"
#include "host/sandbox/sandbox.h"
#include "host/terminal/standard_output.h"

namespace kelto::host {
namespace {

void Print(const std::string& line) { PrintResult(ShownText(line) + "\n"); }

void PrintChecks(const char* title, const std::vector<Check>& checks) {
  Print(title);
  for (const Check& check : checks) {
    Print("  " + check.name + ": " + (check.fault.empty() ? "yes" : "no: " + check.fault));
  }
}

Check TryNamedModule(const std::string& given) {
  try {
    return TryModule(FindModule(given));
  } catch (const Error& error) {
    return {"", error.what()};
  }
}

void Run(const std::string& given) {
  PrintResult(VersionText() + "\n");
  const Check module = TryNamedModule(given);
  Print("module: " + (module.fault.empty() ? module.name + ", renders" : "no: " + module.fault));
  const std::vector<Check> stills = TryStills();
  PrintChecks("reads photographs:", stills);
  const std::vector<Check> films = TryFilms();
  PrintChecks("writes films:", films);
  if (const std::vector<Check> hardware = TryHardware(); !hardware.empty()) {
    PrintChecks("has encoders in hardware (--encoder):", hardware);
  }
  std::vector<Check> kept;
  for (const SandboxCheck& check : TrySandbox()) kept.push_back({check.name, check.fault});
  if (!kept.empty()) PrintChecks("keeps decoders from:", kept);
  PrintChecks("finds faces by:", {{"the photo's metadata", ""},
                                  {"OpenCV's cascades", CascadesFault()},
                                  {"a YuNet model (--face-model)", ModelFault()}});
  // Single codecs may be missing from an installation that does all that its owner wants.
  const auto works = [](const Check& check) { return check.fault.empty(); };
  const bool able = works(module) && std::any_of(stills.begin(), stills.end(), works) &&
                    std::any_of(films.begin(), films.end(), works);
  Print(able ? "kelto can render on this machine" : "kelto cannot render on this machine");
  if (!able) throw ToldError();
}

}  // namespace

std::string VersionText() {
  std::string text = "kelto " KELTO_VERSION;
  text += "\ninstruction set: " + InstructionSet();
  for (const Libraries& libraries : {PhotoAndFilmLibraries(), AutoMoveLibraries(),
                                     StoryboardLibraries(), PlayLibraries(), LiveLibraries()}) {
    for (const Library& library : libraries) text += "\n" + library.name + " " + library.version;
  }
  return text;
}

CLI::App* AddDoctor(CLI::App& app) {
  CLI::App* command =
      app.add_subcommand("doctor", "Report what this machine can decode and encode");
  const auto module = std::make_shared<std::string>();
  DeclareModule(*command, "Options", *module);
  command->final_callback([module] { Run(*module); });
  return command;
}

}  // namespace kelto::host
