// What project files may say, and what is said of those that do not.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>

#include "host/base/error.h"
#include "host/plan/default_plan.h"
#include "host/project/json_text.h"
#include "host/project/project_file.h"
#include "tests/support/peak_memory.h"
#include "tests/support/photo.h"

namespace kelto::host {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

RenderPlan Read(const std::string& text) { return ParseProject(text, "photo.json"); }

RenderPlan ReadParameter(const std::string& name, const std::string& value) {
  return Read(R"({"image": "a.jpg", "film": {"rate": 10, "frames": 11}, "parameters": {")" + name +
              "\": " + value + "}}");
}

std::string Fault(const std::string& text) {
  try {
    Read(text);
  } catch (const Error& error) {
    EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos) << error.what();
    return error.what();
  }
  return "none";
}

std::string FaultOf(const std::string& name, const std::string& value) {
  return Fault(R"({"image": "a.jpg", "parameters": {")" + name + "\": " + value + "}}");
}

TEST(ReadProject, WhatIsNotSaidIsAsUsual) {
  const RenderPlan plan = Read(R"({"image": "a.jpg"})"), usual = DefaultPlan("a.jpg");
  EXPECT_EQ(plan.photo, "a.jpg");
  EXPECT_EQ(plan.settings, usual.settings);
  EXPECT_EQ(plan.frames, usual.frames);
  EXPECT_EQ(plan.format.size, usual.format.size);
  EXPECT_EQ(plan.over + plan.audio, "");
}

TEST(ReadProject, TimesAreFractionsSecondsOrFrames) {
  const RenderPlan plan = ReadParameter(
      "size",
      R"([{"time": 0.25, "value": 1}, {"seconds": 0.5, "value": 2}, {"frame": 6, "value": 3},
                  {"frame": 20, "value": 4}])");
  const auto& keys = plan.FindSetting("size")->keys;
  ASSERT_EQ(keys.size(), 4u);
  EXPECT_EQ(keys[0].time, 0.25);
  EXPECT_EQ(keys[1].time, 0.5);
  EXPECT_EQ(keys[2].time, 0.6);
  EXPECT_EQ(keys[3].time, 2.0);  // of a film that was cut
}

TEST(ReadProject, ListValuesAreTextsOrIndexes) {
  EXPECT_EQ(*ReadParameter("filter", R"({"value": 5})").FindSetting("filter")->value,
            SettingValue(std::string("Filter: Gaussian")));
  EXPECT_EQ(*ReadParameter("filter", R"({"value": "Filter: Cubic"})").FindSetting("filter")->value,
            SettingValue(std::string("Filter: Cubic")));
}

TEST(ReadProject, OneKeyMayBeActive) {
  const auto active = [](const std::string& keys) {
    return ReadParameter("display", keys).FindSetting("display")->activeKey;
  };
  EXPECT_EQ(active(R"([{"time": 0, "value": 0}, {"time": 1, "value": 1}])"), -1);
  EXPECT_EQ(active(R"([{"time": 0, "value": 0}, {"time": 1, "value": 1, "active": true}])"), 1);
  EXPECT_EQ(active(R"([{"time": 0, "value": 0, "active": false}])"), -1);
}

