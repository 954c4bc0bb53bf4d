// Projects of slideshows: what they share, what each picture says, and what is refused.
#include "host/project/show_project.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "catalogue/parameters.h"
#include "host/base/error.h"
#include "host/moves/presets.h"
#include "host/project/project_file.h"
#include "host/project/schema.h"

namespace kelto::host {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

ShowProject ReadAsShow(const std::string& text) { return ParseShow(text, "folder/show.json"); }

std::string FaultOfShow(const std::string& text) {
  try {
    ReadAsShow(text);
  } catch (const Error& error) {
    return error.what();
  }
  return "no fault";
}

/// The path with the separators that all systems understand.
std::string Generic(const std::string& path) {
  return std::filesystem::path(path).generic_string();
}

TEST(ShowProject, SharesFilmAndParametersAndLetsAPictureDiffer) {
  const ShowProject show = ReadAsShow(R"({
    "audio": "music.mp3", "film": {"width": 320, "height": 180, "rate": 10},
    "each": 2, "parameters": {"filter": {"value": "Filter: Triangle"}},
    "pictures": [{"image": "a.jpg"},
                 {"image": "b.jpg", "each": 3.5, "fade": 0.5,
                  "parameters": {"filter": {"value": "Filter: Cubic"}}}]})");
  ASSERT_EQ(show.pictures.size(), 2u);
  EXPECT_EQ(Generic(show.audio), "folder/music.mp3");
  const RenderPlan &a = show.pictures[0].plan, &b = show.pictures[1].plan;
  EXPECT_EQ(Generic(a.photo), "folder/a.jpg");
  EXPECT_EQ(a.audio, "") << "the sound is the show's";
  EXPECT_EQ(a.format.size, (FrameSize{320, 180}));
  EXPECT_EQ(b.format.size, (FrameSize{320, 180}));
  EXPECT_EQ(a.frames, 20);
  EXPECT_EQ(b.frames, 35);
  EXPECT_EQ(*HeldValue(a.FindSetting("filter")), SettingValue(std::string("Filter: Triangle")));
  EXPECT_EQ(*HeldValue(b.FindSetting("filter")), SettingValue(std::string("Filter: Cubic")));
  EXPECT_FALSE(show.pictures[0].fade.has_value());
  EXPECT_EQ(show.pictures[1].fade, 0.5);
}

TEST(ShowProject, APicturesViewsSayHowLongItIsSeenWhereNothingElseDoes) {
  const ShowProject show = ReadAsShow(R"({"pictures": [
    {"image": "a", "views": [{"view": "1", "hold": 1, "go": 3}, {"view": "2"}]},
    {"image": "b", "each": 8, "views": [{"view": "1", "hold": 1, "go": 3}, {"view": "2"}]},
    {"image": "c", "views": [{"view": "1"}, {"view": "2"}]}]})");
  EXPECT_EQ(show.pictures[0].each, 4.0);
  EXPECT_EQ(show.pictures[0].plan.frames, 100);
  EXPECT_EQ(show.pictures[1].each, 8.0);
  EXPECT_EQ(show.pictures[1].plan.frames, 200);
  EXPECT_FALSE(show.pictures[2].each.has_value());
  EXPECT_TRUE(show.pictures[2].hasViews);
}

TEST(ShowProject, AMoveIsTheShowsUnlessAPictureSaysWhereItLooks) {
  const ShowProject show = ReadAsShow(R"({"move": "mixed", "amount": 1.5, "pictures": [
    {"image": "a"}, {"image": "b", "move": "left", "fit": "whole"},
    {"image": "c", "views": [{"view": "2"}]},
    {"image": "d", "parameters": {"size": {"value": 2}}}]})");
  EXPECT_EQ(show.pictures[0].move, "mixed");
  EXPECT_EQ(show.pictures[0].amount, "1.5");
  EXPECT_EQ(show.pictures[1].move, "left");
  EXPECT_EQ(show.pictures[1].fit, "whole");
  for (const size_t own : {2u, 3u}) {
    EXPECT_TRUE(show.pictures[own].hasViews) << own;
    EXPECT_EQ(show.pictures[own].move, "") << own;
  }
}

