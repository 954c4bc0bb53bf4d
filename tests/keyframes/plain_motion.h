// The motion in its plainest form: every evaluation reads all keys, makes its curves and scans them
// from the start. Slow, and what the quick one is held against.
#pragma once

#include "framing/view.h"
#include "keyframes/arc_table.h"
#include "keyframes/motion_keys.h"

namespace kelto::test {

/// The velocity easing of `t`, and with `alongPath` the path time that the table has for it.
double PlainTime(const MotionKeys& keys, double t, bool alongPath);

std::vector<ArcEntry> PlainTable(const MotionKeys& keys);

View PlainView(const MotionKeys& keys, double t);

}  // namespace kelto::test