TEST(ReadProject, ColoursAreTheEffectsChannelsOrAsSeen) {
  EXPECT_EQ(*ReadParameter("bgcolor", R"({"value": [0, 0.5, 1]})").FindSetting("bgcolor")->value,
            SettingValue(std::array{0.0, 0.5, 1.0}));
  EXPECT_EQ(*ReadParameter("bgcolor", R"({"value": "#102040"})").FindSetting("bgcolor")->value,
            SettingValue(BackgroundFor({0x10, 0x20, 0x40})));
}

TEST(ReadProject, ALengthInSecondsIsRoundedToFrames) {
  const auto frames = [](const std::string& film) {
    return Read(R"({"image": "a.jpg", "film": {)" + film + "}}").frames;
  };
  EXPECT_EQ(frames(R"("seconds": 2.02)"), 51);
  EXPECT_EQ(frames(R"("rate": 50)"), 250);
  EXPECT_EQ(frames(R"("rate": "30000/1001", "seconds": 1)"), 30);
}

TEST(ReadProject, WholeNumbersMayBeWrittenWithAPoint) {
  const RenderPlan plan = Read(R"({"image": "a", "playMode": 1e0,
      "film": {"width": 64.0, "height": 48.0, "rate": 25.0, "frames": 2.0},
      "parameters": {"filter": {"value": 5.0}, "size": [{"frame": 1.0, "value": 2.0}]}})");
  EXPECT_EQ(plan.frames, 2);
  EXPECT_EQ(plan.playMode, 1);
  EXPECT_EQ(plan.format.size, (FrameSize{64, 48}));
  EXPECT_EQ(plan.format.rate, (FrameRate{25, 1}));
  EXPECT_EQ(plan.FindSetting("filter")->value, SettingValue(std::string("Filter: Gaussian")));
  EXPECT_EQ(plan.FindSetting("size")->keys.at(0).value, SettingValue(2.0));
  for (const char* frames : {"2.5", "0.0", "-1.0", "9007199254740994.0", "1e300", "-1e300"}) {
    EXPECT_THAT(Fault(std::string(R"({"image": "a", "film": {"frames": )") + frames + "}}"),
                HasSubstr("film.frames: "));
  }
}

TEST(ReadProject, ZerosKeepTheirSign) {
  const RenderPlan plan = ReadParameter("position", R"({"value": [-0.0, 0.0]})");
  const auto position = std::get<std::array<double, 2>>(*plan.FindSetting("position")->value);
  EXPECT_TRUE(std::signbit(position[0]));
  EXPECT_FALSE(std::signbit(position[1]));
}

TEST(ReadProject, RatesAreNumbersOrFractions) {
  const auto rate = [](const std::string& text) {
    return Read(R"({"image": "a.jpg", "film": {"rate": )" + text + "}}").format.rate;
  };
  EXPECT_EQ(rate("25"), (FrameRate{25, 1}));
  EXPECT_EQ(rate("12.5"), (FrameRate{25, 2}));
  EXPECT_EQ(rate("29.97"), (FrameRate{30000, 1001}));
  EXPECT_EQ(rate("\"30000/1001\""), (FrameRate{30000, 1001}));
  EXPECT_EQ(rate("\"23.976\""), (FrameRate{24000, 1001}));
}

TEST(ReadProject, TheDisplayAspectSettlesThePixelsShape) {
  const auto pixels = [](const std::string& aspect) {
    return Read(R"({"image": "a", "film": {"width": 720, "height": 576, "displayAspect": )" +
                aspect + "}}")
        .format.sampleAspect;
  };
  EXPECT_EQ(pixels("\"16:9\""), (SampleAspect{64, 45}));
  EXPECT_EQ(pixels("\"4:3\""), (SampleAspect{16, 15}));
  EXPECT_EQ(pixels("\"5:4\""), (SampleAspect{1, 1}));
  EXPECT_EQ(pixels("1.25"), (SampleAspect{1, 1}));
  EXPECT_NEAR(pixels("\"2.39:1\"").Ratio(), 2.39 * 576 / 720, 1e-6);
}

TEST(ReadProject, FieldOrdersAreTopAndBottom) {
  const auto fields = [](const std::string& text) {
    return Read(R"({"image": "a.jpg", "film": {"fields": ")" + text + "\"}}").format.fields;
  };
  EXPECT_EQ(fields("top"), FieldOrder::kTopFirst);
  EXPECT_EQ(fields("bottom"), FieldOrder::kBottomFirst);
  EXPECT_EQ(fields("progressive"), FieldOrder::kProgressive);
}

