// Names of files that are being written: ".film.mp4.kelto-MMMMRRRRRRRR.part", where M stands for
// the machine and R is random. By them a later run knows what an earlier one left when it was
// killed.
#pragma once

#include <string>

namespace kelto::host {

/// A new name for the parts of the file called `name`, in the same folder. Never longer than a name
/// may be.
std::string NewPartName(const std::string& name);

/// Whether NewPartName makes such names, on any machine.
bool IsPartName(const std::string& name);

/// Whether this machine made the name. Another's process in a shared folder cannot be seen from
/// here.
bool IsPartOfThisMachine(const std::string& name);

}  // namespace kelto::host
