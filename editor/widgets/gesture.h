// Which changes belong together.
#pragma once

#include <cstdint>

namespace kelto::editor {

/// Changes of one gesture, such as all of a drag, are one step to undo.
struct Gesture {
  int64_t id = 0;        ///< another for each gesture of the program
  bool finished = true;  ///< the last change of the gesture
};

/// A gesture that has begun, with an id that no other has had.
Gesture NewGesture();

}  // namespace kelto::editor