TEST(ReadProject, ViewsAreOneListWithTheirTimes) {
  const RenderPlan plan = Read(R"({"image": "a.jpg", "views": [
      {"view": "1200,400,960,540", "hold": 2, "go": 3.5, "out": "linear"},
      {"view": "2@0.1,-0.05", "in": "constant", "out": "hold"}, {"view": "1.5", "hold": 1}]})");
  EXPECT_EQ(plan.views,
            (std::vector<TourView>{{PhotoRect{1200, 400, 960, 540}, 2.0, 3.5, "", "Out: Linear"},
                                   {View{2.0, 0.1, -0.05}, 0.0, 0.0, "In: Constant", "Out: Hold"},
                                   {View{1.5}, 1.0}}));
  EXPECT_EQ(plan.motion, MotionLaw::kSteady) << "what is given by views goes steadily";
  EXPECT_EQ(plan.frames, 213) << "2 + 3.5 + 2 + 1 seconds at 25 a second";
  EXPECT_EQ(plan.FindSetting("size"), nullptr) << "no keys stand beside the list";
  EXPECT_EQ(Read(R"({"image": "a", "motion": "linear", "views": [{"view": "2"}]})").motion,
            MotionLaw::kLinear);
}

TEST(ReadProject, AFilmIsAsLongAsItsViewsUnlessItSaysItself) {
  const auto frames = [](const std::string& film, const std::string& times) {
    return Read(R"({"image": "a", "film": {)" + film + R"(}, "views": [{"view": "1")" + times +
                R"(}, {"view": "2"}]})")
        .frames;
  };
  EXPECT_EQ(frames("", R"(, "go": 3)"), 75);
  EXPECT_EQ(frames(R"("rate": 50)", R"(, "go": 3)"), 150);
  EXPECT_EQ(frames(R"("frames": 10)", R"(, "go": 3)"), 10);
  EXPECT_EQ(frames(R"("seconds": 2)", R"(, "go": 3)"), 50);
  EXPECT_EQ(frames("", ""), 125) << "as any film when nothing says how long it is";
}

TEST(ReadProject, AWrongListValueIsToldWithItsFieldAndTheRightOnes) {
  EXPECT_THAT(
      FaultOf("outvelocity", R"([{"time": 0, "value": 0}, {"time": 0.5, "value": 1},
                                         {"time": 1, "value": "Out: Holdd"}])"),
      StartsWith("photo.json: parameters.outvelocity[2].value: \"Out: Holdd\" is not one of "
                 "\"Out: Linear\", \"Out: Ease Out\", \"Out: Constant\", \"Out: Hold\""));
}

