// The arc-length table of a path: it makes runs of Constant keys be travelled at one speed.
#pragma once

#include <vector>

#include "keyframes/motion_keys.h"
#include "keyframes/path.h"

namespace kelto {

/// The eased time at which the view passes a path time.
struct ArcEntry {
  double keyTime;
  double travelTime;
};

/// Maps eased times to the path times at which the view has covered the same share of a run's
/// length. A run ends at every key but those that are Constant on both sides.
class ArcTable {
 public:
  /// Throws std::bad_alloc.
  ArcTable(const MotionKeys& keys, const MotionPath& path);
  /// Of these entries; times are held to `lastKeyTime`.
  ArcTable(std::vector<ArcEntry> entries, double lastKeyTime);

  /// The path time that belongs to an eased time, held to the last key's time; 0 where the table
  /// does not reach. In logarithmic time of the number of entries.
  double PathTime(double easedTime) const;
  const std::vector<ArcEntry>& Entries() const { return entries_; }

 private:
  std::vector<ArcEntry> entries_;
  double lastKeyTime_;
  bool ascending_ = false;
};

}  // namespace kelto
