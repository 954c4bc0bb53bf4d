// Whether a file can appear under a name.
#pragma once

#include <filesystem>
#include <string>

namespace kelto::host {

/// Why no finished file can be given the name `path`, worded to stand behind the name in a message;
/// empty when nothing speaks against it. On Windows a name may be a device's, or a file that is
/// there be held by another program or marked: better reported before a film is rendered than
/// after. Elsewhere files are replaced whoever has them open.
std::string WhyNotReplaceable(const std::filesystem::path& path);

}  // namespace kelto::host
