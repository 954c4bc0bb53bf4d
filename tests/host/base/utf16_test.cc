#include "host/base/utf16.h"

#include <gtest/gtest.h>

#include <string>

namespace kelto::host {
namespace {

TEST(Utf16, HasTheLettersOfUtf8) {
  EXPECT_EQ(Utf16Of(""), u"");
  EXPECT_EQ(Utf16Of("A\u00e9\u0141\u5199\U0001F4F7"), u"A\u00e9\u0141\u5199\U0001F4F7");
  EXPECT_EQ(Utf8Of(u"A\u00e9\u0141\u5199\U0001F4F7"), "A\u00e9\u0141\u5199\U0001F4F7");
}

// A name on Windows may hold any units, be they letters or not.
TEST(Utf16, OfAnyUnitsComesBack) {
  for (uint32_t unit = 1; unit < 0x10000; ++unit) {
    const std::u16string alone{static_cast<char16_t>(unit)};
    ASSERT_EQ(Utf16Of(Utf8Of(alone)), alone) << unit;
    // Before and behind letters, and two at a time.
    const std::u16string among = u"a" + alone + alone + u"\U0001F4F7";
    ASSERT_EQ(Utf16Of(Utf8Of(among)), among) << unit;
  }
  const std::u16string wrongWay{char16_t{0xDC00}, char16_t{0xD800}};
  EXPECT_EQ(Utf16Of(Utf8Of(wrongWay)), wrongWay);
}

TEST(Utf16, OfEveryLetterBeyondTheFirstPlaneIsAPair) {
  for (uint32_t letter = 0x10000; letter <= 0x10FFFF; letter += 0x3FB) {
    const std::u16string pair{static_cast<char16_t>(0xD7C0 + (letter >> 10)),
                              static_cast<char16_t>(0xDC00 + (letter & 0x3FF))};
    ASSERT_EQ(Utf8Of(pair).size(), 4u);
    ASSERT_EQ(Utf16Of(Utf8Of(pair)), pair) << letter;
  }
}

TEST(Utf16, OfWhatIsNotUtf8IsNone) {
  for (const char* text : {"\x80", "\xBF", "\xC3", "\xC3(", "\xE5\x86", "\xE5\x86(", "\xF0\x9F\x93",
                           "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF",
                           "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF",
                           "L\xF3"
                           "dz"}) {
    EXPECT_EQ(Utf16Of(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace kelto::host
