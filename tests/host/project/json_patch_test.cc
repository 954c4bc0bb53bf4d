// Projects are laid out by people. A program that changes a value changes nothing else.
#include "host/project/json_patch.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <random>

#include "host/base/error.h"

namespace kelto::host {
namespace {

using nlohmann::ordered_json;

/// `text` after `change`, which also must be what it parses to.
template <typename Change>
std::string After(const std::string& text, Change change) {
  ordered_json wanted = ordered_json::parse(text);
  change(wanted);
  const std::string patched = PatchedJson(text, wanted);
  // Objects without regard to the order of their fields.
  EXPECT_EQ(nlohmann::json::parse(patched), nlohmann::json::parse(wanted.dump())) << patched;
  return patched;
}

constexpr const char* kByHand =
    "{\n"
    "\t\"film\":   { \"rate\": 25.0, \"width\":1920 },\r\n"
    "\t\"image\": \"a \\\"b\\\" [,].jpg\",\n"
    "\t\"views\": [\n"
    "\t\t{\"view\": \"1\", \"hold\": 1e0},\n"
    "\t\t{\"view\": \"2\"}  ,\n"
    "\t\t{\"go\": 3, \"view\": \"3\"}\n"
    "\t]\n"
    "}\n\n";

TEST(JsonPatch, ChangesNothingWhereNothingDiffers) {
  EXPECT_EQ(After(kByHand, [](ordered_json&) {}), kByHand);
}

TEST(JsonPatch, AValueIsReplacedWhereItStands) {
  std::string expected = kByHand;
  expected.replace(expected.find("1920"), 4, "1280");
  EXPECT_EQ(After(kByHand, [](ordered_json& j) { j["film"]["width"] = 1280; }), expected);
}

TEST(JsonPatch, NumbersOfTheSameValueKeepTheirForm) {
  EXPECT_EQ(After(kByHand, [](ordered_json& j) { j["film"]["rate"] = 25; }), kByHand);
}

TEST(JsonPatch, ANewEntryGoesWhereItBelongsInTheStyleOfItsNeighbours) {
  std::string expected = kByHand;
  expected.insert(expected.find("  ,\n"), ",\n\t\t{\"view\": \"2.5\"}");
  EXPECT_EQ(After(kByHand,
                  [](ordered_json& j) {
                    j["views"].insert(j["views"].begin() + 2, ordered_json({{"view", "2.5"}}));
                  }),
            expected);
}

TEST(JsonPatch, AnEntryGoesWithItsComma) {
  std::string expected = kByHand;
  expected.erase(expected.find(",\n\t\t{\"view\": \"2\"}"), 17);
  EXPECT_EQ(After(kByHand, [](ordered_json& j) { j["views"].erase(1); }), expected);
}

TEST(JsonPatch, FirstAndLastEntriesGo) {
  EXPECT_EQ(After("[1, 2, 3]", [](ordered_json& j) { j.erase(0); }), "[2, 3]");
  EXPECT_EQ(After("[1, 2, 3]", [](ordered_json& j) { j.erase(2); }), "[1, 2]");
  EXPECT_EQ(After("[1, 2]", [](ordered_json& j) { j = ordered_json::array(); }), "[]");
  EXPECT_EQ(After("[\n  1,\n  2\n]", [](ordered_json& j) { j.insert(j.begin(), 0); }),
            "[\n  0,\n  1,\n  2\n]");
}

TEST(JsonPatch, AFieldThatGoesMakesRoomForOneThatComes) {
  EXPECT_EQ(After("{\n  \"a\": 1,\n  \"b\": 2\n}\n",
                  [](ordered_json& j) {
                    j.erase("b");
                    j["c"] = {{"x", 1}};
                  }),
            "{\n  \"a\": 1,\n  \"c\": {\"x\": 1}\n}\n");
}

TEST(JsonPatch, ALineThatWouldBecomeTooLongIsTakenApart) {
  const std::string text = After("{\n  \"views\": [{\"view\": \"1\"}]\n}\n", [](ordered_json& j) {
    for (int i = 0; i < 8; ++i) j["views"].push_back(ordered_json({{"view", "1200,400,960,540"}}));
  });
  EXPECT_NE(text.find("\n    {\"view\": \"1\"},\n    {\"view\": \"1200,400,960,540\"},\n"),
            text.npos)
      << text;
}

TEST(JsonPatch, RefusesWhatIsNoJson) { EXPECT_THROW(PatchedJson("{", {}), Error); }

/// A small value of any kind.
ordered_json RandomValue(std::mt19937& random, int depth) {
  switch (random() % (depth > 0 ? 6 : 4)) {
    case 0:
      return random() % 10;
    case 1:
      return "t\"]{," + std::to_string(random() % 10);
    case 2:
      return random() % 2 == 0;
    case 3:
      return (random() % 100) / 8.0;
    case 4: {
      ordered_json array = ordered_json::array();
      for (auto n = random() % 5; n > 0; --n) array.push_back(RandomValue(random, depth - 1));
      return array;
    }
    default: {
      ordered_json object = ordered_json::object();
      for (auto n = random() % 5; n > 0; --n) {
        object[std::string(1, static_cast<char>('a' + random() % 6))] =
            RandomValue(random, depth - 1);
      }
      return object;
    }
  }
}

TEST(JsonPatch, AnyValueBecomesAnyOther) {
  std::mt19937 random(15);
  for (int i = 0; i < 5000; ++i) {
    const ordered_json from = RandomValue(random, 4), to = RandomValue(random, 4);
    const int indent = static_cast<int>(random() % 3) - 1;
    After(from.dump(indent), [&](ordered_json& j) { j = to; });
  }
}

}  // namespace
}  // namespace kelto::host