TEST(ShowProject, KnowsEveryMoveByName) {
  std::vector<std::string> expected = MoveWords();
  expected.insert(expected.end(), {"auto", "mixed"});
  const auto schema = nlohmann::json::parse(ProjectSchemaText());
  EXPECT_EQ(schema["definitions"]["move"]["enum"].get<std::vector<std::string>>(), expected);
}

TEST(ShowProject, ASavedShowIsReadTheSame) {
  const ShowProject show = ReadAsShow(R"({
    "audio": "music.mp3", "film": {"width": 320, "height": 180, "rate": "30000/1001"},
    "motion": "fly", "each": 2.25, "fade": 0.5,
    "parameters": {"filter": {"value": "Filter: Triangle"}, "path": {}},
    "pictures": [{"image": "a.jpg"},
                 {"image": "b.jpg", "move": "left", "amount": 1.3, "playMode": 1},
                 {"image": "../c.jpg", "each": 3.5, "fade": 0, "motion": "linear",
                  "views": [{"view": "1", "go": 1}, {"view": "10,20,300,200", "in": "ease"}],
                  "parameters": {"filter": {"value": "Filter: Cubic"}}},
                 {"image": "d.jpg", "parameters": {"size": [{"time": 0, "value": 1},
                                                            {"time": 1, "value": 2}]}}]})");
  const std::string text = ShowText("folder/show.json", show);
  const ShowProject again = ReadAsShow(text);
  ASSERT_EQ(again.pictures.size(), show.pictures.size());
  EXPECT_EQ(again.audio, show.audio);
  for (size_t i = 0; i < show.pictures.size(); ++i) {
    SCOPED_TRACE(i);
    const ShowPicture &is = again.pictures[i], &was = show.pictures[i];
    EXPECT_EQ(is.plan.format.rate, was.plan.format.rate);
    EXPECT_EQ(is.plan.frames, was.plan.frames);
    EXPECT_EQ(is.plan.views, was.plan.views);
    EXPECT_EQ(is.plan.motion, was.plan.motion);
    EXPECT_EQ(is.plan.playMode, was.plan.playMode);
    EXPECT_EQ(is.hasViews, was.hasViews);
    EXPECT_EQ(is.move, was.move);
    EXPECT_EQ(is.amount, was.amount);
    EXPECT_EQ(is.each, was.each);
    EXPECT_EQ(is.fade, was.fade);
    for (const Setting& setting : was.plan.settings) {
      const Setting* found = is.plan.FindSetting(setting.parameter);
      ASSERT_NE(found, nullptr) << setting.parameter;
      EXPECT_EQ(*found, setting) << setting.parameter;
    }
    EXPECT_EQ(is.plan.settings.size(), was.plan.settings.size());
  }
  EXPECT_EQ(ShowText("folder/show.json", again), text);
}

TEST(ShowProject, SaysOnceWhatAllPicturesHaveInCommon) {
  const ShowProject show = ReadAsShow(R"({"each": 2, "pictures": [
    {"image": "a", "views": [{"view": "1"}]}, {"image": "b", "views": [{"view": "2"}]}]})");
  const auto written = nlohmann::json::parse(ShowText("folder/show.json", show));
  EXPECT_EQ(written["each"], 2.0);
  EXPECT_EQ(written["motion"], "steady");
  EXPECT_TRUE(written["parameters"].contains("filter"));
  EXPECT_EQ(written["pictures"][0],
            nlohmann::json::parse(R"({"image": "a", "views": [{"view": "1"}]})"));
}

