// What curves do when the heap refuses. The linker sends this program's calloc and realloc calls
// through the two functions below.
#include <gtest/gtest.h>

#include <cstddef>

#include "curves/curve.h"
#include "tests/curves/make_curve.h"

namespace {
int grantedRequests = -1;  // how many succeed before the heap refuses; negative: all

bool Refuse() { return grantedRequests == 0 || (grantedRequests > 0 && grantedRequests-- == 0); }
}  // namespace

// The names are the linker's. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* block, size_t size);
void* __wrap_calloc(size_t count, size_t size) {
  return Refuse() ? nullptr : __real_calloc(count, size);
}
void* __wrap_realloc(void* block, size_t size) {
  return Refuse() ? nullptr : __real_realloc(block, size);
}
}
// NOLINTEND(bugprone-reserved-identifier)

namespace kelto {
namespace {

using test::MakeCurve;
using test::OwnedCurve;

class CurveOutOfMemory : public testing::Test {
 protected:
  // The result of `call` while the heap grants only so many requests.
  template <typename Call>
  static auto Granting(int requests, Call call) {
    grantedRequests = requests;
    const auto result = call();
    grantedRequests = -1;
    return result;
  }
};

TEST_F(CurveOutOfMemory, CreationAndCloningReturnNullWithoutARecord) {
  const OwnedCurve source = MakeCurve(Linear, {{0, 0}, {1, 1}});
  EXPECT_EQ(Granting(0, [] { return CurveCreate(); }), nullptr);
  EXPECT_EQ(Granting(0, [&] { return CurveClone(source.get()); }), nullptr);
}

TEST_F(CurveOutOfMemory, CloningReturnsNullWithoutRoomForThePoints) {
  const OwnedCurve source = MakeCurve(Linear, {{0, 0}, {1, 1}});
  EXPECT_EQ(Granting(1, [&] { return CurveClone(source.get()); }), nullptr);
}

TEST_F(CurveOutOfMemory, ACurveWithoutAnArrayStillTakesPointsLater) {
  const OwnedCurve curve(Granting(1, [] { return CurveCreate(); }));
  ASSERT_NE(curve, nullptr);
  EXPECT_EQ(curve->capacity, 0);
  EXPECT_EQ(CurveEvaluate(curve.get(), 0.5), 0.0);
  EXPECT_EQ(CurveAppend(curve.get(), {0, 7, 0, 0, 0}), 1);
  EXPECT_EQ(CurveEvaluate(curve.get(), 0.5), 7.0);
}

TEST_F(CurveOutOfMemory, AFailedResizeLeavesTheCurveAsItWas) {
  const OwnedCurve curve = MakeCurve(Linear, {});
  for (int i = 0; i < 10; ++i) CurveAppendXY(curve.get(), i, 2.0 * i);
  const CurvePoint point = {99, 99, 0, 0, 0};
  EXPECT_EQ(Granting(0, [&] { return CurveAppend(curve.get(), point); }), 10);
  EXPECT_EQ(Granting(0, [&] { return CurveInsert(curve.get(), point, 0); }), 10);
  EXPECT_EQ(Granting(0, [&] { return CurveReserve(curve.get(), 30); }), 10);
  EXPECT_EQ(Granting(0, [&] { return CurveSetCapacity(curve.get(), 30); }), 10);
  const OwnedCurve destination = MakeCurve(Hermite, {{3, 4}});
  CurveAppend(curve.get(), point);
  EXPECT_EQ(Granting(0, [&] { return CurveCopyInto(curve.get(), destination.get()); }), 0);
  EXPECT_EQ(destination->kind, Hermite);
  EXPECT_EQ(destination->count, 1);
  EXPECT_EQ(CurveGetY(curve.get(), 9), 18.0);
}

TEST_F(CurveOutOfMemory, ASplineWithoutWorkingMemoryIsPreparedTheNextTime) {
  const OwnedCurve curve = MakeCurve(NaturalSpline, {{0, 0}, {1, 1}, {2, 0}});
  const double curvature = curve->points[1].secondDerivative;
  EXPECT_LT(curvature, 0.0);
  CurveSetAllY(curve.get(), 0.0);
  const bool dirty = Granting(0, [&] {
    CurvePrepare(curve.get());
    return (curve->flags & Dirty) != 0;
  });
  EXPECT_TRUE(dirty);
  EXPECT_EQ(curve->points[1].secondDerivative, curvature);
  CurvePrepare(curve.get());
  EXPECT_EQ(curve->points[1].secondDerivative, 0.0);
}

}  // namespace
}  // namespace kelto
