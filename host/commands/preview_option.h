// The option that settles whether a film is seen on the terminal while it is made.
#pragma once

#include "host/live/live_picture.h"

namespace CLI {
class App;
}

namespace kelto::host {

/// Declares --preview and --no-preview on `command`, to be parsed into `use`, which must outlive
/// the parsing; nothing in a build that cannot show any.
void DeclarePreview(CLI::App& command, LiveUse& use);

}  // namespace kelto::host
