// Builds without Cairo, which the command draws with.
#include "host/commands/commands.h"

namespace kelto::host {

CLI::App* AddStoryboard(CLI::App&) { return nullptr; }

Libraries StoryboardLibraries() { return {}; }

}  // namespace kelto::host
