#include "host/playback/quality_control.h"

#include <algorithm>

namespace kelto::host {

void QualityControl::Switch(bool half, double now) {
  half_ = half;
  trial_ = !half;
  since_ = now;
  slow_ = 0;
}

void QualityControl::Drawn(double seconds, double now) {
  const double share = seconds / frameSeconds_;
  if (half_) {
    if (share <= kRoom && now - since_ >= wait_) Switch(false, now);
    return;
  }
  if (now - since_ >= kProven) wait_ = kFirstWait;
  slow_ = share > kBudget ? slow_ + 1 : 0;
  if (slow_ < kSlowFrames) return;
  // A trial that failed soon was too early.
  if (trial_ && now - since_ < kProven) wait_ = std::min(2.0 * wait_, kLongestWait);
  Switch(true, now);
}

}  // namespace kelto::host
