// Curves of any points, changed, prepared and evaluated in any order.
#include <bit>
#include <cmath>
#include <cstring>
#include <memory>
#include <vector>

#include "curves/curve.h"
#include "fuzz/byte_source.h"

namespace kelto::fuzz {
namespace {

struct CurveDeleter {
  void operator()(Curve* curve) const { CurveDestroy(curve); }
};
using CurvePtr = std::unique_ptr<Curve, CurveDeleter>;

constexpr int32_t kMostPoints = 200;
constexpr int kMostCalls = 2000;

CurvePoint PointFrom(ByteSource& in) {
  CurvePoint point;
  point.x = in.Double(0.0, 1.0);
  point.y = in.Double(-2.0, 2.0);
  // Any values: preparing the curve is to overwrite what its kind reads.
  point.secondDerivative = in.Double(-10.0, 10.0);
  point.inTangent = in.Double(-10.0, 10.0);
  point.outTangent = in.Double(-10.0, 10.0);
  return point;
}

bool SameBits(double a, double b) {
  return std::bit_cast<uint64_t>(a) == std::bit_cast<uint64_t>(b);
}

/// Points whose products neither overflow nor lose their last bits below the smallest doubles.
bool PointsRise(const Curve& curve) {
  constexpr double kLeastStep = 1e-12;
  for (int32_t i = 0; i < curve.count; ++i) {
    const CurvePoint& p = curve.points[i];
    if (!std::isfinite(p.x) || std::abs(p.x) > 1e6 || std::abs(p.y) > 1e6) return false;
    if (!std::isfinite(p.y) || (i > 0 && !(p.x - curve.points[i - 1].x > kLeastStep))) return false;
  }
  return true;
}

void Evaluate(const Curve& curve, double x) {
  const double y = CurveEvaluate(&curve, x);
  Require(SameBits(y, CurveEvaluate(&curve, x)) || std::isnan(y), "a curve has one value at an x");
  if (curve.flags & ClampUnit) Require(!(y < 0.0 || y > 1.0), "clamped values lie in 0..1");
  if (curve.count == 0) Require(y == 0.0, "an empty curve is 0");
  if (curve.kind != Linear || (curve.flags & Extrapolate) || !PointsRise(curve)) return;
  double least = INFINITY, most = -INFINITY;
  for (int32_t i = 0; i < curve.count; ++i) {
    least = std::min(least, curve.points[i].y);
    most = std::max(most, curve.points[i].y);
  }
  const double slack = 1e-9 * (1.0 + std::abs(least) + std::abs(most));
  if (curve.count == 0 || std::isnan(x) || (curve.flags & ClampUnit)) return;
  Require(y >= least - slack && y <= most + slack, "lines stay between their points");
}

void BuildTable(const Curve& curve, int32_t n) {
  // Exactly as large as it must be: the address sanitizer sees an entry more.
  std::vector<uint16_t> table(n > 0 ? static_cast<size_t>(n) : 0);
  CurveBuildTable(&curve, table.data(), static_cast<int16_t>(n));
}

void CheckCopy(const Curve& from, const Curve& copy) {
  Require(copy.count == from.count && copy.kind == from.kind, "a copy has the points and the kind");
  Require(copy.capacity >= copy.count, "a copy's points have room");
  Require(from.count == 0 || std::memcmp(copy.points, from.points,
                                         static_cast<size_t>(from.count) * sizeof(CurvePoint)) == 0,
          "a copy's points are the same bits");
}

/// One call on a curve; `other` is a second curve to copy from and to.
void Call(ByteSource& in, CurvePtr& curve, CurvePtr& other) {
  Curve* c = curve.get();
  const int32_t count = CurveCount(c);
  const int32_t index = count > 0 ? in.Below(std::min(count, 256)) : 0;
  switch (in.Below(24)) {
    case 0:
    case 1:
    case 2:
      if (count < kMostPoints) CurveAppendXY(c, in.Double(0.0, 1.0), in.Double(-2.0, 2.0));
      break;
    case 3:
      if (count < kMostPoints) CurveAppend(c, PointFrom(in));
      break;
    case 4:
      if (count < kMostPoints) CurveInsert(c, PointFrom(in), in.Below(std::min(count + 1, 256)));
      break;
    case 5:
      // A point of the curve's own, which may move while it is copied.
      if (count > 0 && count < kMostPoints) CurveInsert(c, c->points[index], index);
      break;
    case 6:
      if (count > 0) CurveSetX(c, index, in.Double(0.0, 1.0));
      break;
    case 7:
      if (count > 0) CurveSetY(c, index, in.Double(-2.0, 2.0));
      break;
    case 8:
      CurveSetAllY(c, in.Double(-2.0, 2.0));
      break;
    case 9:
      CurveScale(c, in.Double(-2.0, 2.0), in.Double(-2.0, 2.0));
      break;
    case 10:
      CurveSetKind(c, in.Mostly(0, 3));
      break;
    case 11:
      CurveSetExtrapolate(c, in.Bool());
      break;
    case 12:
      c->flags ^= ClampUnit;
      break;
    case 13:
    case 14:
      CurvePrepare(c);
      Require(!(c->flags & Dirty), "a prepared curve is clean");
      break;
    case 15:
    case 16:
      Evaluate(*c, in.Double(-0.5, 1.5));
      break;
    case 17:
      BuildTable(*c, in.Within(-3, 300));
      break;
    case 18:
      CurveReserve(c, in.Within(-5, 300));
      Require(c->capacity >= count, "making room loses no point");
      break;
    case 19:
      if (const int32_t n = in.Within(0, 300); n + 10 >= count) CurveSetCapacity(c, n);
      break;
    case 20:
      other.reset(CurveClone(c));
      CheckCopy(*c, *other);
      break;
    case 21:
      Require(CurveCopyInto(c, other.get()) == 1, "there is memory for a copy");
      CheckCopy(*c, *other);
      break;
    case 22:
      std::swap(curve, other);
      break;
    default:
      if (const int32_t nearest = CurveFindNearest(c, in.Double(0.0, 1.0), in.Double(-2.0, 2.0));
          nearest >= count || nearest < -1) {
        Require(false, "the nearest point is one of the curve's");
      }
      if (CurveIsIdentity(c)) Require(count == 2, "an identity has two points");
      CurveIsConstant(c, in.Double(-2.0, 2.0));
  }
  Require(curve->count >= 0 && curve->count <= curve->capacity, "points have room");
}

}  // namespace
}  // namespace kelto::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace kelto;
  using namespace kelto::fuzz;
  ByteSource in(data, size);
  CurvePtr curve(CurveCreate()), other(CurveCreate());
  for (int call = 0; call < kMostCalls && !in.Empty(); ++call) Call(in, curve, other);
  CurvePrepare(curve.get());
  Evaluate(*curve, 0.5);
  BuildTable(*curve, 17);
  return 0;
}
