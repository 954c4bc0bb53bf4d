// Names of pictures that are to be turned beyond what their files say.
#pragma once

#include <cstdint>
#include <string>

#include "runtime/stills/decoder.h"

namespace kelto::stills {

/// A picture's file, and by how many quarters of a turn, clockwise, it is shown: 0 to 3.
struct TurnedName {
  std::string path;
  int quarters = 0;
};

/// What "photo.jpg?turned=90" and the like (180, 270) name: programs know files by their names
/// alone, and pass on any. A file that is really called so is not turned.
TurnedName SplitTurnedName(const std::string& name);

/// The name of a picture turned by 0, 90, 180 or 270 degrees.
std::string NameTurnedBy(const std::string& path, int32_t degrees);

/// Turns what a file says of its picture. A decoder that could decode in place may need room for
/// all of the picture then.
void Turn(StillInfo& info, int quarters);

}  // namespace kelto::stills
