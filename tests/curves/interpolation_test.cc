// The kinds of curve: preparation, evaluation, tables.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "curves/curve.h"
#include "tests/curves/make_curve.h"
#include "tests/support/vectors.h"

namespace kelto {
namespace {

using test::MakeCurve;
using test::OwnedCurve;

constexpr CurveKind kKinds[] = {Linear, NaturalSpline, PowerThreePoint, Hermite};

OwnedCurve MakeCurve(const nlohmann::json& reference) {
  OwnedCurve curve(CurveCreate());
  CurveSetKind(curve.get(), reference["kind"]);
  for (const auto& point : reference["points"]) CurveAppendXY(curve.get(), point[0], point[1]);
  curve->flags |= reference["flags"].get<uint32_t>();
  CurvePrepare(curve.get());
  return curve;
}

// Random points, x rising, y free or rising with it.
OwnedCurve MakeRandomCurve(std::mt19937& random, int32_t kind, int count, bool rising = false) {
  std::uniform_real_distribution<double> step(0.05, 1.0);
  OwnedCurve curve(CurveCreate());
  CurveSetKind(curve.get(), kind);
  double x = -1.0;
  double y = -1.0;
  for (int i = 0; i < count; ++i) {
    x += step(random);
    y = rising ? y + step(random) : 4.0 * step(random) - 2.0;
    CurveAppendXY(curve.get(), x, y);
  }
  CurvePrepare(curve.get());
  return curve;
}

void ExpectClose(double actual, double expected) {
  EXPECT_NEAR(actual, expected, 1e-9 + 1e-9 * std::abs(expected));
}

// Slope of a curve just beside x.
double Slope(const Curve* curve, double x, double side) {
  constexpr double kStep = 1e-6;
  return (CurveEvaluate(curve, x + side * kStep) - CurveEvaluate(curve, x)) / (side * kStep);
}

TEST(CurveReference, DerivedDataAndValuesAgreeWithTheReferenceResults) {
  int index = 0;
  for (const auto& reference : test::Vectors()["curves"]) {
    SCOPED_TRACE("curve " + std::to_string(index++));
    const OwnedCurve curve = MakeCurve(reference);
    ExpectClose(curve->exponent, reference["exponent"]);
    for (int32_t i = 0; i < curve->count; ++i) {
      const auto& derived = reference["derived"][static_cast<size_t>(i)];
      ExpectClose(curve->points[i].secondDerivative, derived[0]);
      ExpectClose(curve->points[i].inTangent, derived[1]);
      ExpectClose(curve->points[i].outTangent, derived[2]);
    }
    for (size_t i = 0; i < reference["x"].size(); ++i) {
      ExpectClose(CurveEvaluate(curve.get(), reference["x"][i]), reference["y"][i]);
    }
  }
  EXPECT_GT(index, 0);
}

TEST(CurveReference, TablesAgreeWithTheReferenceResults) {
  for (const auto& reference : test::Vectors()["curve_tables"]) {
    const OwnedCurve curve = MakeCurve(reference);
    const int16_t n = reference["n"];
    std::vector<uint16_t> table(static_cast<size_t>(n));
    CurveBuildTable(curve.get(), table.data(), n);
    for (int16_t i = 0; i < n; ++i) {
      const double v = CurveEvaluate(curve.get(), i * (1.0 / (n - 1))) * (n - 1) + 0.5;
      const auto expected = reference["table"][static_cast<size_t>(i)].get<uint16_t>();
      const auto difference = static_cast<int16_t>(table[static_cast<size_t>(i)] - expected);
      const bool onTheEdge = std::abs(v - std::round(v)) < 1e-9;
      EXPECT_LE(std::abs(difference), onTheEdge ? 1 : 0) << "entry " << i;
    }
  }
}

TEST(CurveEvaluation, AnEmptyCurveIsZeroAndAOnePointCurveItsYEverywhere) {
  for (const int32_t kind : kKinds) {
    for (const uint32_t flags : {uint32_t{0}, uint32_t{Extrapolate}}) {
      const OwnedCurve empty = MakeCurve(kind, {}, flags);
      const OwnedCurve single = MakeCurve(kind, {{0.5, 7}}, flags);
      for (const double x : {-1.0, 0.5, 2.0}) {
        EXPECT_EQ(CurveEvaluate(empty.get(), x), 0.0);
        EXPECT_EQ(CurveEvaluate(single.get(), x), 7.0);
      }
    }
  }
}

TEST(CurveEvaluation, EveryKindHoldsItsEndValuesOutsideItsRange) {
  for (const int32_t kind : {0, 1, 2, 3, 99}) {
    const OwnedCurve curve = MakeCurve(kind, {{1, -3}, {2, 1}, {4, 9}});
    EXPECT_EQ(CurveEvaluate(curve.get(), 0.999), -3.0) << kind;
    EXPECT_EQ(CurveEvaluate(curve.get(), -1e9), -3.0) << kind;
    EXPECT_EQ(CurveEvaluate(curve.get(), 4.001), 9.0) << kind;
    EXPECT_EQ(CurveEvaluate(curve.get(), 1e9), 9.0) << kind;
  }
}

TEST(CurveEvaluation, ClampedResultsNeverLeaveTheUnitRange) {
  for (const int32_t kind : kKinds) {
    for (const uint32_t flags : {uint32_t{ClampUnit}, ClampUnit | Extrapolate}) {
      const OwnedCurve curve = MakeCurve(kind, {{0, -2}, {0.4, 0.5}, {1, 3}}, flags);
      bool low = false, high = false, between = false;
      for (int i = -200; i < 300; ++i) {
        const double y = CurveEvaluate(curve.get(), 0.01 * i);
        ASSERT_GE(y, 0.0);
        ASSERT_LE(y, 1.0);
        (y == 0.0 ? low : y == 1.0 ? high : between) = true;
      }
      EXPECT_TRUE(low && high && between) << "kind " << kind;
    }
  }
}

TEST(CurveEvaluation, AnUnknownKindIsZeroInsideItsRange) {
  EXPECT_EQ(CurveEvaluate(MakeCurve(4, {{0, 5}, {1, 5}}).get(), 0.5), 0.0);
  EXPECT_EQ(CurveEvaluate(MakeCurve(-1, {{0, 5}, {1, 5}}, Extrapolate).get(), 2.0), 0.0);
}

TEST(CurveEvaluation, PreparationDoesNothingUnlessTheCurveIsDirty) {
  const OwnedCurve curve = MakeCurve(NaturalSpline, {{0, 0}, {1, 1}, {2, 0}});
  EXPECT_FALSE(curve->flags & Dirty);
  curve->points[1].secondDerivative = 123.0;
  CurvePrepare(curve.get());
  EXPECT_EQ(curve->points[1].secondDerivative, 123.0);
}

TEST(CurveEvaluation, AMillionPointsAnswerAMillionTimes) {
  // Looked through one by one they would take many minutes.
  constexpr int32_t kCount = 1 << 20;
  const OwnedCurve curve(CurveCreate());
  CurveSetKind(curve.get(), NaturalSpline);
  CurveReserve(curve.get(), kCount);
  for (int32_t i = 0; i < kCount; ++i) CurveAppendXY(curve.get(), i, i % 2);
  CurvePrepare(curve.get());
  for (int32_t i = 0; i < kCount; ++i) {
    ASSERT_NEAR(CurveEvaluate(curve.get(), i), i % 2, 1e-12) << i;
  }
}

TEST(LinearCurve, RunsStraightThroughItsPointsAndContinuesItsEndSegments) {
  const OwnedCurve curve = MakeCurve(Linear, {{0, 0}, {1, 2}, {3, -2}}, Extrapolate);
  EXPECT_DOUBLE_EQ(CurveEvaluate(curve.get(), 0.25), 0.5);
  EXPECT_DOUBLE_EQ(CurveEvaluate(curve.get(), 1.0), 2.0);
  EXPECT_DOUBLE_EQ(CurveEvaluate(curve.get(), 1.5), 1.0);
  EXPECT_DOUBLE_EQ(CurveEvaluate(curve.get(), -1.0), -2.0);
  EXPECT_DOUBLE_EQ(CurveEvaluate(curve.get(), 4.0), -4.0);
}

TEST(LinearCurve, AStepBelongsToTheSegmentBeforeIt) {
  const OwnedCurve curve = MakeCurve(Linear, {{0, 0}, {1, 1}, {1, 5}, {2, 5}});
  EXPECT_EQ(CurveEvaluate(curve.get(), 1.0), 1.0);
  EXPECT_EQ(CurveEvaluate(curve.get(), 1.0000001), 5.0);
}

TEST(NaturalSplineCurve, TwoPointsAreAStraightLineThatExtrapolates) {
  const OwnedCurve held = MakeCurve(NaturalSpline, {{1, 1}, {3, 5}});
  EXPECT_DOUBLE_EQ(CurveEvaluate(held.get(), 1.5), 2.0);
  EXPECT_DOUBLE_EQ(CurveEvaluate(held.get(), 9.0), 5.0);
  EXPECT_EQ(held->points[0].secondDerivative, 0.0);
  EXPECT_EQ(held->points[1].secondDerivative, 0.0);
  const OwnedCurve continued = MakeCurve(NaturalSpline, {{1, 1}, {3, 5}}, Extrapolate);
  EXPECT_DOUBLE_EQ(CurveEvaluate(continued.get(), 1.5), 2.0);
  EXPECT_DOUBLE_EQ(CurveEvaluate(continued.get(), 0.0), -1.0);
  EXPECT_DOUBLE_EQ(CurveEvaluate(continued.get(), 4.0), 7.0);
}

TEST(NaturalSplineCurve, PassesThroughEveryPointWithoutCurvatureAtItsEnds) {
  std::mt19937 random(1);
  for (int count = 3; count <= 12; ++count) {
    const OwnedCurve curve = MakeRandomCurve(random, NaturalSpline, count);
    EXPECT_EQ(curve->points[0].secondDerivative, 0.0);
    EXPECT_EQ(curve->points[count - 1].secondDerivative, 0.0);
    for (int i = 0; i < count; ++i) {
      EXPECT_NEAR(CurveEvaluate(curve.get(), CurveGetX(curve.get(), i)), CurveGetY(curve.get(), i),
                  1e-12);
    }
  }
}

TEST(NaturalSplineCurve, SlopeIsContinuousAtEveryInnerPoint) {
  std::mt19937 random(2);
  for (int count = 3; count <= 12; ++count) {
    const OwnedCurve curve = MakeRandomCurve(random, NaturalSpline, count);
    for (int i = 1; i < count - 1; ++i) {
      const double x = CurveGetX(curve.get(), i);
      EXPECT_NEAR(Slope(curve.get(), x, -1.0), Slope(curve.get(), x, 1.0), 0.01);
    }
  }
}

TEST(NaturalSplineCurve, AFlatLastSegmentStaysExactlyFlat) {
  for (const double rise : {0.0, 0.9e-9, -0.9e-9}) {
    const OwnedCurve curve =
        MakeCurve(NaturalSpline, {{0, 0}, {1, 3}, {2, 3.0 + rise}}, Extrapolate);
    EXPECT_NE(curve->points[1].secondDerivative, 0.0);
    for (const double x : {1.0001, 1.25, 1.5, 2.0, 3.0}) {
      EXPECT_EQ(CurveEvaluate(curve.get(), x), 3.0) << "rise " << rise;
    }
  }
  for (const double rise : {1.1e-9, -1.1e-9}) {
    const OwnedCurve curve = MakeCurve(NaturalSpline, {{0, 0}, {1, 3}, {2, 3.0 + rise}});
    EXPECT_GT(CurveEvaluate(curve.get(), 1.5), 3.01) << "rise " << rise;
  }
}

TEST(NaturalSplineCurve, AFlatSegmentBeforeTheLastBulges) {
  const OwnedCurve curve = MakeCurve(NaturalSpline, {{0, 0}, {1, 3}, {2, 3}, {3, 0}});
  EXPECT_GT(CurveEvaluate(curve.get(), 1.5), 3.01);
}

TEST(NaturalSplineCurve, ExtrapolationContinuesTheCubicsOfTheEndSegments) {
  const OwnedCurve curve = MakeCurve(NaturalSpline, {{0, 0}, {1, 1}, {2, 0}}, Extrapolate);
  // The spline of these points is 1.5 t - 0.5 t^3 in both segments, t from either end.
  EXPECT_DOUBLE_EQ(CurveEvaluate(curve.get(), -1.0), -1.0);
  EXPECT_DOUBLE_EQ(CurveEvaluate(curve.get(), -2.0), 1.0);
  EXPECT_DOUBLE_EQ(CurveEvaluate(curve.get(), 3.0), -1.0);
  EXPECT_DOUBLE_EQ(CurveEvaluate(curve.get(), 4.0), 1.0);
}

TEST(PowerThreePointCurve, ASquareHasExponentTwo) {
  const OwnedCurve curve = MakeCurve(PowerThreePoint, {{0, 0}, {0.5, 0.25}, {1, 1}});
  EXPECT_DOUBLE_EQ(curve->exponent, 2.0);
  EXPECT_NEAR(CurveEvaluate(curve.get(), 0.3), 0.09, 1e-12);
}

TEST(PowerThreePointCurve, PointsThatDoNotRiseLeaveTheExponentAndAreZeroInside) {
  const std::initializer_list<std::pair<double, double>> notRising[] = {
      {{0, 1}, {0, 2}, {1, 3}},   {{0, 1}, {1, 2}, {1, 3}}, {{0, 1}, {0.5, 1}, {1, 3}},
      {{0, 1}, {0.5, 3}, {1, 3}}, {{0, 1}, {1, 3}},         {{0, 1}, {0.3, 2}, {0.6, 3}, {1, 4}},
  };
  for (const auto& points : notRising) {
    const OwnedCurve curve = MakeCurve(PowerThreePoint, points);
    EXPECT_EQ(curve->exponent, kNoExponent);
    EXPECT_EQ(CurveEvaluate(curve.get(), 0.5), 0.0);
  }
}

TEST(PowerThreePointCurve, AnEarlierExponentSurvivesPointsThatDoNotRise) {
  const OwnedCurve curve = MakeCurve(PowerThreePoint, {{0, 0}, {0.5, 0.25}, {1, 1}});
  CurveSetY(curve.get(), 1, 2.0);
  CurvePrepare(curve.get());
  EXPECT_FALSE(curve->flags & Dirty);
  EXPECT_DOUBLE_EQ(curve->exponent, 2.0);
  EXPECT_NEAR(CurveEvaluate(curve.get(), 0.5), 0.25, 1e-12);
}

TEST(PowerThreePointCurve, RisingPointsAreMet) {
  std::mt19937 random(3);
  for (int i = 0; i < 50; ++i) {
    const OwnedCurve curve = MakeRandomCurve(random, PowerThreePoint, 3, true);
    for (int k = 0; k < 3; ++k) {
      EXPECT_NEAR(CurveEvaluate(curve.get(), CurveGetX(curve.get(), k)), CurveGetY(curve.get(), k),
                  1e-12);
    }
  }
}

TEST(PowerThreePointCurve, ExtrapolatesAlongItsEndSlopes) {
  const OwnedCurve curve = MakeCurve(PowerThreePoint, {{0, 0}, {0.5, 0.25}, {1, 1}}, Extrapolate);
  EXPECT_NEAR(curve->points[0].outTangent, 0.001, 1e-9);
  EXPECT_NEAR(curve->points[2].inTangent, 1.999, 1e-9);
  EXPECT_NEAR(CurveEvaluate(curve.get(), -2.0), -0.002, 1e-9);
  EXPECT_NEAR(CurveEvaluate(curve.get(), 2.0), 2.999, 1e-9);
}

TEST(PowerThreePointCurve, SlopesAreCappedAt200FromAboveOnly) {
  const OwnedCurve steep = MakeCurve(PowerThreePoint, {{0, 0}, {0.5, 900}, {1, 1000}});
  EXPECT_EQ(steep->points[0].outTangent, 200.0);
  const OwnedCurve steepEnd = MakeCurve(PowerThreePoint, {{0, 0}, {0.5, 100}, {1, 1000}});
  EXPECT_EQ(steepEnd->points[2].inTangent, 200.0);
  // In less than the slope's step of 0.001 the sample lies beyond the other end, on its slope.
  const OwnedCurve narrow = MakeCurve(PowerThreePoint, {});
  CurveAppendXY(narrow.get(), 0, 0);
  CurveAppendXY(narrow.get(), 0.0002, 1);
  CurveAppend(narrow.get(), {0.0004, 2, 0, -1e6, 0});
  CurveSetExtrapolate(narrow.get(), true);
  CurvePrepare(narrow.get());
  EXPECT_NEAR(narrow->points[0].outTangent, (2.0 - 600.0) / 0.001, 1e-3);
}

TEST(HermiteCurve, PassesThroughEveryPoint) {
  std::mt19937 random(4);
  for (int count = 3; count <= 12; ++count) {
    const OwnedCurve curve = MakeRandomCurve(random, Hermite, count);
    for (int i = 0; i < count; ++i) {
      EXPECT_NEAR(CurveEvaluate(curve.get(), CurveGetX(curve.get(), i)), CurveGetY(curve.get(), i),
                  1e-12);
    }
  }
}

TEST(HermiteCurve, SlopeIsContinuousAtEveryInnerPoint) {
  std::mt19937 random(5);
  const OwnedCurve curve = MakeRandomCurve(random, Hermite, 8);
  for (int i = 1; i < 7; ++i) {
    const double x = CurveGetX(curve.get(), i);
    EXPECT_NEAR(Slope(curve.get(), x, -1.0), Slope(curve.get(), x, 1.0), 0.01);
  }
}

TEST(HermiteCurve, TangentsFollowTheNeighboursByTheirShareOfTheDistance) {
  const OwnedCurve curve = MakeCurve(Hermite, {{0, 0}, {1, 2}, {4, 10}});
  EXPECT_DOUBLE_EQ(curve->points[0].outTangent, 2.0);
  EXPECT_DOUBLE_EQ(curve->points[1].inTangent, 10.0 * 0.25);
  EXPECT_DOUBLE_EQ(curve->points[1].outTangent, 10.0 * 0.75);
  EXPECT_DOUBLE_EQ(curve->points[2].inTangent, 8.0);
}

TEST(HermiteCurve, OuterTangentsOfTheEndsStayAsTheyWere) {
  const OwnedCurve curve(CurveCreate());
  CurveSetKind(curve.get(), Hermite);
  for (int i = 0; i < 3; ++i) CurveAppend(curve.get(), {double(i), double(i * i), 0, 55, 66});
  CurvePrepare(curve.get());
  EXPECT_EQ(curve->points[0].inTangent, 55.0);
  EXPECT_EQ(curve->points[2].outTangent, 66.0);
  EXPECT_NE(curve->points[2].inTangent, 55.0);
}

TEST(HermiteCurve, PointsAtOneXHaveNoIncomingTangent) {
  const OwnedCurve curve = MakeCurve(Hermite, {{1, 0}, {1, 5}, {1, 7}});
  EXPECT_EQ(curve->points[1].inTangent, 0.0);
  EXPECT_EQ(curve->points[1].outTangent, 7.0);
}

TEST(HermiteCurve, ExtrapolationContinuesTheCubicsOfTheEndSegments) {
  // Equal steps on a line keep every cubic a straight line.
  const OwnedCurve curve = MakeCurve(Hermite, {{0, 0}, {1, 2}, {2, 4}, {3, 6}}, Extrapolate);
  EXPECT_NEAR(CurveEvaluate(curve.get(), -2.0), -4.0, 1e-12);
  EXPECT_NEAR(CurveEvaluate(curve.get(), 5.0), 10.0, 1e-12);
}

TEST(CurveTable, TheIdentityTableOf256IsEachIndex) {
  const OwnedCurve curve = MakeCurve(Linear, {{0, 0}, {1, 1}});
  uint16_t table[256];
  CurveBuildTable(curve.get(), table, 256);
  for (int i = 0; i < 256; ++i) EXPECT_EQ(table[i], i);
}

TEST(CurveTable, NoEntriesWriteNothingAndOneEntryIsZero) {
  const OwnedCurve curve = MakeCurve(Linear, {{0, 5}, {1, 5}});
  uint16_t table[2] = {77, 77};
  CurveBuildTable(curve.get(), table, 0);
  CurveBuildTable(curve.get(), table, -3);
  EXPECT_EQ(table[0], 77);
  CurveBuildTable(curve.get(), table, 1);
  EXPECT_EQ(table[0], 0);
  EXPECT_EQ(table[1], 77);
}

TEST(CurveTable, EntriesBeyondTheTableAreCutTo16BitsNotClamped) {
  const OwnedCurve curve = MakeCurve(Linear, {{0, -1}, {1, 70000}});
  uint16_t table[2];
  CurveBuildTable(curve.get(), table, 2);
  EXPECT_EQ(table[0], 0);  // -0.5 towards zero
  EXPECT_EQ(table[1], 70000 - 65536);
  CurveSetY(curve.get(), 0, -2);
  CurveSetY(curve.get(), 1, INFINITY);
  CurveBuildTable(curve.get(), table, 2);
  EXPECT_EQ(table[1], 0);
  CurveSetY(curve.get(), 1, 0);
  CurveBuildTable(curve.get(), table, 2);
  EXPECT_EQ(table[0], 65535);
}

}  // namespace
}  // namespace kelto
