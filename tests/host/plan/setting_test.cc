#include "host/plan/setting.h"

#include <gtest/gtest.h>

namespace kelto::host {
namespace {

const SettingValue kFirst = std::string("first"), kSecond = std::string("second"),
                   kPlain = std::string("plain");

Setting WithKeys(int32_t active) {
  return {"display", kPlain, {{0.0, kFirst}, {1.0, kSecond}}, active};
}

TEST(HeldValue, IsTheValueWithoutKeys) {
  const Setting setting{"display", kPlain, {}, -1};
  ASSERT_NE(HeldValue(&setting), nullptr);
  EXPECT_EQ(*HeldValue(&setting), kPlain);
}

TEST(HeldValue, IsTheActiveKeysWhateverTheTime) {
  const Setting setting = WithKeys(1);
  ASSERT_NE(HeldValue(&setting), nullptr);
  EXPECT_EQ(*HeldValue(&setting), kSecond);
}

TEST(HeldValue, IsNoneWhereNoKeyIsActive) {
  const Setting setting = WithKeys(-1);
  EXPECT_EQ(HeldValue(&setting), nullptr);
}

TEST(HeldValue, IsNoneWhereNothingIsSet) {
  const Setting setting{"display", std::nullopt, {}, -1};
  EXPECT_EQ(HeldValue(&setting), nullptr);
  EXPECT_EQ(HeldValue(nullptr), nullptr);
}

TEST(SwitchedOn, IsWhatTheEffectBeginsWithWhereNothingIsSet) {
  EXPECT_TRUE(SwitchedOn(nullptr, true));
  EXPECT_FALSE(SwitchedOn(nullptr, false));
  const Setting unset{"progressive", std::nullopt, {}, -1};
  EXPECT_TRUE(SwitchedOn(&unset, true));
}

TEST(SwitchedOn, IsTheHeldValueAndOffWhereNoKeyIsActive) {
  const Setting off{"progressive", false, {}, -1};
  EXPECT_FALSE(SwitchedOn(&off, true));
  Setting keyed{"progressive", false, {{0.0, false}, {1.0, true}}, 1};
  EXPECT_TRUE(SwitchedOn(&keyed, false));
  keyed.activeKey = -1;
  EXPECT_FALSE(SwitchedOn(&keyed, true));
}

}  // namespace
}  // namespace kelto::host
