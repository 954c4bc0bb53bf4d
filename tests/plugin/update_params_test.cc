#include "plugin/update_params.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "image/cache.h"
#include "render/motion.h"
#include "state/module.h"
#include "state/pool.h"
#include "tests/support/instance.h"

namespace kelto {
namespace {

using Colour = std::array<double, 3>;

using test::Instance;

/// Gives the instance a small working image of its own.
void Hold(Instance& instance) {
  IplImage* image =
      iplCreateImageHeader(4, 0, IPL_DEPTH_8U, "MSI", "MSI", IPL_DATA_ORDER_PIXEL, IPL_ORIGIN_TL,
                           IPL_ALIGN_QWORD, 8, 8, nullptr, nullptr, nullptr, nullptr);
  AllocateImageData(instance, image);
  instance.picture.workImages[0].reset(image);
}

void SetCacheKeys(Instance& instance, int32_t value) {
  for (const double t : {0.0, 0.5}) instance.SetKey("cache", t, value);
  instance.SetActive("cache", 1);
}

int32_t CacheEntry(Instance& instance, int32_t key) {
  return instance.KeyValue<int32_t>("cache", key);
}

TEST(UpdateParams, CopiesTheActiveKeyOntoEveryKey) {
  Instance i;
  int32_t value = 1;
  for (const double t : {0.0, 0.5, 1.0}) i.SetKey("filter", t, value++);
  i.SetActive("filter", 1);
  const bool switches[] = {false, true};
  i.SetKey("progressive", 0.0, switches[0]);
  i.SetKey("progressive", 1.0, switches[1]);
  i.SetActive("progressive", 1);
  EXPECT_TRUE(UpdateParams(&i));
  for (int32_t k = 0; k < 3; ++k) EXPECT_EQ(i.KeyValue<int32_t>("filter", k), 2);
  for (int32_t k = 0; k < 2; ++k) EXPECT_TRUE(i.KeyValue<bool>("progressive", k));
}

TEST(UpdateParams, DisplayKeysWithNoneActiveFallBackToDisplaySource) {
  Instance i;
  for (const double t : {0.0, 0.5, 1.0}) i.SetKey("display", t, int32_t{1});
  i.SetActive("display", -1);
  UpdateParams(&i);
  for (int32_t k = 0; k < 3; ++k) EXPECT_EQ(i.KeyValue<int32_t>("display", k), 0);
}

TEST(UpdateParams, HoldsEveryNonAnimatedParameter) {
  for (const char* key : {"display", "path", "filter", "levels", "compositeover"}) {
    Instance i;
    i.SetKey(key, 0.0, int32_t{0});
    i.SetKey(key, 1.0, int32_t{1});
    i.SetActive(key, 1);
    UpdateParams(&i);
    EXPECT_EQ(i.KeyValue<int32_t>(key, 0), 1) << key;
  }
  for (const char* key : {"showactionsafe", "squarepixels", "progressive"}) {
    Instance i;
    i.SetKey(key, 0.0, false);
    i.SetKey(key, 1.0, true);
    i.SetActive(key, 1);
    UpdateParams(&i);
    EXPECT_TRUE(i.KeyValue<bool>(key, 0)) << key;
  }
}

TEST(UpdateParams, HoldsTheColourOfTheActiveKeyAndLeavesItAloneWithoutOne) {
  const double red[3] = {1, 0, 0}, odd[3] = {1, 0, NAN};
  Instance i;
  i.SetKey("bgcolor", 0.0, odd);
  i.SetKey("bgcolor", 1.0, red);
  i.SetActive("bgcolor", -1);
  UpdateParams(&i);
  EXPECT_TRUE(std::isnan(i.KeyValue<Colour>("bgcolor", 0)[2]));
  i.SetActive("bgcolor", 1);
  UpdateParams(&i);
  EXPECT_EQ(i.KeyValue<Colour>("bgcolor", 0)[2], 0.0);
}

TEST(UpdateParams, LeavesEveryVelocityKeyItsOwn) {
  Instance i;
  i.SetVelocities(0.0, kVelocityLinear, kVelocityHold);
  i.SetVelocities(1.0, kVelocityEase, kVelocityEase);
  for (const char* key : {"invelocity", "outvelocity"}) i.SetActive(key, 1);
  UpdateParams(&i);
  EXPECT_EQ(i.KeyValue<int32_t>("invelocity", 0), kVelocityLinear);
  EXPECT_EQ(i.KeyValue<int32_t>("invelocity", 1), kVelocityEase);
  EXPECT_EQ(i.KeyValue<int32_t>("outvelocity", 0), kVelocityHold);
  EXPECT_EQ(i.KeyValue<int32_t>("outvelocity", 1), kVelocityEase);
}

TEST(UpdateParams, LeavesAnimatedKeysTheirOwn) {
  Instance i;
  for (const double t : {0.0, 1.0}) {
    i.SetPosition(t, t, -t);
    i.SetKey("size", t, 1.0 + t);
  }
  for (const char* key : {"position", "size"}) i.SetActive(key, 1);
  UpdateParams(&i);
  EXPECT_EQ(i.KeyValue<double>("size", 0), 1.0);
  const std::array<double, 2> origin = {0.0, 0.0};
  EXPECT_EQ((i.KeyValue<std::array<double, 2>>("position", 0)), origin);
}

TEST(UpdateParams, AConstantInKeyTakesItsOutKeyAlongAndBack) {
  Instance i;
  i.SetVelocities(0.0, kVelocityConstant, kVelocityEase);
  i.SetVelocities(1.0, kVelocityConstant, kVelocityEase);
  i.SetActive("invelocity", 0);
  UpdateParams(&i);
  EXPECT_EQ(i.KeyValue<int32_t>("outvelocity", 0), kVelocityConstant);
  EXPECT_EQ(i.KeyValue<int32_t>("outvelocity", 1), kVelocityEase) << "not the active key";
  i.SetKey("invelocity", 0.0, int32_t{kVelocityEase});
  i.SetActive("invelocity", 0);
  UpdateParams(&i);
  EXPECT_EQ(i.KeyValue<int32_t>("outvelocity", 0), kVelocityEase);
}

TEST(UpdateParams, AHoldOutKeyBesideALinearInKeyIsLeftAlone) {
  Instance i;
  i.SetVelocities(0.0, kVelocityLinear, kVelocityHold);
  i.SetActive("invelocity", 0);
  UpdateParams(&i);
  EXPECT_EQ(i.KeyValue<int32_t>("outvelocity", 0), kVelocityHold);
}

TEST(UpdateParams, HasTheMotionPreparedAnew) {
  Instance i;
  i.paramsChanged = false;
  UpdateParams(&i);
  EXPECT_TRUE(i.paramsChanged);
}

TEST(CacheCommands, ChoosingAnotherResolutionReleasesTheImages) {
  for (const int32_t mode : {kCacheVideoResolution, kCacheMultiResolution}) {
    Instance i;
    Hold(i);
    SetCacheKeys(i, mode);
    UpdateParams(&i);
    EXPECT_EQ(i.picture.workImages[0], nullptr);
    EXPECT_EQ(i.picture.appliedCacheMode, mode);
    EXPECT_EQ(CacheEntry(i, 0), mode);
  }
  Instance same;
  Hold(same);
  SetCacheKeys(same, kCacheImageResolution);
  UpdateParams(&same);
  EXPECT_NE(same.picture.workImages[0], nullptr) << "the mode in force already";
}

TEST(CacheCommands, FreeCurrentCacheShowsImageResolutionOnEveryKey) {
  Instance i, other;
  Hold(i);
  Hold(other);
  SetCacheKeys(i, kFreeCurrentCache);
  UpdateParams(&i);
  EXPECT_EQ(i.picture.workImages[0], nullptr);
  EXPECT_NE(other.picture.workImages[0], nullptr);
  EXPECT_EQ(CacheEntry(i, 0), kCacheImageResolution);
  EXPECT_EQ(CacheEntry(i, 1), kCacheImageResolution);
  EXPECT_EQ(i.picture.appliedCacheMode, kCacheImageResolution);
}

TEST(CacheCommands, FreeAllCachesEmptiesEveryInstanceAndResetsEveryList) {
  Instance a, b, c;
  for (Instance* i : {&a, &b, &c}) {
    Hold(*i);
    SetCacheKeys(*i, kCacheVideoResolution);
    i->picture.appliedCacheMode = kCacheVideoResolution;
    i->settings.cacheMode = kCacheVideoResolution;
  }
  SetCacheKeys(b, kFreeAllCaches);
  UpdateParams(&b);
  for (Instance* i : {&a, &b, &c}) {
    EXPECT_EQ(i->picture.workImages[0], nullptr);
    for (const int32_t key : {0, 1}) EXPECT_EQ(CacheEntry(*i, key), kCacheImageResolution);
    EXPECT_EQ(i->settings.cacheMode, kCacheImageResolution);
  }
  EXPECT_EQ(Module().cachedBytes, 0u);
}

TEST(CacheCommands, CacheAllLeavesInstancesAloneThatAreInThatModeAlready) {
  Instance inForce, other, asked;
  other.picture.appliedCacheMode = other.settings.cacheMode = kCacheVideoResolution;
  for (Instance* i : {&inForce, &other, &asked}) Hold(*i);
  SetCacheKeys(asked, kCacheAllFirst + kCacheImageResolution);
  UpdateParams(&asked);
  EXPECT_NE(inForce.picture.workImages[0], nullptr);
  EXPECT_NE(asked.picture.workImages[0], nullptr) << "its applied mode was Image Resolution too";
  EXPECT_EQ(other.picture.workImages[0], nullptr);
  EXPECT_EQ(other.picture.appliedCacheMode, kCacheImageResolution);
  EXPECT_EQ(CacheEntry(asked, 0), kCacheImageResolution) << "never a one-shot command";
}

TEST(CacheCommands, WithoutAnActiveKeyTheFieldDecides) {
  Instance i;
  Hold(i);
  SetCacheKeys(i, kFreeCurrentCache);
  i.SetActive("cache", -1);
  ApplyCacheCommand(i, true);
  EXPECT_NE(i.picture.workImages[0], nullptr);
  i.settings.cacheMode = 12;
  ApplyCacheCommand(i, false);
  EXPECT_NE(i.picture.workImages[0], nullptr) << "an unknown command does nothing";
}

}  // namespace
}  // namespace kelto
