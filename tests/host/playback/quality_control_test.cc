// Half quality and back, on a clock of the test's own.
#include "host/playback/quality_control.h"

#include <gtest/gtest.h>

namespace kelto::host {
namespace {

constexpr double kFrame = 0.04;
constexpr double kSlow = 0.050, kFast = 0.005;

/// Frames one after the other, each drawn in a time that depends on the quality.
class Machine {
 public:
  explicit Machine(double fullSeconds, double halfSeconds)
      : fullSeconds_(fullSeconds), halfSeconds_(halfSeconds) {}

  void SetSpeed(double fullSeconds, double halfSeconds) {
    fullSeconds_ = fullSeconds;
    halfSeconds_ = halfSeconds;
  }
  /// Runs for some seconds; returns how often the quality changed.
  int Run(double seconds) {
    int changes = 0;
    for (const double end = now_ + seconds; now_ < end;) {
      const double before = control_.Quality();
      const double cost = before == QualityControl::kFull ? fullSeconds_ : halfSeconds_;
      now_ += cost > kFrame ? cost : kFrame;
      control_.Drawn(cost, now_);
      changes += control_.Quality() != before ? 1 : 0;
    }
    return changes;
  }
  double Quality() const { return control_.Quality(); }

 private:
  double fullSeconds_, halfSeconds_;
  double now_ = 100.0;
  QualityControl control_{kFrame};
};

TEST(QualityControl, StaysFullWhileFramesAreReadyInTime) {
  Machine machine(kFast, kFast);
  EXPECT_EQ(machine.Run(60.0), 0);
  EXPECT_EQ(machine.Quality(), 1.0);
}

TEST(QualityControl, FallsToHalfWhenItCannotKeepUp) {
  Machine machine(kSlow, kFast);
  machine.Run(1.0);
  EXPECT_EQ(machine.Quality(), 0.5);
}

TEST(QualityControl, OneSlowFrameIsNoReason) {
  QualityControl control(kFrame);
  for (int i = 0; i < 100; ++i) control.Drawn(i % 3 == 0 ? kFast : kSlow, 1.0 + i * kFrame);
  EXPECT_EQ(control.Quality(), 1.0);
}

TEST(QualityControl, GoesBackWhenThereIsRoomAgain) {
  Machine machine(kSlow, kFast);
  machine.Run(1.0);
  ASSERT_EQ(machine.Quality(), 0.5);
  machine.SetSpeed(kFast, kFast);
  machine.Run(QualityControl::kFirstWait + 1.0);
  EXPECT_EQ(machine.Quality(), 1.0);
}

TEST(QualityControl, StaysAtHalfWhileThatIsHardEnough) {
  Machine machine(kSlow, 0.03);
  machine.Run(1.0);
  ASSERT_EQ(machine.Quality(), 0.5);
  EXPECT_EQ(machine.Run(120.0), 0);
}

TEST(QualityControl, TriesFullQualityLessAndLessOften) {
  Machine machine(kSlow, kFast);
  const int soon = machine.Run(15.0), late = machine.Run(15.0), muchLater = machine.Run(120.0);
  EXPECT_GE(soon, 5);
  EXPECT_LT(late, soon);
  EXPECT_LE(muchLater, 2 * (120 / 32 + 1));
  EXPECT_GE(muchLater, 2) << "but never gives up";
}

TEST(QualityControl, TriesSoonAgainAfterFullQualityHeld) {
  Machine machine(kSlow, kFast);
  machine.Run(60.0);  // the wait has grown
  machine.SetSpeed(kFast, kFast);
  machine.Run(QualityControl::kLongestWait + 2 * QualityControl::kProven);
  ASSERT_EQ(machine.Quality(), 1.0);
  machine.SetSpeed(kSlow, kFast);
  machine.Run(1.0);
  ASSERT_EQ(machine.Quality(), 0.5);
  machine.SetSpeed(kFast, kFast);
  machine.Run(QualityControl::kFirstWait + 1.0);
  EXPECT_EQ(machine.Quality(), 1.0);
}

}  // namespace
}  // namespace kelto::host
