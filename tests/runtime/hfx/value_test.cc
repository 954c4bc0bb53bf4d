// What a parameter is worth at a time, and what reaches its bound field.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

#include "tests/runtime/hfx/editable_instance.h"

namespace kelto {
namespace {

using testing::ElementsAre;

class Value : public testing::Test {
 protected:
  EditableInstance instance;
};

TEST_F(Value, WithoutKeysIsTheBoundField) {
  EXPECT_EQ(NumberAt(*instance.number, 0.5), 2.5);
  EXPECT_EQ(instance.list->GetValue(0.5), 1);
  EXPECT_TRUE(instance.flag->GetValue(0.5));
  double rgb[3];
  instance.color->GetValue(0.5, rgb);
  EXPECT_THAT(rgb, ElementsAre(0.1, 0.2, 0.3));
  instance.numberField = 4.0;
  EXPECT_EQ(NumberAt(*instance.number, 0.0), 4.0);
}

TEST_F(Value, OfANumberIsLinearBetweenKeysAndHoldsOutside) {
  SetNumberKey(*instance.number, 0.25, 10.0);
  SetNumberKey(*instance.number, 0.75, 20.0);
  EXPECT_EQ(NumberAt(*instance.number, 0.0), 10.0);
  EXPECT_EQ(NumberAt(*instance.number, 0.25), 10.0);
  EXPECT_DOUBLE_EQ(NumberAt(*instance.number, 0.5), 15.0);
  EXPECT_DOUBLE_EQ(NumberAt(*instance.number, 0.6), 17.0);
  EXPECT_EQ(NumberAt(*instance.number, 0.75), 20.0);
  EXPECT_EQ(NumberAt(*instance.number, 5.0), 20.0);
}

TEST_F(Value, BetweenEqualKeysNeverLeavesThem) {
  SetNumberKey(*instance.number, 0.0, 0.1);
  SetNumberKey(*instance.number, 1.0, 0.1);
  for (int i = 0; i <= 1000; ++i) EXPECT_EQ(NumberAt(*instance.number, i / 1000.0), 0.1);
}

TEST_F(Value, OfPointsAndColoursIsLinearInEachComponent) {
  const double points[2][2] = {{0.0, 1.0}, {1.0, -1.0}};
  hfx::SetKey(*instance.point, 0.0, points[0], 16);
  hfx::SetKey(*instance.point, 1.0, points[1], 16);
  double at[2];
  ASSERT_TRUE(hfx::ValueAt(*instance.point, 0.25, at, 16));
  EXPECT_THAT(at, ElementsAre(0.25, 0.5));

  const double colors[2][3] = {{0.0, 0.5, 1.0}, {1.0, 0.5, 0.0}};
  hfx::SetKey(*instance.color, 0.0, colors[0], 24);
  hfx::SetKey(*instance.color, 1.0, colors[1], 24);
  double rgb[3];
  instance.color->GetValue(0.75, rgb);
  EXPECT_THAT(rgb, ElementsAre(0.75, 0.5, 0.25));
  ASSERT_TRUE(hfx::ValueAt(*instance.color, 0.75, rgb, 24));
  EXPECT_THAT(rgb, ElementsAre(0.75, 0.5, 0.25));
}

TEST_F(Value, OfListsAndSwitchesHoldsFromTheLastKeyAtOrBefore) {
  const int32_t indexes[] = {2, 0};
  hfx::SetKey(*instance.list, 0.25, &indexes[0], 4);
  hfx::SetKey(*instance.list, 0.75, &indexes[1], 4);
  EXPECT_EQ(instance.list->GetValue(0.0), 2);
  EXPECT_EQ(instance.list->GetValue(0.25), 2);
  EXPECT_EQ(instance.list->GetValue(0.7499), 2);
  EXPECT_EQ(instance.list->GetValue(0.75), 0);
  EXPECT_EQ(instance.list->GetValue(1.0), 0);

  const uint8_t states[] = {0, 1};
  hfx::SetKey(*instance.flag, 0.0, &states[0], 1);
  hfx::SetKey(*instance.flag, 0.5, &states[1], 1);
  EXPECT_FALSE(instance.flag->GetValue(0.49));
  EXPECT_TRUE(instance.flag->GetValue(0.5));
}

TEST_F(Value, IsSetOnTheKeyAtExactlyItsTime) {
  const int32_t zero = 0;
  hfx::SetKey(*instance.list, 0.0, &zero, 4);
  hfx::SetKey(*instance.list, 0.5, &zero, 4);
  instance.list->SetValue(0.5, 2);
  EXPECT_EQ(instance.list->GetValue(0.0), 0);
  EXPECT_EQ(instance.list->GetValue(0.5), 2);
  instance.list->SetValue(0.25, 1);  // between keys: nothing to set
  EXPECT_EQ(instance.list->GetNumKeys(), 2);
  EXPECT_EQ(instance.list->GetValue(0.25), 0);
  EXPECT_EQ(instance.listField, 1);

  const uint8_t on = 1;
  hfx::SetKey(*instance.flag, 0.0, &on, 1);
  instance.flag->SetValue(0.0, false);
  EXPECT_FALSE(instance.flag->GetValue(0.0));

  const double black[3] = {0, 0, 0}, wanted[3] = {0.5, 0.25, 0.125};
  hfx::SetKey(*instance.color, 0.3, black, 24);
  instance.color->SetValue(0.3, wanted);
  double rgb[3];
  instance.color->GetValue(0.3, rgb);
  EXPECT_THAT(rgb, ElementsAre(0.5, 0.25, 0.125));
}

TEST_F(Value, WithoutKeysIsSetInTheBoundField) {
  instance.list->SetValue(0.7, 2);
  instance.flag->SetValue(0.7, false);
  const double rgb[3] = {1.0, 0.0, 0.5};
  instance.color->SetValue(0.7, rgb);
  EXPECT_EQ(instance.listField, 2);
  EXPECT_FALSE(instance.flagField);
  EXPECT_THAT(instance.colorField, ElementsAre(1.0, 0.0, 0.5));
}

TEST_F(Value, IsRefusedForAWrongSizeAGroupOrNoTime) {
  double value = 42.0;
  EXPECT_FALSE(hfx::ValueAt(*instance.number, 0.0, &value, 4));
  EXPECT_FALSE(hfx::ValueAt(*instance.number, 0.0, nullptr, 8));
  EXPECT_FALSE(hfx::ValueAt(*instance.number, std::nan(""), &value, 8));
  EXPECT_FALSE(hfx::ValueAt(*instance.group, 0.0, &value, 0));
  EXPECT_FALSE(hfx::ValueAt(*instance.list, 0.0, &value, 8));
  EXPECT_EQ(value, 42.0);
  instance.color->GetValue(0.0, nullptr);
  instance.color->SetValue(0.0, nullptr);
  EXPECT_EQ(instance.colorField[0], 0.1);
}

bool TimesTen(hfxParameter*, double time, void* result, int32_t size, int32_t reserved) {
  if (size != 8 || reserved != 0) return false;
  *static_cast<double*>(result) = time * 10.0;
  return true;
}

bool ScribbleAndDecline(hfxParameter*, double, void* result, int32_t size, int32_t) {
  std::memset(result, 0x7f, static_cast<size_t>(size));
  return false;
}

bool Throw(hfxParameter*, double, void*, int32_t, int32_t) { throw std::runtime_error("no value"); }

TEST_F(Value, ComesFromTheInterpolatorFirstWithKeysOrWithout) {
  instance.number->SetInterpolator(TimesTen);
  EXPECT_EQ(NumberAt(*instance.number, 0.5), 5.0);
  SetNumberKey(*instance.number, 0.0, 77.0);
  EXPECT_EQ(NumberAt(*instance.number, 0.5), 5.0);
  instance.number->SetInterpolator(nullptr);
  EXPECT_EQ(NumberAt(*instance.number, 0.5), 77.0);
}

TEST_F(Value, FallsBackToTheHostsOwnRulesWhenTheInterpolatorDeclines) {
  SetNumberKey(*instance.number, 0.0, 1.0);
  SetNumberKey(*instance.number, 1.0, 3.0);
  instance.number->SetInterpolator(ScribbleAndDecline);
  EXPECT_EQ(NumberAt(*instance.number, 0.5), 2.0);
}

TEST_F(Value, StaysUntouchedWhenTheInterpolatorThrows) {
  instance.number->SetInterpolator(Throw);
  double value = 42.0;
  EXPECT_THROW(hfx::ValueAt(*instance.number, 0.5, &value, 8), std::runtime_error);
  EXPECT_EQ(value, 42.0);
}

TEST_F(Value, OfAKeyedParameterIsWrittenIntoItsBoundField) {
  SetNumberKey(*instance.number, 0.0, 1.0);
  SetNumberKey(*instance.number, 1.0, 3.0);
  const int32_t two = 2;
  hfx::SetKey(*instance.list, 0.5, &two, 4);
  hfx::WriteBoundFields(instance, 0.5);
  EXPECT_EQ(instance.numberField, 2.0);
  EXPECT_EQ(instance.listField, 2);
}

TEST_F(Value, OfAParameterWithoutKeysStaysInItsBoundField) {
  instance.number->SetInterpolator(TimesTen);
  hfx::WriteBoundFields(instance, 0.5);
  EXPECT_EQ(instance.numberField, 2.5);
  EXPECT_EQ(instance.listField, 1);
  EXPECT_TRUE(instance.flagField);
  EXPECT_THAT(instance.pointField, ElementsAre(0.25, -0.5));
  EXPECT_THAT(instance.colorField, ElementsAre(0.1, 0.2, 0.3));
}

TEST_F(Value, KeepsTheDefaultThatTheFieldHeldAtFirst) {
  const double edited = 9.0;
  EXPECT_TRUE(hfx::SetBoundValue(*instance.number, &edited, 8));
  EXPECT_EQ(instance.numberField, 9.0);
  double value = 0.0;
  EXPECT_TRUE(hfx::BoundValueOf(*instance.number, &value, 8));
  EXPECT_EQ(value, 9.0);
  EXPECT_TRUE(hfx::DefaultValueOf(*instance.number, &value, 8));
  EXPECT_EQ(value, 2.5);
}

TEST_F(Value, OfTheFieldIsRefusedForAWrongSizeOrAGroup) {
  double value = 42.0;
  EXPECT_FALSE(hfx::SetBoundValue(*instance.number, &value, 4));
  EXPECT_FALSE(hfx::SetBoundValue(*instance.number, nullptr, 8));
  EXPECT_FALSE(hfx::BoundValueOf(*instance.number, &value, 16));
  EXPECT_FALSE(hfx::BoundValueOf(*instance.number, nullptr, 8));
  EXPECT_FALSE(hfx::DefaultValueOf(*instance.group, &value, 0));
  EXPECT_EQ(value, 42.0);
  EXPECT_EQ(instance.numberField, 2.5);
}

TEST(FrameTime, RunsFromZeroAtTheFirstFrameToOneAtTheLast) {
  hfx::RenderState state;
  state.totalFrames = 5;
  EXPECT_EQ(hfx::FrameTime(state), 0.0);
  state.currentFrame = 1;
  EXPECT_EQ(hfx::FrameTime(state), 0.25);
  state.currentFrame = 4;
  EXPECT_EQ(hfx::FrameTime(state), 1.0);
}

TEST(FrameTime, OfTheSecondFieldIsHalfAFrameLaterInInterlacedVideo) {
  hfx::RenderState state;
  state.totalFrames = 3;
  state.currentFrame = 1;
  state.field = 1;
  state.videoType = hfxVideoType625;
  EXPECT_EQ(hfx::FrameTime(state), 0.75);
  state.videoType = hfxVideoTypeProgressive;
  EXPECT_EQ(hfx::FrameTime(state), 0.5);
}

TEST(FrameTime, StaysWithinTheEffect) {
  hfx::RenderState state;
  state.totalFrames = 3;
  state.currentFrame = 2;
  state.field = 1;
  state.videoType = hfxVideoType525;
  EXPECT_EQ(hfx::FrameTime(state), 1.0);
  state.currentFrame = -7;
  EXPECT_EQ(hfx::FrameTime(state), 0.0);
}

TEST(FrameTime, OfASingleFrameIsZero) {
  hfx::RenderState state;
  state.currentFrame = 3;
  for (int32_t total : {1, 0, -1}) {
    state.totalFrames = total;
    EXPECT_EQ(hfx::FrameTime(state), 0.0) << total;
  }
}

}  // namespace
}  // namespace kelto
