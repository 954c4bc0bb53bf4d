// Keys of a parameter: their order, their activity, and what a host may do to them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "tests/runtime/hfx/editable_instance.h"

namespace kelto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Keys : public testing::Test {
 protected:
  EditableInstance instance;
  hfxPNumber& number = *instance.number;
};

TEST_F(Keys, StayInOrderOfTimeHoweverTheyAreAdded) {
  EXPECT_EQ(SetNumberKey(number, 0.5, 5.0), 0);
  EXPECT_EQ(SetNumberKey(number, 1.0, 10.0), 1);
  EXPECT_EQ(SetNumberKey(number, 0.0, 0.0), 0);
  EXPECT_EQ(SetNumberKey(number, 0.25, 2.5), 1);
  EXPECT_THAT(KeyTimes(number), ElementsAre(0.0, 0.25, 0.5, 1.0));
  EXPECT_EQ(KeyNumber(number, 1), 2.5);
}

TEST_F(Keys, AtAnOccupiedTimeOverwriteTheValueAndKeepTheActivity) {
  SetNumberKey(number, 0.5, 5.0);
  hfx::SetActiveKey(number, 0);
  EXPECT_EQ(SetNumberKey(number, 0.5, 6.0), 0);
  EXPECT_EQ(number.GetNumKeys(), 1);
  EXPECT_EQ(KeyNumber(number, 0), 6.0);
  EXPECT_TRUE(number.GetKey(0)->IsActive());
}

TEST_F(Keys, KeepTheirAddressWhileOthersComeAndGo) {
  SetNumberKey(number, 0.5, 5.0);
  const hfxParamKey* key = number.GetKey(0);
  for (int i = 0; i < 100; ++i) SetNumberKey(number, i / 1000.0, i);
  hfx::RemoveKey(number, 0);
  EXPECT_EQ(number.GetKey(99), key);
  EXPECT_EQ(key->GetTime(), 0.5);
}

TEST_F(Keys, AreFoundByTheirExactTimeOnly) {
  SetNumberKey(number, 0.1, 1.0);
  SetNumberKey(number, 0.3, 3.0);
  EXPECT_EQ(number.GetKeyIndex(0.3), 1);
  EXPECT_EQ(number.GetKeyIndex(0.1 + 0.2), -1);  // one bit above 0.3
  EXPECT_EQ(number.GetKeyIndex(2.0), -1);
  EXPECT_EQ(number.GetKeyIndex(std::nan("")), -1);
}

TEST_F(Keys, BeyondTheEndsAreNull) {
  SetNumberKey(number, 0.0, 1.0);
  EXPECT_EQ(number.GetKey(-1), nullptr);
  EXPECT_EQ(number.GetKey(1), nullptr);
  EXPECT_EQ(instance.group->GetKey(0), nullptr);
}

TEST_F(Keys, AreRefusedWithoutAFiniteTimeAValueOrTheRightSize) {
  const double value = 1.0;
  EXPECT_EQ(hfx::SetKey(number, std::nan(""), &value, 8), -1);
  EXPECT_EQ(hfx::SetKey(number, std::numeric_limits<double>::infinity(), &value, 8), -1);
  EXPECT_EQ(hfx::SetKey(number, 0.0, nullptr, 8), -1);
  EXPECT_EQ(hfx::SetKey(number, 0.0, &value, 4), -1);
  EXPECT_EQ(hfx::SetKey(number, 0.0, &value, -8), -1);
  EXPECT_EQ(hfx::SetKey(*instance.group, 0.0, &value, 0), -1);
  EXPECT_EQ(hfx::SetKey(*instance.group, 0.0, &value, 8), -1);
  EXPECT_EQ(number.GetNumKeys(), 0);
  EXPECT_EQ(instance.group->GetNumKeys(), 0);
}

TEST_F(Keys, OfATrimmedEffectMayLieOutsideItsLength) {
  SetNumberKey(number, 1.5, 2.0);
  SetNumberKey(number, -0.5, 1.0);
  EXPECT_THAT(KeyTimes(number), ElementsAre(-0.5, 1.5));
}

TEST_F(Keys, HaveOneActiveAmongThemAtMost) {
  for (double time : {0.0, 0.5, 1.0}) SetNumberKey(number, time, time);
  EXPECT_EQ(hfx::ActiveKeyOf(number), -1);
  hfx::SetActiveKey(number, 2);
  hfx::SetActiveKey(number, 1);
  EXPECT_FALSE(number.GetKey(0)->IsActive());
  EXPECT_TRUE(number.GetKey(1)->IsActive());
  EXPECT_FALSE(number.GetKey(2)->IsActive());
  EXPECT_EQ(hfx::ActiveKeyOf(number), 1);
  hfx::SetActiveKey(number, -1);
  EXPECT_EQ(hfx::ActiveKeyOf(number), -1);
  hfx::SetActiveKey(number, 0);
  hfx::SetActiveKey(number, 3);
  EXPECT_EQ(hfx::ActiveKeyOf(number), -1);
}

