#include "host/commands/commands.h"

namespace kelto::host {

CLI::App* AddEdit(CLI::App&) { return nullptr; }

}  // namespace kelto::host