TEST(ShowProject, TransparencyAndLinearLightAreTheShowsUnlessAPictureSaysOtherwise) {
  const ShowProject show = ReadAsShow(R"({"transparent": true, "linearLight": true, "pictures": [
    {"image": "a"}, {"image": "b", "linearLight": false}, {"image": "c", "transparent": false}]})");
  const ShowProject again = ReadAsShow(ShowText("folder/show.json", show));
  for (const ShowProject& each : {show, again}) {
    EXPECT_TRUE(each.pictures[0].plan.transparent && each.pictures[0].plan.linearLight);
    EXPECT_TRUE(each.pictures[1].plan.transparent && !each.pictures[1].plan.linearLight);
    EXPECT_TRUE(!each.pictures[2].plan.transparent && each.pictures[2].plan.linearLight);
  }
  const ShowProject all = ReadAsShow(R"({"transparent": true, "pictures": [
    {"image": "a"}, {"image": "b"}]})");
  const auto written = nlohmann::json::parse(ShowText("folder/show.json", all));
  EXPECT_EQ(written["transparent"], true);
  EXPECT_FALSE(written["pictures"][0].contains("transparent"));
  EXPECT_FALSE(written.contains("linearLight"));
}

TEST(ShowProject, NamesTheFieldThatIsWrong) {
  const auto inPicture = [](const std::string& fields) {
    return FaultOfShow(R"({"pictures": [{"image": "a"}, {"image": "b", )" + fields + "}]}");
  };
  const struct {
    std::string fault, field, reason;
  } cases[] = {
      {FaultOfShow("{}"), "the file", "has none of"},
      {FaultOfShow(R"({"image": "a"})"), "image", "one picture"},
      {FaultOfShow(R"({"image": "a", "pictures": [{"image": "a"}]})"), "the file", "more than one"},
      {FaultOfShow(R"({"pictures": []})"), "pictures", "at least 1"},
      {FaultOfShow(R"({"pictures": [{}]})"), "pictures[0]", "has no \"image\""},
      {FaultOfShow(R"({"pictures": [{"image": "a"}], "views": [{"view": "1"}]})"), "views", "none"},
      {FaultOfShow(R"({"pictures": [{"image": "a"}], "transparent": 1})"), "transparent", ""},
      {FaultOfShow(R"({"pictures": [{"image": "a"}], "film": {"seconds": 3}})"), "film.seconds",
       "\"each\""},
      {FaultOfShow(R"({"pictures": [{"image": "a"}], "film": {"rate": "0/1"}})"), "film.rate", ""},
      {FaultOfShow(R"({"pictures": [{"image": "a"}], "parameters": {"filter": []}})"),
       "parameters.filter", "no keys"},
      {FaultOfShow(R"({"pictures": [{"image": "a"}], "parameters": {"size": {"value": 2}}})"),
       "parameters.size", "say it of a picture"},
      {inPicture(R"("pictures": [])"), "pictures[1].pictures", "there is no such field"},
      {inPicture(R"("move": "sideways")"), "pictures[1].move", "is not one of"},
      {inPicture(R"("move": "in", "views": [{"view": "1"}])"), "pictures[1]", "has both"},
      {inPicture(R"("move": "in", "parameters": {"size": {"value": 1}})"), "pictures[1].move",
       "parameters.size"},
      {inPicture(R"("views": [{"view": "25"}])"), "pictures[1].views[0].view", "0.1 to 20"},
      {inPicture(R"("fade": -1)"), "pictures[1].fade", "is not from 0"},
  };
  for (const auto& [fault, field, reason] : cases) {
    EXPECT_THAT(fault, StartsWith("folder/show.json: " + field + ": "));
    EXPECT_THAT(fault, HasSubstr(reason));
  }
}

TEST(ShowProject, IsNoProjectOfOnePictureNorTheOtherWayRound) {
  const std::string show = R"({"pictures": [{"image": "a"}]})";
  EXPECT_TRUE(IsShowText(show, "show.json"));
  EXPECT_FALSE(IsShowText(R"({"image": "a"})", "film.json"));
  try {
    ParseProject(show, "show.json");
    FAIL() << "read as a film of one picture";
  } catch (const Error& error) {
    EXPECT_THAT(error.what(), StartsWith("show.json: pictures: this is a slideshow"));
  }
  EXPECT_THROW(ParseProject(R"({"image": "a", "each": 3})", "film.json"), Error);
}

}  // namespace
}  // namespace kelto::host
