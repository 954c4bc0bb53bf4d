// The work of a batch as a job specification of OpenCue.
#pragma once

#include <span>
#include <string>
#include <vector>

namespace kelto::host {

/// Whose work it is, and for what, in the words of an installation of OpenCue.
struct CueSite {
  std::string show, shot, user;
};

/// As OpenCue's own programs take it from the environment: SHOW and SHOT, else those of a new
/// installation, "testing" and "default"; and USER. Throws UsageError for a name that it would
/// refuse, such as root's.
CueSite CueSiteOfEnvironment();

/// A specification by the document type cjsl-1.12, in XML: a layer of one frame for each of
/// `lines`, one at least, which are for a shell, and as many jobs of up to 1000 layers as that
/// takes. Throws Error for a line that it cannot hold.
std::string CueSpec(const CueSite& site, std::span<const std::string> lines);

}  // namespace kelto::host
