// The slope of a curve that never overshoots its points.
#pragma once

namespace kelto::motion {

/// The slope at the point between a stretch of length `before` and slope `in` and one of length
/// `after` and slope `out`, after Fritsch and Butland: their weighted harmonic mean, or 0 where the
/// direction turns.
double MeanSlope(double before, double in, double after, double out);

}  // namespace kelto::motion
