// Portraits, drawn: pictures with faces at known places.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

namespace kelto::test {

/// A face that looks at the camera, in pixels: `side` from cheek to cheek, and a third more from
/// the hair to the chin.
struct DrawnFace {
  double x = 0.0, y = 0.0, side = 0.0;
  double skin = 1.0;  ///< how light the skin is

  static constexpr double kHeight = 1.36;
  double Right() const { return x + side; }
  double Bottom() const { return y + kHeight * side; }
};

/// A room with people in it, and a red ball, which is more eye-catching than they are.
struct Portrait {
  int32_t width = 0, height = 0;
  std::vector<DrawnFace> faces{};
  double ballX = 0.0, ballY = 0.0, ballRadius = 0.0;
};

namespace drawn_faces {

using Colour = std::array<double, 3>;

inline void Blend(Colour& under, const Colour& over, double share) {
  share = std::clamp(share, 0.0, 1.0);
  for (size_t i = 0; i < 3; ++i) under[i] += (over[i] - under[i]) * share;
}

/// 1 within an ellipse about (x, y), 0 outside, in between over `soft` of its radius.
inline double Ellipse(double x, double y, double rx, double ry, double soft) {
  return std::clamp((1.0 - std::hypot(x / rx, y / ry)) / soft + 0.5, 0.0, 1.0);
}

/// What the face and the body below it put over a place, in sides of the face from its middle.
inline void DrawPerson(double x, double y, double skinLight, Colour& colour) {
  if (std::abs(x) > 1.25 || y < -1.05 || y > 2.85) return;
  const Colour skin{226 * skinLight, 178 * skinLight, 150 * skinLight};
  const Colour shade{150 * skinLight, 105 * skinLight, 85 * skinLight};
  const Colour hair{48, 36, 30}, dark{35, 25, 25}, lips{150, 60, 60}, cloth{70, 80, 110};
  Blend(colour, cloth, Ellipse(x, y - 1.75, 1.15, 1.0, 0.03));
  Blend(colour, hair, Ellipse(x, y + 0.14, 0.66, 0.78, 0.05));
  Blend(colour, shade, Ellipse(x, y - 0.6, 0.24, 0.45, 0.08));  // neck
  Blend(colour, skin, Ellipse(x, y + 0.02, 0.5, 0.68, 0.06));
  // Light from above in front: cheeks and brow are bright, sides and eye sockets are not.
  const double side = std::clamp((std::abs(x) - 0.26) / 0.24, 0.0, 1.0);
  Blend(colour, shade, 0.7 * side * Ellipse(x, y + 0.02, 0.5, 0.68, 0.06));
  if (std::abs(x) > 0.6 || std::abs(y) > 0.6) return;
  for (const double eye : {-0.21, 0.21}) {
    Blend(colour, shade, 0.75 * Ellipse(x - eye, y + 0.12, 0.17, 0.12, 0.6));
    Blend(colour, dark,
          0.85 * Ellipse(x - eye, y + 0.235 + 0.05 * std::abs(x - eye), 0.15, 0.035, 0.5));
    Blend(colour, {235, 230, 225}, Ellipse(x - eye, y + 0.11, 0.105, 0.05, 0.3));
    Blend(colour, dark, Ellipse(x - eye, y + 0.11, 0.05, 0.052, 0.3));
    Blend(colour, dark, 0.8 * Ellipse(x - eye, y + 0.155, 0.12, 0.022, 0.6));
    Blend(colour, dark, 0.8 * Ellipse(x - eye * 0.3, y - 0.165, 0.035, 0.022, 0.7));  // nostrils
  }
  Blend(colour, {245, 205, 180}, 0.5 * Ellipse(x, y + 0.0, 0.04, 0.17, 0.9));  // ridge of the nose
  Blend(colour, shade, 0.6 * Ellipse(x, y - 0.185, 0.12, 0.035, 0.8));
  Blend(colour, lips, Ellipse(x, y - 0.32, 0.17, 0.05, 0.4));
  Blend(colour, dark, 0.8 * Ellipse(x, y - 0.318, 0.15, 0.012, 0.6));
  Blend(colour, shade, 0.5 * Ellipse(x, y - 0.42, 0.12, 0.03, 0.8));
}

}  // namespace drawn_faces

/// The portrait's colour at a pixel: red, green, blue.
inline std::array<uint8_t, 3> ColourAt(const Portrait& portrait, int32_t px, int32_t py) {
  const double x = px + 0.5, y = py + 0.5;
  const double wall =
      150.0 - 30.0 * y / portrait.height + 10.0 * std::sin(x * 6.0 / portrait.width);
  drawn_faces::Colour colour{wall, wall * 0.98, wall * 0.92};
  for (const DrawnFace& face : portrait.faces) {
    drawn_faces::DrawPerson((x - face.x) / face.side - 0.5,
                            (y - face.y) / face.side - DrawnFace::kHeight / 2, face.skin, colour);
  }
  if (portrait.ballRadius > 0) {
    drawn_faces::Blend(colour, {225, 35, 25},
                       drawn_faces::Ellipse(x - portrait.ballX, y - portrait.ballY,
                                            portrait.ballRadius, portrait.ballRadius, 0.05));
  }
  std::array<uint8_t, 3> rounded{};
  for (size_t i = 0; i < 3; ++i)
    rounded[i] = static_cast<uint8_t>(std::clamp(colour[i], 0.0, 255.0));
  return rounded;
}

}  // namespace kelto::test
