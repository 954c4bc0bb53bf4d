// The way between two close-ups that draws back and comes in again.
#pragma once

#include <optional>

#include "motion/room.h"
#include "motion/window.h"

namespace kelto::motion {

/// The optimal path of van Wijk and Nuij (2003): of all ways between two windows the one with the
/// least perceived length, gone at an even pace. The larger its rho, the further it draws back.
class FlyWay {
 public:
  /// Windows whose centres are apart.
  FlyWay(const Window& from, const Window& to, double rho);
  /// The window at `e`, 0..1.
  Window At(double e) const;
  /// The perceived length a unit of `e`; even when rho is kRho.
  double Speed(double e) const;
  static constexpr bool kEven = false;

 private:
  Window from_, to_;
  double rho_, distance_;
  double start_;   ///< where on its catenary the way begins
  double length_;  ///< by its own rho
};

/// The way whose windows all stay within RoomFor(room, from, to), of the largest rho up to kRho;
/// none where even the flattest leaves the room, or where the centres are not apart.
std::optional<FlyWay> FlyWithin(const Room& room, const Window& from, const Window& to);

}  // namespace kelto::motion
