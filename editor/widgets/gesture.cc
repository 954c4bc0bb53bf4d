#include "editor/widgets/gesture.h"

namespace kelto::editor {

Gesture NewGesture() {
  static int64_t last = 0;
  return {++last, false};
}

}  // namespace kelto::editor
