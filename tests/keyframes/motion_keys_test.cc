#include "keyframes/motion_keys.h"

#include <gtest/gtest.h>

#include "runtime/hfx/host.h"

namespace kelto {
namespace {

/// An effect with the parameters that settle a motion.
class Effect : public hfxInstance_v1 {
 public:
  Effect() {
    hfxParameter* size = hfxPNumber::New("", "size", &zoom_, sizeof zoom_, 0.1, 20.0, 0.01, 0, 1);
    size->SetUserData(this);
    AddParameter(size, nullptr);
    AddParameter(hfxPPoint2D::New("", "position", centre_, sizeof centre_), nullptr);
    for (const char* key : {"invelocity", "outvelocity"}) {
      AddParameter(hfxPList::New("", key, &velocity_, sizeof velocity_, nullptr, 1), nullptr);
    }
  }
  template <typename Value>
  void Set(const char* key, double time, const Value& value) {
    hfx::SetKey(*FindParameter(key), time, &value, sizeof value);
  }

 private:
  double zoom_ = 1.0, centre_[2] = {};
  int32_t velocity_ = 0;
};

TEST(MotionKeys, AreReadInOrderOfTime) {
  Effect effect;
  hfx::StateOf(effect).totalFrames = 77;
  effect.Set("size", 1.0, 3.0);
  effect.Set("size", 0.25, 2.0);
  const double place[2] = {0.5, -0.25};
  effect.Set("position", 0.125, place);
  effect.Set("invelocity", 0.5, int32_t{kVelocityConstant});
  effect.Set("outvelocity", 0.75, int32_t{kVelocityHold});
  const MotionKeys keys = ReadMotionKeys(effect, kPathSpline);
  ASSERT_EQ(keys.zoom->size(), 2u);
  EXPECT_EQ(keys.zoom->at(0).time, 0.25);
  EXPECT_EQ(keys.zoom->at(0).value, 2.0);
  EXPECT_EQ(keys.zoom->at(1).value, 3.0);
  ASSERT_EQ(keys.position->size(), 1u);
  EXPECT_EQ(keys.position->at(0).time, 0.125);
  EXPECT_EQ(keys.position->at(0).value.x, 0.5);
  EXPECT_EQ(keys.position->at(0).value.y, -0.25);
  EXPECT_EQ(keys.in->at(0).value, kVelocityConstant);
  EXPECT_EQ(keys.out->at(0).value, kVelocityHold);
  EXPECT_EQ(keys.pathType, kPathSpline);
  EXPECT_EQ(keys.totalFrames, 77);
}

TEST(MotionKeys, AParameterThatTheEffectLacksIsNotOneWithoutKeys) {
  hfxInstance_v1 bare;
  const MotionKeys none = ReadMotionKeys(bare, kPathLinear);
  EXPECT_FALSE(none.position || none.zoom || none.in || none.out);
  Effect effect;
  const MotionKeys keys = ReadMotionKeys(effect, kPathLinear);
  EXPECT_TRUE(keys.position && keys.zoom && keys.in && keys.out);
  EXPECT_TRUE(keys.position->empty());
}

TEST(MotionKeys, AZoomWithoutAnInstanceBehindItHasNone) {
  Effect effect;
  effect.Set("size", 0.5, 2.0);
  effect.FindParameter("size")->SetUserData(nullptr);
  EXPECT_FALSE(ReadMotionKeys(effect, kPathLinear).zoom);
}

}  // namespace
}  // namespace kelto
