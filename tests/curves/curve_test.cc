#include "curves/curve.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/curves/make_curve.h"

namespace kelto {
namespace {

using test::MakeCurve;
using test::OwnedCurve;

constexpr CurvePoint kPoint = {1.0, 2.0, 3.0, 4.0, 5.0};
const double kNaN = std::numeric_limits<double>::quiet_NaN();

void ExpectSamePoint(const CurvePoint& a, const CurvePoint& b) {
  EXPECT_EQ(a.x, b.x);
  EXPECT_EQ(a.y, b.y);
  EXPECT_EQ(a.secondDerivative, b.secondDerivative);
  EXPECT_EQ(a.inTangent, b.inTangent);
  EXPECT_EQ(a.outTangent, b.outTangent);
}

OwnedCurve MakeRamp(int count) {
  OwnedCurve curve(CurveCreate());
  for (int i = 0; i < count; ++i) CurveAppendXY(curve.get(), i, 10.0 * i);
  return curve;
}

// A prepared three-point power curve with exponent 2.
OwnedCurve MakeSquare() { return MakeCurve(PowerThreePoint, {{0, 0}, {0.5, 0.25}, {1, 1}}); }

TEST(CurveStorage, NewCurveIsEmptyLinearDirtyWithRoomForTen) {
  const OwnedCurve curve(CurveCreate());
  EXPECT_EQ(CurveCount(curve.get()), 0);
  EXPECT_EQ(curve->capacity, 10);
  EXPECT_EQ(CurveGetKind(curve.get()), Linear);
  EXPECT_EQ(curve->exponent, kNoExponent);
  EXPECT_EQ(curve->flags, Dirty);
  for (int i = 0; i < 10; ++i) ExpectSamePoint(curve->points[i], CurvePoint{});
}

TEST(CurveStorage, EleventhPointGrowsTo21AndReserving30GrowsTo40) {
  const OwnedCurve curve = MakeRamp(10);
  EXPECT_EQ(curve->capacity, 10);
  EXPECT_EQ(CurveAppend(curve.get(), kPoint), 11);
  EXPECT_EQ(curve->capacity, 21);
  EXPECT_EQ(CurveReserve(curve.get(), 30), 40);
  EXPECT_EQ(curve->capacity, 40);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(CurveGetY(curve.get(), i), 10.0 * i);
  ExpectSamePoint(curve->points[10], kPoint);
}

TEST(CurveStorage, EveryWayOfAddingGrowsAFullArrayByEleven) {
  const OwnedCurve appended = MakeRamp(10);
  CurveAppendXY(appended.get(), 1, 2);
  EXPECT_EQ(appended->capacity, 21);
  const OwnedCurve inserted = MakeRamp(10);
  EXPECT_EQ(CurveInsert(inserted.get(), kPoint, 0), 11);
  EXPECT_EQ(inserted->capacity, 21);
  const OwnedCurve twice = MakeRamp(22);
  EXPECT_EQ(twice->capacity, 32);  // 21 points + 11
}

TEST(CurveStorage, ReservingWhatIsThereChangesNothing) {
  const OwnedCurve curve = MakeSquare();
  EXPECT_EQ(CurveReserve(curve.get(), 10), 10);
  EXPECT_NEAR(curve->exponent, 2.0, 1e-12);
}

TEST(CurveStorage, SetCapacityShrinksAndLeavesTheCount) {
  const OwnedCurve curve = MakeRamp(3);
  EXPECT_EQ(CurveReserve(curve.get(), 100), 110);
  EXPECT_EQ(CurveSetCapacity(curve.get(), -8), 2);
  EXPECT_EQ(curve->capacity, 2);
  EXPECT_EQ(CurveCount(curve.get()), 3);
  EXPECT_EQ(CurveGetY(curve.get(), 1), 10.0);
}

TEST(CurveStorage, AddingToACurveShrunkBelowItsCountStaysInsideTheArray) {
  const OwnedCurve curve = MakeRamp(3);
  CurveSetCapacity(curve.get(), -8);
  EXPECT_EQ(CurveAppend(curve.get(), kPoint), 4);
  EXPECT_EQ(curve->capacity, 14);
}

TEST(CurveStorage, ResizingForgetsTheExponentWithoutSettingDirty) {
  const OwnedCurve curve = MakeSquare();
  EXPECT_NEAR(CurveEvaluate(curve.get(), 0.5), 0.25, 1e-12);
  CurveReserve(curve.get(), 30);
  EXPECT_EQ(curve->exponent, kNoExponent);
  EXPECT_FALSE(curve->flags & Dirty);
  CurvePrepare(curve.get());
  EXPECT_EQ(CurveEvaluate(curve.get(), 0.5), 0.0);
  CurveSetY(curve.get(), 1, 0.25);
  CurvePrepare(curve.get());
  EXPECT_NEAR(CurveEvaluate(curve.get(), 0.5), 0.25, 1e-12);
  CurveSetCapacity(curve.get(), 10);
  EXPECT_EQ(curve->exponent, kNoExponent);
  EXPECT_FALSE(curve->flags & Dirty);
}

TEST(CurveStorage, CloneCopiesEverythingButTheExponent) {
  const OwnedCurve source = MakeSquare();
  source->flags |= ClampUnit | Extrapolate;
  const OwnedCurve clone(CurveClone(source.get()));
  EXPECT_EQ(clone->kind, PowerThreePoint);
  EXPECT_EQ(clone->flags, ClampUnit | Extrapolate | Dirty);
  EXPECT_EQ(clone->capacity, 10);
  EXPECT_EQ(clone->exponent, kNoExponent);
  ASSERT_EQ(clone->count, 3);
  for (int i = 0; i < 3; ++i) ExpectSamePoint(clone->points[i], source->points[i]);
  EXPECT_NE(clone->points, source->points);
}

TEST(CurveStorage, CloneOfMoreThanTenPointsHasRoomForTenMore) {
  const OwnedCurve ten(CurveClone(MakeRamp(10).get()));
  EXPECT_EQ(ten->capacity, 10);
  const OwnedCurve twelve(CurveClone(MakeRamp(12).get()));
  EXPECT_EQ(twelve->capacity, 22);
  EXPECT_EQ(CurveGetY(twelve.get(), 11), 110.0);
}

TEST(CurveStorage, CloneOfNothingIsANewCurve) {
  const OwnedCurve clone(CurveClone(nullptr));
  EXPECT_EQ(clone->count, 0);
  EXPECT_EQ(clone->capacity, 10);
  EXPECT_EQ(clone->flags, Dirty);
}

TEST(CurveStorage, CopyIntoKeepsTheExponentUnlessTheArrayGrows) {
  const OwnedCurve destination = MakeSquare();
  const OwnedCurve few = MakeCurve(Hermite, {{3, 4}, {5, 6}}, Extrapolate);
  EXPECT_EQ(CurveCopyInto(few.get(), destination.get()), 1);
  EXPECT_EQ(destination->kind, Hermite);
  EXPECT_EQ(destination->count, 2);
  EXPECT_EQ(destination->capacity, 10);
  EXPECT_EQ(destination->flags, Extrapolate | Dirty);
  EXPECT_NEAR(destination->exponent, 2.0, 1e-12);
  EXPECT_EQ(CurveGetX(destination.get(), 1), 5.0);

  EXPECT_EQ(CurveCopyInto(MakeRamp(11).get(), destination.get()), 1);
  EXPECT_EQ(destination->capacity, 21);
  EXPECT_EQ(destination->exponent, kNoExponent);
  EXPECT_EQ(CurveGetY(destination.get(), 10), 100.0);
}

TEST(CurvePoints, AppendingXAndYLeavesTheOtherFieldsZeroEvenInUsedRoom) {
  const OwnedCurve curve(CurveCreate());
  CurveAppend(curve.get(), kPoint);
  curve->count = 0;
  CurveAppendXY(curve.get(), 7, 8);
  ExpectSamePoint(curve->points[0], {7, 8, 0, 0, 0});
}

TEST(CurvePoints, InsertingMovesThePointsFromTheIndexUp) {
  const OwnedCurve curve = MakeRamp(3);
  EXPECT_EQ(CurveInsert(curve.get(), kPoint, 1), 4);
  EXPECT_EQ(CurveGetY(curve.get(), 0), 0.0);
  CurvePoint point;
  EXPECT_EQ(CurveGetPoint(curve.get(), 1, &point), 1);
  ExpectSamePoint(point, kPoint);
  EXPECT_EQ(CurveGetY(curve.get(), 2), 10.0);
  EXPECT_EQ(CurveGetY(curve.get(), 3), 20.0);
  EXPECT_EQ(CurveInsert(curve.get(), kPoint, 4), 5);
  ExpectSamePoint(curve->points[4], kPoint);
  EXPECT_EQ(CurveInsert(curve.get(), curve->points[3], 0), 6);  // a point of its own
  EXPECT_EQ(CurveGetY(curve.get(), 0), 20.0);
}

TEST(CurvePoints, EveryChangeOfPointsOrKindSetsDirty) {
  const OwnedCurve curve = MakeRamp(3);
  const auto expectDirty = [&curve](const char* change, auto&& make) {
    CurvePrepare(curve.get());
    ASSERT_FALSE(curve->flags & Dirty);
    make();
    EXPECT_TRUE(curve->flags & Dirty) << change;
  };
  expectDirty("append", [&] { CurveAppend(curve.get(), kPoint); });
  expectDirty("append x, y", [&] { CurveAppendXY(curve.get(), 8, 9); });
  expectDirty("insert", [&] { CurveInsert(curve.get(), kPoint, 0); });
  expectDirty("set x", [&] { CurveSetX(curve.get(), 0, -1); });
  expectDirty("set y", [&] { CurveSetY(curve.get(), 0, -2); });
  EXPECT_EQ(CurveGetX(curve.get(), 0), -1.0);
  EXPECT_EQ(CurveGetY(curve.get(), 0), -2.0);
  expectDirty("set all y", [&] { CurveSetAllY(curve.get(), 6); });
  expectDirty("scale", [&] { CurveScale(curve.get(), 2, 0.5); });
  EXPECT_EQ(CurveGetX(curve.get(), 0), -2.0);
  EXPECT_TRUE(CurveIsConstant(curve.get(), 3));
  expectDirty("set kind", [&] { CurveSetKind(curve.get(), Hermite); });
  expectDirty("store kind", [&] { EXPECT_EQ(CurveStoreKind(curve.get(), 2), 2); });
  EXPECT_EQ(CurveGetKind(curve.get()), PowerThreePoint);
}

TEST(CurvePoints, SettingExtrapolationReturnsTheFlagsAndLeavesDirtyAlone) {
  const OwnedCurve curve = MakeSquare();
  curve->flags |= ClampUnit;
  EXPECT_EQ(CurveSetExtrapolate(curve.get(), true), ClampUnit | Extrapolate);
  EXPECT_EQ(curve->flags, ClampUnit | Extrapolate);
  EXPECT_EQ(CurveSetExtrapolate(curve.get(), false), uint32_t{ClampUnit});
}

TEST(CurveQueries, IdentityIsExactlyTheTwoUnitPoints) {
  EXPECT_TRUE(CurveIsIdentity(MakeCurve(Linear, {{0, 0}, {1, 1}}).get()));
  EXPECT_FALSE(CurveIsIdentity(MakeCurve(Linear, {{0, 0}, {0.5, 0.5}, {1, 1}}).get()));
  EXPECT_FALSE(CurveIsIdentity(MakeCurve(Linear, {{0, 0}, {1, 1.0000001}}).get()));
  EXPECT_FALSE(CurveIsIdentity(MakeCurve(Linear, {{0, 0}, {1, kNaN}}).get()));
  EXPECT_FALSE(CurveIsIdentity(MakeCurve(Linear, {}).get()));
}

TEST(CurveQueries, ConstantMeansEveryYEqualsTheValueExactly) {
  EXPECT_TRUE(CurveIsConstant(MakeCurve(Linear, {}).get(), 3));
  EXPECT_TRUE(CurveIsConstant(MakeCurve(Linear, {{0, 3}, {1, 3}}).get(), 3));
  EXPECT_FALSE(CurveIsConstant(MakeCurve(Linear, {{0, 3}, {1, 3.0000001}}).get(), 3));
  EXPECT_FALSE(CurveIsConstant(MakeCurve(Linear, {{0, 3}, {1, kNaN}}).get(), 3));
}

TEST(CurveQueries, NearestPointMustBeCloserThanOneAndTheLowestOfEquals) {
  const OwnedCurve curve = MakeCurve(Linear, {{0, 3}, {1, 3}, {5, 3}});
  EXPECT_EQ(CurveFindNearest(curve.get(), 0.75, 3), 1);
  EXPECT_EQ(CurveFindNearest(curve.get(), 0.5, 3.25), 0);  // as far from the second
  EXPECT_EQ(CurveFindNearest(curve.get(), 0, 4), -1);      // exactly 1.0 away
  EXPECT_EQ(CurveFindNearest(curve.get(), 0, 3.999), 0);
  EXPECT_EQ(CurveFindNearest(curve.get(), 3, 3), -1);
  EXPECT_EQ(CurveFindNearest(MakeCurve(Linear, {}).get(), 0, 0), -1);
}

}  // namespace
}  // namespace kelto
