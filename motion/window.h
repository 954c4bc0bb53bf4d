// What a frame shows, in the units that the laws of motion work in.
#pragma once

namespace kelto::motion {

/// A window on the picture. All three are in widths of what zoom 1 shows, the vertical one too, so
/// that distances are the same in every direction; 0, 0 is the middle of the picture, right and
/// down are positive. `width` is 1 / zoom, above 0.
struct Window {
  double x = 0.0, y = 0.0;
  double width = 1.0;
  bool operator==(const Window&) const = default;
};

/// How much of a pan weighs as much as a zoom: the constant of van Wijk and Nuij, "Smooth and
/// efficient zooming and panning" (2003), near the value that their viewers preferred.
inline constexpr double kRho = 1.4142135623730951;

/// The perceived length of a small step in which the centre moves by `pan` of the window's widths
/// and the width grows by the factor exp(`zoom`): the square root of
/// rho^2 pan^2 + zoom^2 / rho^2.
double PerceivedStep(double pan, double zoom);

/// How a picture is seen to move from one frame to the next.
struct Speed {
  double pan = 0.0;        ///< of the centre on screen, in frame widths a second
  double zoom = 0.0;       ///< doublings of the zoom a second; below 0 drawing back
  double perceived = 0.0;  ///< perceived length a second
};

/// The mean speed between two windows that follow each other closely, `seconds` apart.
Speed SpeedBetween(const Window& from, const Window& to, double seconds);

}  // namespace kelto::motion
