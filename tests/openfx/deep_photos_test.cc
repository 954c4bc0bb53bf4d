// Which photographs stay decoded.
#include "adapters/openfx/deep_photos.h"

#include <gtest/gtest.h>

#include <fstream>

#include "tests/adapters/run.h"

namespace kelto::openfx {
namespace {

constexpr int32_t kKeptWidth = 64, kKeptHeight = 48;

class OpenFxPhotos : public testing::Test {
 protected:
  OpenFxPhotos() { others = 0; }
  std::string File(const std::string& name) {
    const std::string file = folder_ / (name + ".bmp");
    if (!std::filesystem::exists(file)) test::WriteTestPhoto(file, kKeptWidth, kKeptHeight);
    return file;
  }
  static uint64_t Others() { return others; }

  static inline uint64_t others = 0;
  const uint64_t one_ = DeepPicture::BytesFor(kKeptWidth, kKeptHeight, DeepSample::kUnsigned16);
  test::TempFolder folder_;
  std::string reason_;
};

TEST_F(OpenFxPhotos, AreDecodedOnceWhileTheyFit) {
  DeepPhotos photos(3 * one_, Others);
  for (int frame = 0; frame < 5; ++frame) {
    for (const char* name : {"a", "b", "c"}) ASSERT_NE(photos.Get(File(name), reason_), nullptr);
  }
  EXPECT_EQ(photos.Decoded(), 3u);
  EXPECT_EQ(photos.Bytes(), 3 * one_);
}

TEST_F(OpenFxPhotos, OverTheBudgetTheOneThatWasUsedLongestAgoGoes) {
  DeepPhotos photos(2 * one_, Others);
  photos.Get(File("a"), reason_);
  photos.Get(File("b"), reason_);
  photos.Get(File("a"), reason_);
  photos.Get(File("c"), reason_);  // b goes
  EXPECT_EQ(photos.Bytes(), 2 * one_);
  photos.Get(File("a"), reason_);
  photos.Get(File("c"), reason_);
  EXPECT_EQ(photos.Decoded(), 3u);
  photos.Get(File("b"), reason_);  // a goes
  photos.Get(File("c"), reason_);
  EXPECT_EQ(photos.Decoded(), 4u);
  photos.Get(File("a"), reason_);
  EXPECT_EQ(photos.Decoded(), 5u);
  EXPECT_EQ(photos.Bytes(), 2 * one_);
}

TEST_F(OpenFxPhotos, TheBudgetIsSharedWithWhatOthersHold) {
  DeepPhotos photos(3 * one_, Others);
  photos.Get(File("a"), reason_);
  photos.Get(File("b"), reason_);
  others = one_ + 1;
  photos.Get(File("c"), reason_);
  EXPECT_EQ(photos.Bytes(), one_);
  photos.Get(File("c"), reason_);
  EXPECT_EQ(photos.Decoded(), 3u);
}

TEST_F(OpenFxPhotos, OneThatIsLargerThanTheBudgetIsKeptAlone) {
  DeepPhotos photos(one_ - 1, Others);
  photos.Get(File("a"), reason_);
  photos.Get(File("a"), reason_);
  EXPECT_EQ(photos.Decoded(), 1u);
  photos.Get(File("b"), reason_);
  EXPECT_EQ(photos.Bytes(), one_);
}

TEST_F(OpenFxPhotos, WhatIsDrawnOutlivesItsPlace) {
  DeepPhotos photos(one_, Others);
  const auto drawn = photos.Get(File("a"), reason_);
  photos.Forget();
  EXPECT_EQ(photos.Bytes(), 0u);
  EXPECT_EQ(drawn->width(), kKeptWidth);
  photos.Get(File("a"), reason_);
  EXPECT_EQ(photos.Decoded(), 2u);
}

TEST_F(OpenFxPhotos, AFileThatHasChangedIsReadAnewAndTakesTheOldOnesPlace) {
  DeepPhotos photos(2 * one_, Others);
  photos.Get(File("a"), reason_);
  photos.Get(File("b"), reason_);
  test::WriteTestPhoto(File("a"), kKeptWidth / 2, kKeptHeight);
  std::filesystem::last_write_time(
      File("a"), std::filesystem::last_write_time(File("b")) + std::chrono::seconds(2));
  EXPECT_EQ(photos.Get(File("a"), reason_)->width(), kKeptWidth / 2);
  photos.Get(File("b"), reason_);
  EXPECT_EQ(photos.Decoded(), 3u);
}

TEST_F(OpenFxPhotos, ThatCannotBeReadSayWhy) {
  DeepPhotos photos(one_, Others);
  std::ofstream(folder_ / "text.bmp") << "not a picture";
  EXPECT_EQ(photos.Get(folder_ / "text.bmp", reason_), nullptr);
  EXPECT_EQ(reason_,
            folder_ / "text.bmp" +
                ": drawn with 8 bits, since all of them cannot be read: not a picture in a "
                "known format");
  EXPECT_EQ(photos.Decoded(), 0u);
}

}  // namespace
}  // namespace kelto::openfx
