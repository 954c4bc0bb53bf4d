// What this machine can do, found out by doing it.
#pragma once

#include <string>
#include <vector>

namespace kelto::host {

/// Something tried, and why it did not work; empty when it did.
struct Check {
  std::string name;
  std::string fault;
};

/// Every form of still, decoded.
std::vector<Check> TryStills();

/// Every codec and kind of film, written with a few frames.
std::vector<Check> TryFilms();

/// Every encoder in hardware, in the same way.
std::vector<Check> TryHardware();

/// Whether the module at `path` renders a photograph.
Check TryModule(const std::string& path);

}  // namespace kelto::host
