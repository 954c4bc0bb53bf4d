// Where the plug-ins find the effect's module.
#pragma once

#include <string>

namespace kelto::frei0r {

/// The module's file: what the environment variable KELTO_MODULE names, else the one beside the
/// plug-ins' shared library. Throws host::Error when it is not there.
std::string FindEffectFile();

}  // namespace kelto::frei0r
