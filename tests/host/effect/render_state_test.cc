#include "host/effect/render_state.h"

#include <gtest/gtest.h>

namespace kelto::host {
namespace {

RenderPlan PlanOf(FrameRate rate, FieldOrder fields) {
  RenderPlan plan;
  // Pixels wider than high, as television of 625 lines has them.
  plan.format = {{720, 576}, rate, fields, {16, 15}};
  plan.frames = 10;
  return plan;
}

TEST(RenderState, NamesTheTelevisionSystemByTheRate) {
  struct {
    FrameRate rate;
    int32_t system;
  } cases[] = {{{25, 1}, hfxVideoType625},
               {{50, 1}, hfxVideoType625},
               {{30000, 1001}, hfxVideoType525},
               {{30, 1}, hfxVideoType525}};
  for (const auto& [rate, system] : cases) {
    for (const FieldOrder fields : {FieldOrder::kTopFirst, FieldOrder::kBottomFirst}) {
      const RenderPlan plan = PlanOf(rate, fields);
      EXPECT_EQ(FrameState(plan, 3).videoType, system) << rate.numerator;
      EXPECT_EQ(FieldState(plan, 3, 1).videoType, system) << rate.numerator;
    }
    const RenderPlan progressive = PlanOf(rate, FieldOrder::kProgressive);
    EXPECT_EQ(FrameState(progressive, 3).videoType, hfxVideoTypeProgressive);
  }
}

TEST(RenderState, TellsTheShapeOfTheFrameAsShown) {
  const RenderPlan plan = PlanOf({25, 1}, FieldOrder::kTopFirst);
  EXPECT_NEAR(FieldState(plan, 0, 0).displayAspect, 4.0 / 3.0, 1e-12);
}

TEST(RenderState, OfAFieldSaysWhichItIs) {
  for (const FieldOrder fields : {FieldOrder::kTopFirst, FieldOrder::kBottomFirst}) {
    const RenderPlan plan = PlanOf({25, 1}, fields);
    ASSERT_EQ(FieldsOf(plan), 2);
    for (int32_t field = 0; field < 2; ++field) {
      const hfx::RenderState state = FieldState(plan, 3, field);
      EXPECT_EQ(state.fieldMode, hfxFieldModeSeparate);
      EXPECT_EQ(state.field, field);
      EXPECT_EQ(state.topField, (fields == FieldOrder::kTopFirst) == (field == 0));
    }
  }
}

}  // namespace
}  // namespace kelto::host
