// A numeric curve y(x) through an ordered list of control points.
//
// A plain record with free functions; used by one thread at a time. Nothing is checked: points are
// the caller's to keep in increasing x order, and curve pointers and indexes the caller's to keep
// valid. Create, set the kind, append points, CurvePrepare, evaluate as often as needed, destroy.
#pragma once

#include <cstdint>

namespace kelto {

/// How a curve runs between its points. Any other value evaluates to 0.0 inside the points' range.
enum CurveKind : int32_t {
  Linear = 0,           ///< straight lines
  NaturalSpline = 1,    ///< cubic spline with no curvature at either end
  PowerThreePoint = 2,  ///< a power function through exactly three points
  Hermite = 3,          ///< cubic segments whose tangents follow the neighbouring points
};

/// Bits of Curve::flags.
enum CurveFlag : uint32_t {
  ClampUnit = 0x1,     ///< CurveEvaluate clamps its result to [0, 1]
  Extrapolate = 0x2,   ///< beyond the end points the curve goes on instead of holding their values
  Dirty = 0x10000000,  ///< points or kind changed since the last CurvePrepare
};

/// A control point. The last three fields are CurvePrepare's; operations that store a point copy
/// all five.
struct CurvePoint {
  double x, y;
  double secondDerivative;  ///< d2y/dx2: NaturalSpline
  /// Of the segment arriving here. Hermite: per unit of the segment's own parameter, 0..1.
  /// PowerThreePoint, at its last point: dy/dx.
  double inTangent;
  /// Of the segment leaving here: as `inTangent`, PowerThreePoint at its first point.
  double outTangent;
};

/// Curve::exponent when none is computed.
constexpr double kNoExponent = 999.0;

/// A curve, made by CurveCreate or CurveClone. What CurvePrepare derives (the points' last three
/// fields, `exponent`) is valid until the next change that sets Dirty. Every resizing of the point
/// array resets `exponent` without setting Dirty, so that a prepared PowerThreePoint curve then
/// evaluates to 0.0 until it is changed and prepared again: intended.
struct Curve {
  CurvePoint* points;  ///< owned; `count` in use of `capacity`
  int32_t count;
  int32_t capacity;  ///< at least `count`, but after a shrinking CurveSetCapacity
  int32_t kind;      ///< CurveKind
  uint32_t flags;    ///< CurveFlag bits
  double exponent;   ///< of a PowerThreePoint curve, or kNoExponent
};

// Creation and storage. Points that the heap refuses leave the curve as it was: the operation's
// result then shows the unchanged count or capacity.

/// An empty Linear curve with room for 10 points (for none when the heap refuses them), Dirty. Null
/// when the record cannot be allocated.
Curve* CurveCreate();

/// A new curve with `source`'s kind, flags (and Dirty) and points, but not its exponent; an empty
/// new curve when `source` is null. Room for 10 points, or for `source`'s count + 10 when it holds
/// more than 10. Null when memory runs out.
Curve* CurveClone(const Curve* source);

/// Gives `destination` the kind, flags (and Dirty) and points of `source`. Its exponent stays
/// unless its array is too small, which then grows to `source`'s count + 10. Returns 1, or 0 when
/// the array cannot grow.
int32_t CurveCopyInto(const Curve* source, Curve* destination);

/// Releases the points and the record, which must not be null.
void CurveDestroy(Curve* curve);

/// Room for at least `n` points: grows the array to n + 10 unless it holds n already. Returns the
/// capacity. Does not set Dirty.
int32_t CurveReserve(Curve* curve, int32_t n);

/// Resizes the array to n + 10 points, which may shrink it; `count` stays, and shrinking below it
/// is the caller's to put right. Returns the capacity. Does not set Dirty.
int32_t CurveSetCapacity(Curve* curve, int32_t n);

// Adding points. Each sets Dirty; a full array grows to count + 11 points, one more than the
// operations above leave free.

/// Adds a point at the end. Returns the new count.
int32_t CurveAppend(Curve* curve, const CurvePoint& point);

/// Adds (x, y) at the end, its other fields 0.0.
void CurveAppendXY(Curve* curve, double x, double y);

/// Puts a point before the one at `index`, 0 .. count. Returns the new count.
int32_t CurveInsert(Curve* curve, const CurvePoint& point, int32_t index);

// Access and editing.

/// Copies point `i`, all five fields, to `*point`. Returns 1.
int32_t CurveGetPoint(const Curve* curve, int32_t i, CurvePoint* point);

/// x of point `i`.
double CurveGetX(const Curve* curve, int32_t i);

/// y of point `i`.
double CurveGetY(const Curve* curve, int32_t i);

/// Sets x of point `i`; sets Dirty.
void CurveSetX(Curve* curve, int32_t i, double v);

/// Sets y of point `i`; sets Dirty.
void CurveSetY(Curve* curve, int32_t i, double v);

/// Sets every point's y; sets Dirty.
void CurveSetAllY(Curve* curve, double v);

/// Multiplies every x by `sx` and every y by `sy`; sets Dirty.
void CurveScale(Curve* curve, double sx, double sy);

/// The number of points.
int32_t CurveCount(const Curve* curve);

/// The kind, a CurveKind or whatever was stored.
int32_t CurveGetKind(const Curve* curve);

/// Stores the kind; sets Dirty.
void CurveSetKind(Curve* curve, int32_t kind);

/// As CurveSetKind, and returns the kind stored.
int32_t CurveStoreKind(Curve* curve, int32_t kind);

/// Sets or clears Extrapolate and returns the new flags. Does not set Dirty, although CurvePrepare
/// of a PowerThreePoint curve reads the flag: callers prepare the curve after other changes only.
uint32_t CurveSetExtrapolate(Curve* curve, bool on);

// Queries.

/// True for exactly the two points (0, 0) and (1, 1).
bool CurveIsIdentity(const Curve* curve);

/// True when every point's y equals `v` exactly; true for an empty curve.
bool CurveIsConstant(const Curve* curve, double v);

/// Index of the point nearest to (px, py) among those closer than 1.0, the lowest one of equals;
/// -1 when there is none.
int32_t CurveFindNearest(const Curve* curve, double px, double py);

// Computation.

/// Clears Dirty and derives what the curve's kind needs: second derivatives, tangents or exponent.
/// Does nothing unless Dirty is set. To be called after the last change and before evaluation.
/// Equal neighbouring x values divide by zero. PowerThreePoint needs exactly three points that rise
/// strictly in x and y, Hermite at least three; otherwise their derived values stay as they were.
/// When a spline's working memory cannot be had, second derivatives stay and Dirty is set again.
void CurvePrepare(Curve* curve);

/// y at `x`; never prepares the curve. Outside the points' range it is the nearer end point's y,
/// or, with Extrapolate, the first or last segment continued. NaturalSpline and Hermite curves of
/// two points are straight lines. An empty curve gives 0.0, a one-point curve its y.
double CurveEvaluate(const Curve* curve, double x);

/// Samples [0, 1] at `n` even steps: table[i] = CurveEvaluate(i / (n - 1)) * (n - 1) + 0.5,
/// truncated towards zero and cut to 16 bits without clamping. n = 1 gives 0; n <= 0 writes
/// nothing. Never prepares the curve.
void CurveBuildTable(const Curve* curve, uint16_t* table, int16_t n);

}  // namespace kelto
