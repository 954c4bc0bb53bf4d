#include "host/commands/preview_option.h"

#include <CLI/CLI.hpp>

namespace kelto::host {

void DeclarePreview(CLI::App& command, LiveUse& use) {
  if (!CanShowLive()) return;
  command
      .add_flag_function(
          "--preview,!--no-preview",
          [&use](int64_t count) { use = count > 0 ? LiveUse::kAsk : LiveUse::kNever; },
          "Show the frames while they are made, small, on a terminal that shows pictures (sixel or "
          "kitty): ask the terminal whether it does; --no-preview shows none [on terminals whose "
          "name says so]")
      ->group("Work");
}

}  // namespace kelto::host
