#include "curves/curve.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace kelto {
namespace {

constexpr int32_t kFirstCapacity = 10;
constexpr int32_t kSpareAfterResize = 10;
constexpr int32_t kSpareAfterAdding = 11;  // one more than the other step: both are kept

// Gives the array room for `capacity` points, or leaves the curve alone and returns false.
bool Resize(Curve* curve, int32_t capacity) {
  const auto points = static_cast<size_t>(std::max(capacity, 1));
  void* resized = std::realloc(curve->points, points * sizeof(CurvePoint));
  if (!resized) return false;
  curve->points = static_cast<CurvePoint*>(resized);
  curve->capacity = capacity;
  curve->exponent = kNoExponent;
  return true;
}

bool MakeRoomForOneMore(Curve* curve) {
  return curve->count < curve->capacity || Resize(curve, curve->count + kSpareAfterAdding);
}

}  // namespace

Curve* CurveCreate() {
  auto* curve = static_cast<Curve*>(std::calloc(1, sizeof(Curve)));
  if (!curve) return nullptr;
  curve->points = static_cast<CurvePoint*>(std::calloc(kFirstCapacity, sizeof(CurvePoint)));
  curve->capacity = curve->points ? kFirstCapacity : 0;
  curve->kind = Linear;
  curve->exponent = kNoExponent;
  curve->flags = Dirty;
  return curve;
}

Curve* CurveClone(const Curve* source) {
  Curve* clone = CurveCreate();
  if (!clone || !source) return clone;
  if (!CurveCopyInto(source, clone)) {
    CurveDestroy(clone);
    return nullptr;
  }
  return clone;
}

int32_t CurveCopyInto(const Curve* source, Curve* destination) {
  if (source->count > destination->capacity &&
      !Resize(destination, source->count + kSpareAfterResize)) {
    return 0;
  }
  destination->kind = source->kind;
  destination->count = source->count;
  destination->flags = source->flags | Dirty;
  std::copy_n(source->points, source->count, destination->points);
  return 1;
}

void CurveDestroy(Curve* curve) {
  std::free(curve->points);
  std::free(curve);
}

int32_t CurveReserve(Curve* curve, int32_t n) {
  return n <= curve->capacity ? curve->capacity : CurveSetCapacity(curve, n);
}

int32_t CurveSetCapacity(Curve* curve, int32_t n) {
  Resize(curve, n + kSpareAfterResize);
  return curve->capacity;
}

int32_t CurveAppend(Curve* curve, const CurvePoint& point) {
  return CurveInsert(curve, point, curve->count);
}

void CurveAppendXY(Curve* curve, double x, double y) {
  CurveAppend(curve, {.x = x, .y = y, .secondDerivative = 0, .inTangent = 0, .outTangent = 0});
}

int32_t CurveInsert(Curve* curve, const CurvePoint& point, int32_t index) {
  const CurvePoint added = point;  // it may be one of the points that move
  if (!MakeRoomForOneMore(curve)) return curve->count;
  CurvePoint* end = curve->points + curve->count;
  std::copy_backward(curve->points + index, end, end + 1);
  curve->points[index] = added;
  curve->flags |= Dirty;
  return ++curve->count;
}

int32_t CurveGetPoint(const Curve* curve, int32_t i, CurvePoint* point) {
  *point = curve->points[i];
  return 1;
}

double CurveGetX(const Curve* curve, int32_t i) { return curve->points[i].x; }

double CurveGetY(const Curve* curve, int32_t i) { return curve->points[i].y; }

void CurveSetX(Curve* curve, int32_t i, double v) {
  curve->points[i].x = v;
  curve->flags |= Dirty;
}

void CurveSetY(Curve* curve, int32_t i, double v) {
  curve->points[i].y = v;
  curve->flags |= Dirty;
}

void CurveSetAllY(Curve* curve, double v) {
  for (int32_t i = 0; i < curve->count; ++i) curve->points[i].y = v;
  curve->flags |= Dirty;
}

void CurveScale(Curve* curve, double sx, double sy) {
  for (int32_t i = 0; i < curve->count; ++i) {
    curve->points[i].x *= sx;
    curve->points[i].y *= sy;
  }
  curve->flags |= Dirty;
}

int32_t CurveCount(const Curve* curve) { return curve->count; }

int32_t CurveGetKind(const Curve* curve) { return curve->kind; }

void CurveSetKind(Curve* curve, int32_t kind) { CurveStoreKind(curve, kind); }

int32_t CurveStoreKind(Curve* curve, int32_t kind) {
  curve->kind = kind;
  curve->flags |= Dirty;
  return kind;
}

uint32_t CurveSetExtrapolate(Curve* curve, bool on) {
  curve->flags = on ? curve->flags | Extrapolate : curve->flags & ~uint32_t{Extrapolate};
  return curve->flags;
}

bool CurveIsIdentity(const Curve* curve) {
  const CurvePoint* p = curve->points;
  return curve->count == 2 && p[0].x == 0.0 && p[0].y == 0.0 && p[1].x == 1.0 && p[1].y == 1.0;
}

bool CurveIsConstant(const Curve* curve, double v) {
  return std::all_of(curve->points, curve->points + std::max(curve->count, 0),
                     [v](const CurvePoint& point) { return point.y == v; });
}

int32_t CurveFindNearest(const Curve* curve, double px, double py) {
  int32_t nearest = -1;
  double nearestDistance = 1.0;
  for (int32_t i = 0; i < curve->count; ++i) {
    const double dx = curve->points[i].x - px;
    const double dy = curve->points[i].y - py;
    const double distance = std::sqrt(dx * dx + dy * dy);
    if (distance < nearestDistance) {
      nearestDistance = distance;
      nearest = i;
    }
  }
  return nearest;
}

}  // namespace kelto
