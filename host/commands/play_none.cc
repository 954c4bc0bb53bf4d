// Builds without SDL, which the command draws with.
#include "host/commands/commands.h"

namespace kelto::host {

CLI::App* AddPlay(CLI::App&) { return nullptr; }

Libraries PlayLibraries() { return {}; }

}  // namespace kelto::host
