// The libraries that read photographs and write films, and the processor.
#pragma once

#include <string>

#include "host/base/library.h"

namespace kelto::host {

Libraries PhotoAndFilmLibraries();

/// The instruction set that a module of this build draws with here: the choice that it makes.
std::string InstructionSet();

}  // namespace kelto::host
