// Colour profiles, which the system's imaging component converts, or does not: Wine's leaves
// samples as they are.
#include <gmock/gmock.h>
#include <windows.h>

#include <wincodec.h>

#include <algorithm>
#include <cmath>

#include "runtime/stills/limits.h"
#include "tests/windows/wic_file.h"

namespace kelto::stills {
namespace {

using WicProfiles = StillTest;

/// The most of a profile that one segment of a JPEG holds, and the most segments (ICC.1, annex
/// B.4).
constexpr size_t kMostInSegment = 65533 - 14, kMostSegments = 255;

void Number(Bytes& to, uint32_t value, int bytes = 4) {
  for (int i = bytes - 1; i >= 0; --i) to.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

void Letters(Bytes& to, const char* four) { to.insert(to.end(), four, four + 4); }

Bytes XyzTag(double x, double y, double z) {
  Bytes tag;
  Letters(tag, "XYZ ");
  Number(tag, 0);
  for (const double value : {x, y, z}) {
    Number(tag, static_cast<uint32_t>(std::lround(value * 65536)));
  }
  return tag;
}

/// Tags of a type that is a name and then bytes.
Bytes Tag(const char* type, const Bytes& content) {
  Bytes tag;
  Letters(tag, type);
  Number(tag, 0);
  Append(tag, content);
  tag.resize((tag.size() + 3) / 4 * 4);
  return tag;
}

/// sRGB's primaries with a gamma of 2.2 (ICC.1:2001-04), red and green having changed places: what
/// is stored red is to be seen green.
Bytes SwappedProfile() {
  Bytes description = {0, 0, 0, 2, 's', 0};
  description.resize(description.size() + 8 + 3 + 67);
  const Bytes gamma = Tag("curv", {0, 0, 0, 1, 0x02, 0x33});
  const struct {
    const char* name;
    Bytes tag;
  } tags[] = {{"desc", Tag("desc", description)},
              {"cprt", Tag("text", {'-', 0})},
              {"wtpt", XyzTag(0.9642, 1, 0.8249)},
              {"rXYZ", XyzTag(0.3851, 0.7169, 0.0971)},
              {"gXYZ", XyzTag(0.4361, 0.2225, 0.0139)},
              {"bXYZ", XyzTag(0.1431, 0.0606, 0.7141)},
              {"rTRC", gamma},
              {"gTRC", gamma},
              {"bTRC", gamma}};
  constexpr uint32_t kHeader = 128, kEntry = 12;
  Bytes table, contents;
  Number(table, std::size(tags));
  for (const auto& [name, tag] : tags) {
    Letters(table, name);
    Number(table, static_cast<uint32_t>(kHeader + 4 + kEntry * std::size(tags) + contents.size()));
    Number(table, static_cast<uint32_t>(tag.size()));
    Append(contents, tag);
  }
  Bytes profile;
  Number(profile, static_cast<uint32_t>(kHeader + table.size() + contents.size()));
  Number(profile, 0);
  Number(profile, 0x02100000);
  for (const char* word : {"mntr", "RGB ", "XYZ "}) Letters(profile, word);
  for (const uint32_t date : {2001, 1, 1, 0, 0, 0}) Number(profile, date, 2);
  Letters(profile, "acsp");
  profile.resize(68);
  for (const double value : {0.9642, 1.0, 0.8249}) {
    Number(profile, static_cast<uint32_t>(std::lround(value * 65536)));
  }
  profile.resize(kHeader);
  Append(profile, table);
  Append(profile, contents);
  return profile;
}

constexpr Pixel kReddish = Rgb(200, 60, 90), kGreenish = Rgb(60, 200, 90);

Picture Plain(const Pixel& colour) { return {16, 16, std::vector<Pixel>(size_t{16} * 16, colour)}; }

Bytes JpegWithProfile(const Bytes& profile) {
  const size_t segments = (profile.size() + kMostInSegment - 1) / kMostInSegment;
  EXPECT_LE(segments, kMostSegments);
  Bytes marks;
  for (size_t i = 0; i < segments; ++i) {
    const size_t from = i * kMostInSegment, to = std::min(from + kMostInSegment, profile.size());
    Append(marks, {0xff, 0xe2});
    Number(marks, static_cast<uint32_t>(to - from + 16), 2);
    for (const char letter : "ICC_PROFILE") marks.push_back(static_cast<uint8_t>(letter));
    Append(marks, {static_cast<uint8_t>(i + 1), static_cast<uint8_t>(segments)});
    marks.insert(marks.end(), profile.begin() + static_cast<ptrdiff_t>(from),
                 profile.begin() + static_cast<ptrdiff_t>(to));
  }
  Bytes file = EncodeByWic(GUID_ContainerFormatJpeg, Plain(kReddish));
  file.insert(file.begin() + 2, marks.begin(), marks.end());
  return file;
}

/// One reddish pixel, uncompressed.
Bytes TiffWithProfile(const Bytes& profile) {
  constexpr uint32_t kEntries = 10, kBits = 8 + 2 + 12 * kEntries + 4, kPixel = kBits + 6;
  Bytes file = {'M', 'M', 0, 42, 0, 0, 0, 8};
  Number(file, kEntries, 2);
  const auto entry = [&](uint32_t tag, uint32_t type, uint32_t count, uint32_t value) {
    constexpr uint32_t kShort = 3;
    Number(file, tag, 2);
    Number(file, type, 2);
    Number(file, count);
    Number(file, type == kShort && count == 1 ? value << 16 : value);
  };
  entry(256, 4, 1, 1);       // width
  entry(257, 4, 1, 1);       // height
  entry(258, 3, 3, kBits);   // bits of each sample
  entry(259, 3, 1, 1);       // uncompressed
  entry(262, 3, 1, 2);       // RGB
  entry(273, 4, 1, kPixel);  // where the pixels are
  entry(277, 3, 1, 3);       // samples
  entry(278, 4, 1, 1);       // rows
  entry(279, 4, 1, 3);       // bytes
  entry(34675, 7, static_cast<uint32_t>(profile.size()), kPixel + 4);
  Number(file, 0);
  for (int i = 0; i < 3; ++i) Number(file, 8, 2);
  Append(file, {kReddish.r, kReddish.g, kReddish.b, 0});
  Append(file, profile);
  return file;
}

/// The difference of a gamma of 2.2 from sRGB's curve, and a JPEG's own.
constexpr int kLevels = 8;

testing::AssertionResult IsAsStoredOrAsSeen(const Pixel& pixel) {
  if (IsNear(pixel, kGreenish, kLevels)) return testing::AssertionSuccess();
  return IsNear(pixel, kReddish, kLevels);
}

TEST_F(WicProfiles, APictureIsDrawnAsItsProfileSaysOrAsItIsStored) {
  for (const Bytes& file : {JpegWithProfile(SwappedProfile()), TiffWithProfile(SwappedProfile())}) {
    const Loaded loaded = Load(file);
    ASSERT_EQ(loaded.error, noErr) << loaded.text;
    EXPECT_TRUE(IsAsStoredOrAsSeen(loaded.picture.at(0, 0)));
  }
}

TEST_F(WicProfiles, OneThatIsNoneIsPassedOver) {
  for (const Bytes& junk : {Bytes(1, 'x'), Bytes(200, 0), Bytes(3000, 0xff)}) {
    for (const Bytes& file : {JpegWithProfile(junk), TiffWithProfile(junk)}) {
      const Loaded loaded = Load(file);
      ASSERT_EQ(loaded.error, noErr) << loaded.text;
      EXPECT_TRUE(IsNear(loaded.picture.at(0, 0), kReddish, kLevels));
    }
  }
}

TEST_F(WicProfiles, OneOfWhichASegmentIsMissingIsPassedOver) {
  Bytes file = JpegWithProfile(Bytes(2 * kMostInSegment, 7));
  file.erase(file.begin() + 2, file.begin() + 2 + 2 + 65535);
  const Loaded loaded = Load(file);
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  EXPECT_TRUE(IsNear(loaded.picture.at(0, 0), kReddish, kLevels));
}

// All the room that a JPEG has for profiles is less than the limit.
TEST_F(WicProfiles, TheLargestThatAJpegHoldsIsTaken) {
  Bytes profile = SwappedProfile();
  profile.resize(kMostSegments * kMostInSegment);
  ASSERT_LT(profile.size(), kMaxIccBytes);
  const Loaded loaded = Load(JpegWithProfile(profile));
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  EXPECT_TRUE(IsAsStoredOrAsSeen(loaded.picture.at(0, 0)));
}

TEST_F(WicProfiles, OneBeyondTheLimitIsRefusedWithItsSize) {
  EXPECT_EQ(Load(TiffWithProfile(Bytes(kMaxIccBytes, 0))).error, noErr);
  const Loaded loaded = Load(TiffWithProfile(Bytes(kMaxIccBytes + 2048, 0)), "huge.tif");
  EXPECT_EQ(loaded.error, codecBadDataErr);
  EXPECT_EQ(loaded.text, "huge.tif: an ICC profile of 16386 KiB; the limit is 16384 KiB");
}

}  // namespace
}  // namespace kelto::stills