TEST(ReadProject, EveryFaultNamesItsField) {
  const struct {
    std::string fault;
    const char *field, *what;
  } faults[] = {
      {Fault("[]"), "the file", "is not an object"},
      {Fault("{}"), "the file", "has none of \"image\", \"pictures\""},
      {Fault(R"({"image": 3})"), "image", "is not a string"},
      {Fault(R"({"image": ""})"), "image", "is empty"},
      {Fault(R"({"image": "a\nb"})"), "image", "control characters"},
      {Fault(R"({"image": "a", "over": 1})"), "over", "is not a string"},
      {Fault(R"({"image": "a", "audio": []})"), "audio", "is not a string"},
      {Fault(R"({"image": "a", "imag": "a"})"), "imag", "there is no such field"},
      {Fault(R"({"image": "a", "playMode": 256})"), "playMode", "is not from 0 to 255"},
      {Fault(R"({"image": "a", "film": 1})"), "film", "is not an object"},
      {Fault(R"({"image": "a", "film": {"width": 1}})"), "film.width", "is not from 2 to 16384"},
      {Fault(R"({"image": "a", "film": {"width": 2.5}})"), "film.width", "is not an integer"},
      {Fault(R"({"image": "a", "film": {"height": "9"}})"), "film.height", "is not an integer"},
      {Fault(R"({"image": "a", "film": {"rate": 0}})"), "film.rate", "is not from 0.1 to 1000"},
      {Fault(R"({"image": "a", "film": {"rate": "x"}})"), "film.rate", "is not of the form"},
      {Fault(R"({"image": "a", "film": {"rate": "25/0"}})"), "film.rate", "a frame rate is"},
      {Fault(R"({"image": "a", "film": {"frames": 0}})"), "film.frames", "is not from 1"},
      {Fault(R"({"image": "a", "film": {"seconds": 0}})"), "film.seconds", "is not from"},
      {Fault(R"({"image": "a", "film": {"seconds": 1e7, "rate": 1000}})"), "film.seconds",
       "frames"},
      {Fault(R"({"image": "a", "film": {"seconds": 1, "frames": 1}})"), "film", "has both"},
      {Fault(R"({"image": "a", "film": {"fields": "both"}})"), "film.fields", "is not one of"},
      {Fault(R"({"image": "a", "film": {"displayAspect": "wide"}})"), "film.displayAspect", "form"},
      {Fault(R"({"image": "a", "film": {"displayAspect": "0:1"}})"), "film.displayAspect",
       "pixels at most 65535 times as long one way as the other"},
      {Fault(R"({"image": "a", "film": {"length": 1}})"), "film.length", "there is no such field"},
      {Fault(R"({"image": "a", "views": []})"), "views", "has 0 entries, not at least 1"},
      {Fault(R"({"image": "a", "views": [{"hold": 1}]})"), "views[0]", "has no \"view\""},
      {Fault(R"({"image": "a", "views": [{"view": "1"}, {"view": 2}]})"), "views[1].view",
       "2 is not a string"},
      {Fault(R"({"image": "a", "views": [{"view": "1"}, {"view": "x"}]})"), "views[1].view",
       "\"x\": a view is ZOOM or ZOOM@X,Y"},
      {Fault(R"({"image": "a", "views": [{"view": "1,2,3"}]})"), "views[0].view",
       "a part of the photo is X,Y,WIDTH,HEIGHT"},
      {Fault(R"({"image": "a", "views": [{"view": "1", "hold": -1}]})"), "views[0].hold",
       "-1 is not from 0 to 86400"},
      {Fault(R"({"image": "a", "views": [{"view": "1", "go": 0}, {"view": "2"}]})"), "views[0].go",
       "0 is not from 0.001 to 86400"},
      {Fault(R"({"image": "a", "views": [{"view": "1"}, {"view": "2", "go": 1}]})"), "views[1].go",
       "there is no view after this one; leave \"go\" out"},
      {Fault(R"({"image": "a", "views": [{"view": "1", "in": "In: Linear"}]})"), "views[0].in",
       "is not one of \"linear\", \"ease\", \"constant\""},
      {Fault(R"({"image": "a", "views": [{"view": "1", "stay": 2}]})"), "views[0].stay",
       "there is no such field; there are"},
      {Fault(R"({"image": "a", "film": {"rate": 1000},
                 "views": [{"view": "1", "hold": 86400}]})"),
       "views", "frames at the most"},
      {Fault(R"({"image": "a", "views": [{"view": "1"}],
                 "parameters": {"outvelocity": {"value": 1}}})"),
       "views", "and so does parameters.outvelocity; leave one of them out"},
      {Fault(R"({"image": "a", "": 1})"), "\"\"", "there is no such field"},
      {FaultOf("levels", R"({"": 2})"), "parameters.levels.\"\"", "there is no such field"},
      {Fault(R"({"image": "a", "film": {"a\nb": 1}})"), "film.a\\nb", "there is no such field"},
      {FaultOf("lens", "{}"), "parameters.lens", "there is no such field; there are"},
      {FaultOf("size", "2"), "parameters.size", "is not an object {...} or an array [...]"},
      {FaultOf("size", R"({"valu": 2})"), "parameters.size.valu", "there is no such field"},
      {FaultOf("size", R"({"value": 21})"), "parameters.size.value", "21 is not from 0.1 to 20"},
      {FaultOf("size", R"({"value": "big"})"), "parameters.size.value", "\"big\" is not a number"},
      {FaultOf("size", R"([1])"), "parameters.size[0]", "is not an object"},
      {FaultOf("size", R"([{"value": 2}])"), "parameters.size[0]", "has none of \"time\""},
      {FaultOf("size", R"([{"time": 0}])"), "parameters.size[0]", "has no \"value\""},
      {FaultOf("size", R"([{"time": 0, "frame": 0, "value": 1}])"), "parameters.size[0]",
       "has more than one of"},
      {FaultOf("size", R"([{"time": "0", "value": 1}])"), "parameters.size[0].time", "a number"},
      {FaultOf("size", R"([{"time": 2000, "value": 1}])"), "parameters.size[0].time", "1000"},
      {FaultOf("size", R"([{"frame": 900000000, "value": 1}])"), "parameters.size[0].frame",
       "is far outside the film"},
      {FaultOf("size", R"([{"time": 1, "value": 1}, {"time": 1, "value": 1}])"),
       "parameters.size[1]", "does not come after"},
      {FaultOf("size", R"([{"time": 0, "value": 1, "ease": 1}])"), "parameters.size[0].ease",
       "there is no such field"},
      {FaultOf("size", R"([{"time": 0, "value": 1, "active": 1}])"), "parameters.size[0].active",
       "is not true or false"},
      {FaultOf("size", R"([{"time": 0, "value": 1, "active": true},
                           {"time": 1, "value": 1, "active": true}])"),
       "parameters.size[1].active", "key [0] is active already"},
      {FaultOf("position", R"({"value": [1]})"), "parameters.position.value",
       "has 1 entries, not 2"},
      {FaultOf("position", R"({"value": [1, 101]})"), "parameters.position.value[1]", "-100"},
      {FaultOf("position", R"({"value": [18446744073709551615, 0]})"),
       "parameters.position.value[0]", "-100"},
      {FaultOf("bgcolor", R"({"value": "red"})"), "parameters.bgcolor.value", "#102040"},
      {FaultOf("bgcolor", R"({"value": [0, 0, 2]})"), "parameters.bgcolor.value[2]", "from 0 to 1"},
      {FaultOf("filter", R"({"value": 8})"), "parameters.filter.value", "8 is not one of"},
      {FaultOf("progressive", R"({"value": 1})"), "parameters.progressive.value", "true or false"},
  };
  for (const auto& [fault, field, what] : faults) {
    EXPECT_THAT(fault, StartsWith(std::string("photo.json: ") + field + ": "));
    EXPECT_THAT(fault, HasSubstr(what));
  }
}

