#include "host/base/shown_text.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

namespace kelto::host {
namespace {

TEST(ShownText, LeavesNamesOfAllScriptsAsTheyAre) {
  for (const std::string name :
       {"photo.jpg", "Z\xc3\xbcrich \xe2\x82\xac.jpg", "\xd0\xa4\xd0\xbe\xd1\x82\xd0\xbe.jpg",
        "\xe5\x86\x99\xe7\x9c\x9f.jpg", "\xf0\x9f\x8f\x94.jpg", "e\xcc\x81.jpg", "\xc2\xa0",
        "a\\nb", "", "%s"}) {
    EXPECT_EQ(ShownText(name), name);
  }
}

TEST(ShownText, EscapesWhatTerminalsObey) {
  EXPECT_EQ(ShownText("a\x1b[31mb\x07\x08\x7f"), "a\\x1b[31mb\\x07\\x08\\x7f");
  EXPECT_EQ(ShownText("a\nkelto: done\r\t"), "a\\nkelto: done\\r\\t");
  EXPECT_EQ(ShownText(std::string_view("\0", 1)), "\\x00");
  EXPECT_EQ(ShownText("\xc2\x80\xc2\x9b\xc2\x9f"), "\\u0080\\u009b\\u009f") << "C1";
  EXPECT_EQ(ShownText("\xe2\x80\xaegpj.exe"), "\\u202egpj.exe") << "right-to-left override";
  EXPECT_EQ(ShownText("\xe2\x81\xa6\xe2\x80\xa8\xd8\x9c"), "\\u2066\\u2028\\u061c");
}

TEST(ShownText, EscapesBytesThatAreNotUtf8) {
  EXPECT_EQ(ShownText("\x9b"
                      "31m"),
            "\\x9b31m")
      << "CSI of terminals with 8 bits";
  EXPECT_EQ(ShownText("\xff\xc3"), "\\xff\\xc3");
  EXPECT_EQ(ShownText("\xc0\x9b"), "\\xc0\\x9b") << "longer than need be";
  EXPECT_EQ(ShownText("\xe0\x82\x9b"), "\\xe0\\x82\\x9b");
  EXPECT_EQ(ShownText("\xed\xa0\x80"), "\\xed\\xa0\\x80") << "half a pair";
  EXPECT_EQ(ShownText("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80") << "beyond Unicode";
  EXPECT_EQ(ShownText("\xe2\x82"
                      "a"),
            "\\xe2\\x82"
            "a")
      << "cut short";
}

TEST(ShownText, OfAnyBytesIsOneLineAndItsOwnResult) {
  uint32_t random = 1;
  for (int round = 0; round < 2000; ++round) {
    std::string text;
    for (int i = 0; i < 20; ++i) {
      random = random * 1664525u + 1013904223u;
      text += static_cast<char>(random >> 24);
    }
    const std::string shown = ShownText(text);
    for (const char c : shown) EXPECT_TRUE(static_cast<unsigned char>(c) >= 0x20 && c != 0x7f);
    EXPECT_EQ(ShownText(shown), shown);
  }
}

TEST(ShownJson, ReadsAsTheSameValues) {
  const nlohmann::json values{{"name", "a\x1b\n\x7f\xc2\x9b\xe2\x80\xae\xc3\xbc"}, {"size", 3}};
  const std::string shown = ShownJson(values.dump(2) + "\n");
  EXPECT_EQ(nlohmann::json::parse(shown), values);
  EXPECT_EQ(shown.find('\x7f'), shown.npos);
  EXPECT_EQ(shown.find("\xc2\x9b"), shown.npos);
  EXPECT_EQ(shown.find("\xe2\x80\xae"), shown.npos);
  EXPECT_NE(shown.find("\xc3\xbc"), shown.npos) << "letters stay";
}

}  // namespace
}  // namespace kelto::host