TEST_F(Keys, MovePastOthersWithValueAndActivity) {
  for (double time : {0.0, 0.25, 0.5, 0.75}) SetNumberKey(number, time, time * 100);
  hfx::SetActiveKey(number, 0);
  EXPECT_EQ(hfx::MoveKey(number, 0, 0.6), 2);
  EXPECT_THAT(KeyTimes(number), ElementsAre(0.25, 0.5, 0.6, 0.75));
  EXPECT_EQ(KeyNumber(number, 2), 0.0);
  EXPECT_EQ(hfx::ActiveKeyOf(number), 2);
  EXPECT_EQ(hfx::MoveKey(number, 3, 0.1), 0);
  EXPECT_THAT(KeyTimes(number), ElementsAre(0.1, 0.25, 0.5, 0.6));
  EXPECT_EQ(KeyNumber(number, 0), 75.0);
  EXPECT_EQ(hfx::MoveKey(number, 1, 0.3), 1);
  EXPECT_THAT(KeyTimes(number), ElementsAre(0.1, 0.3, 0.5, 0.6));
}

TEST_F(Keys, DoNotMoveOntoOthersOrToNowhere) {
  SetNumberKey(number, 0.0, 1.0);
  SetNumberKey(number, 1.0, 2.0);
  EXPECT_EQ(hfx::MoveKey(number, 0, 1.0), -1);
  EXPECT_EQ(hfx::MoveKey(number, 0, std::nan("")), -1);
  EXPECT_EQ(hfx::MoveKey(number, 2, 0.5), -1);
  EXPECT_EQ(hfx::MoveKey(number, 1, 1.0), 1);
  EXPECT_THAT(KeyTimes(number), ElementsAre(0.0, 1.0));
}

TEST_F(Keys, AreRemovedOneByOneOrAllTogether) {
  for (double time : {0.0, 0.5, 1.0}) SetNumberKey(number, time, time);
  EXPECT_TRUE(hfx::RemoveKey(number, 1));
  EXPECT_THAT(KeyTimes(number), ElementsAre(0.0, 1.0));
  EXPECT_FALSE(hfx::RemoveKey(number, 2));
  EXPECT_FALSE(hfx::RemoveKey(number, -1));
  hfx::RemoveAllKeys(number);
  EXPECT_THAT(KeyTimes(number), IsEmpty());
}

TEST_F(Keys, TakeRawValuesUpToTheirOwnSize) {
  const double start[2] = {1.0, 2.0};
  hfx::SetKey(*instance.point, 0.0, start, 16);
  hfxParamKey& key = *instance.point->GetKey(0);
  const double more[3] = {7.0, 8.0, 9.0};
  EXPECT_FALSE(key.SetValue(more, 24));
  EXPECT_FALSE(key.SetValue(nullptr, 16));
  EXPECT_FALSE(key.SetValue(more, -1));
  EXPECT_TRUE(key.SetValue(more, 8));
  double read[2];
  std::memcpy(read, key.GetValue(), sizeof read);
  EXPECT_EQ(read[0], 7.0);
  EXPECT_EQ(read[1], 2.0);
}

TEST_F(Keys, StayStrictlyOrderedThroughRandomEdits) {
  std::mt19937 random(20);
  std::uniform_int_distribution<int> step(0, 40), action(0, 4);
  for (int i = 0; i < 5000; ++i) {
    const double time = step(random) / 40.0;
    const int32_t index = step(random) % 20;
    switch (action(random)) {
      case 0:
        hfx::RemoveKey(number, index);
        break;
      case 1:
        hfx::MoveKey(number, index, time);
        break;
      case 2:
        hfx::SetActiveKey(number, index);
        break;
      default:
        SetNumberKey(number, time, time);
        break;
    }
    const std::vector<double> times = KeyTimes(number);
    int active = 0;
    for (size_t k = 0; k < times.size(); ++k) {
      if (k > 0) {
        ASSERT_LT(times[k - 1], times[k]) << "after edit " << i;
      }
      ASSERT_EQ(number.GetKeyIndex(times[k]), static_cast<int32_t>(k));
      active += number.GetKey(static_cast<int32_t>(k))->IsActive();
    }
    ASSERT_LE(active, 1) << "after edit " << i;
  }
}

}  // namespace
}  // namespace kelto
