// A build without the library that looks at pictures.
#include "host/base/error.h"
#include "host/moves/auto_move.h"

namespace kelto::host {

bool CanFindInterest() { return false; }

Libraries AutoMoveLibraries() { return {}; }

std::vector<PhotoRect> AutoMove(const PhotoViews&, const PhotoPixels&, Fit, double) {
  throw UsageError("this build cannot look at pictures; choose one of " + MoveNames());
}

}  // namespace kelto::host