TEST(ReadProject, WhatIsNotJsonIsReportedWithItsPlace) {
  EXPECT_THAT(Fault("{\n  \"image\": a\n}"), HasSubstr("line 2"));
  EXPECT_THAT(Fault(""), StartsWith("photo.json: is not JSON"));
  EXPECT_THAT(Fault("\xff\xfe"), StartsWith("photo.json: is not JSON"));
  EXPECT_THAT(Fault(R"({"image": "a", "playMode": NaN})"), HasSubstr("is not JSON"));
  EXPECT_THAT(Fault(R"({"image": "a", "parameters": {"size": {"value": 1e999}}})"),
              HasSubstr("is not JSON"));
}

TEST(ReadProject, AFieldThatIsThereTwiceIsAFault) {
  EXPECT_THAT(Fault(R"({"image": "a", "image": "b"})"), HasSubstr("the field \"image\" twice"));
}

TEST(ReadProject, LimitsHold) {
  EXPECT_THAT(Fault(std::string(100000, '[')), HasSubstr("within each other"));
  EXPECT_THAT(Fault(R"({"image": ")" + std::string(5000, 'a') + "\"}"), HasSubstr("4096 bytes"));
  EXPECT_THAT(Fault(std::string(kMaxJsonText + 1, ' ')), HasSubstr("16 MiB"));
  std::string keys;
  for (int i = 0; i < 10001; ++i) {
    keys +=
        (i == 0 ? "" : ",") + std::string(R"({"frame": )") + std::to_string(i) + R"(, "value": 1})";
  }
  EXPECT_THAT(FaultOf("size", "[" + keys + "]"), HasSubstr("more than 10000 entries"));
}

