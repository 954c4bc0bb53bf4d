// A library that the program runs with.
#pragma once

#include <string>
#include <vector>

namespace kelto::host {

struct Library {
  std::string name;
  /// As the library reports it at run time; where it does not, that of its headers.
  std::string version;
};

using Libraries = std::vector<Library>;

}  // namespace kelto::host