/// Many times the same entry, with commas between.
std::string Repeated(const std::string& entry, int count) {
  std::string text = entry;
  for (int i = 1; i < count; ++i) text += "," + entry;
  return text;
}

TEST(ReadProject, MillionsOfValuesAreRefusedBeforeTheyAreHeld) {
  const std::string list = "[" + Repeated("{}", 10000) + "]";
  std::string text = "{";
  for (int i = 0; i < 517; ++i) {
    text += (i == 0 ? "\"" : ",\"") + std::to_string(i) + "\":" + list;
  }
  text += "}";
  const test::PeakMemory peak;
  EXPECT_EQ(Fault(text), "photo.json: has more than 250000 values");
  // Its 15 MiB of text may take 16 times as much in reserve, which is not used.
  EXPECT_LE(peak.MiB(), 100);
}

TEST(ReadProject, FourParametersMayHaveAsManyKeysAsThereMayBe) {
  std::string keys, pairs;
  for (int i = 0; i < 10000; ++i) {
    const std::string start =
        (i == 0 ? "" : ",") + std::string(R"({"frame": )") + std::to_string(i);
    keys += start + R"(, "value": 1})";
    pairs += start + R"(, "value": [0, 0]})";
  }
  const RenderPlan plan =
      Read(R"({"image": "a.jpg", "film": {"frames": 10000}, "parameters": {"position": [)" + pairs +
           R"(], "size": [)" + keys + R"(], "invelocity": [)" + keys + R"(], "outvelocity": [)" +
           keys + "]}}");
  EXPECT_EQ(plan.FindSetting("position")->keys.size(), 10000u);
  EXPECT_EQ(plan.FindSetting("outvelocity")->keys.size(), 10000u);
}

TEST(ReadProject, OfManyFaultsTheFirstIsTold) {
  // One list of results would hold 20,000 of them.
  const test::PeakMemory peak;
  EXPECT_THAT(FaultOf("size", "[" + Repeated(R"({"time": "now", "value": 99})", 10000) + "]"),
              StartsWith("photo.json: parameters.size[0].time: \"now\" is not a number"));
  EXPECT_LE(peak.MiB(), 40);
  EXPECT_THAT(
      Fault(R"({"image": "a", "film": {"width": 1}, "parameters": {"size": {"value": 99}}})"),
      StartsWith("photo.json: film.width: 1 is not from 2 to 16384"));
}

TEST(ReadProject, FilesThatCannotBeReadAreToldByName) {
  const auto fault = [](const std::string& path) -> std::string {
    try {
      ReadProject(path);
    } catch (const Error& error) {
      return error.what();
    }
    return "none";
  };
  test::TempFolder folder;
  EXPECT_EQ(fault(folder / "no.json"), (folder / "no.json") + ": there is no such file");
  std::filesystem::create_directory(folder / "d.json");
  EXPECT_EQ(fault(folder / "d.json"), (folder / "d.json") + ": is a folder, not a project");
  std::ofstream(folder / "e.json") << "{}";
  EXPECT_EQ(fault(folder / "e.json"),
            (folder / "e.json") + ": the file: has none of \"image\", \"pictures\"");
}

TEST(ReadProject, ProjectsAreKnownByTheirEnding) {
  EXPECT_TRUE(IsProjectName("a/photo.json"));
  EXPECT_TRUE(IsProjectName("PHOTO.JSON"));
  EXPECT_FALSE(IsProjectName("photo.jpg"));
  EXPECT_FALSE(IsProjectName("json"));
}

}  // namespace
}  // namespace kelto::host
