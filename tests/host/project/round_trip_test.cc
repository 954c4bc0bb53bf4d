// What is saved is what is read.
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "catalogue/parameters.h"
#include "host/base/error.h"
#include "host/project/project_file.h"
#include "tests/host/project/random_plan.h"
#include "tests/support/file_bytes.h"
#include "tests/support/photo.h"

namespace kelto::host {
namespace {

using test::BytesOf;

namespace fs = std::filesystem;

void ExpectSame(const RenderPlan& a, const RenderPlan& b) {
  // As paths: slashes may lean either way on Windows.
  EXPECT_EQ(fs::path(a.photo), fs::path(b.photo));
  EXPECT_EQ(fs::path(a.over), fs::path(b.over));
  EXPECT_EQ(fs::path(a.audio), fs::path(b.audio));
  EXPECT_EQ(a.format.size, b.format.size);
  EXPECT_EQ(a.format.rate, b.format.rate);
  EXPECT_EQ(a.format.fields, b.format.fields);
  EXPECT_EQ(a.format.sampleAspect, b.format.sampleAspect);
  EXPECT_EQ(a.frames, b.frames);
  EXPECT_EQ(a.playMode, b.playMode);
  EXPECT_EQ(a.rotate, b.rotate);
  EXPECT_EQ(a.transparent, b.transparent);
  EXPECT_EQ(a.linearLight, b.linearLight);
  EXPECT_EQ(a.motion, b.motion);
  EXPECT_EQ(a.beside, b.beside);
  EXPECT_EQ(a.loop, b.loop);
  EXPECT_EQ(a.caption.text, b.caption.text);
  EXPECT_EQ(a.views, b.views);
  for (const catalogue::Parameter& entry : catalogue::kParameters) {
    const std::string parameter = entry.key;
    const Setting *first = a.FindSetting(parameter), *second = b.FindSetting(parameter);
    ASSERT_EQ(first == nullptr, second == nullptr) << parameter;
    // Values and times to the last bit: == of doubles.
    if (first != nullptr) {
      EXPECT_EQ(*first, *second) << parameter;
    }
  }
}

class RoundTrip : public testing::Test {
 protected:
  /// `plan`, its files lying in the folder.
  RenderPlan Here(RenderPlan plan) {
    plan.photo = folder_ / plan.photo;
    if (!plan.over.empty()) plan.over = folder_ / plan.over;
    if (!plan.audio.empty()) plan.audio = folder_ / plan.audio;
    return plan;
  }
  test::TempFolder folder_;
};

TEST_F(RoundTrip, EveryParameterWith200SetsOfKeysSurvivesToTheLastBit) {
  const std::string first = folder_ / "first.json", second = folder_ / "second.json";
  test::RandomPlan random(20261121);
  for (int i = 0; i < 200; ++i) {
    const RenderPlan plan = Here(random.Make());
    WriteProject(first, plan);
    const RenderPlan read = ReadProject(first);
    ExpectSame(plan, read);
    WriteProject(second, read);
    ASSERT_EQ(BytesOf(first), BytesOf(second)) << i;
    if (HasFailure()) FAIL() << BytesOf(first);
  }
}

TEST_F(RoundTrip, WhatThePlanLeavesToTheEffectStaysThere) {
  RenderPlan plan = Here(DefaultPlan("photo.jpg"));
  std::erase_if(plan.settings, [](const Setting& s) { return s.parameter == "filter"; });
  WriteProject(folder_ / "p.json", plan);
  ExpectSame(plan, ReadProject(folder_ / "p.json"));
}

TEST_F(RoundTrip, AListOfViewsIsWrittenAsOneThatPeopleEdit) {
  RenderPlan plan = Here(DefaultPlan("photo.jpg"));
  plan.motion = MotionLaw::kSteady;
  plan.SetTour({{PhotoRect{1200, 400, 960, 540}, 2.0, 3.0}, {View{2.0, 0.1, -0.05}, 1.0}});
  plan.frames = 150;  // as long as they take
  const std::string text = ProjectText(folder_ / "p.json", plan);
  EXPECT_NE(text.find(R"("views": [)"
                      "\n    {\"view\": \"1200,400,960,540\", \"hold\": 2.0, \"go\": 3.0},"
                      "\n    {\"view\": \"2@0.1,-0.05\", \"hold\": 1.0}\n  ]"),
            std::string::npos)
      << text;
  for (const char* field : {"\"frames\"", "\"size\"", "\"position\"", "\"invelocity\""}) {
    EXPECT_EQ(text.find(field), std::string::npos) << field << " would stand beside the list";
  }
  plan.frames = 151;
  EXPECT_NE(ProjectText(folder_ / "p.json", plan).find("\"frames\": 151"), std::string::npos);
}

TEST_F(RoundTrip, FilesBesideAndBelowTheProjectAreNamedRelativeToItOthersInFull) {
  RenderPlan plan = Here(DefaultPlan("sub/photo.jpg"));
  plan.over = (fs::path(folder_ / "").parent_path().parent_path() / "x.mp4").string();
  const std::string text = ProjectText(folder_ / "p.json", plan);
  EXPECT_NE(text.find("\"image\": \"sub/photo.jpg\""), std::string::npos) << text;
  EXPECT_NE(text.find("\"over\": " + nlohmann::json(plan.over).dump()), std::string::npos) << text;
}

TEST_F(RoundTrip, PathsAreRelativeToTheProjectNotToTheCurrentFolder) {
  const RenderPlan plan = ParseProject(R"({"image": "a/b.jpg", "audio": "/c.wav"})", "x/y.json");
  EXPECT_EQ(fs::path(plan.photo), fs::path("x/a/b.jpg"));
  EXPECT_EQ(plan.audio, "/c.wav");
  EXPECT_EQ(ParseProject(R"({"image": "b.jpg"})", "y.json").photo, "b.jpg");
}

TEST_F(RoundTrip, APlanThatNoProjectCanHoldIsRefusedAndNothingWritten) {
  const auto refused = [&](const RenderPlan& plan) {
    EXPECT_THROW(WriteProject(folder_ / "p.json", plan), Error);
    EXPECT_FALSE(fs::exists(folder_ / "p.json"));
  };
  RenderPlan plan = DefaultPlan("photo.jpg");
  plan.Set("size", 50.0);
  refused(plan);
  plan = DefaultPlan("photo.jpg");
  plan.Set("lens", 1.0);
  refused(plan);
#if !defined(_WIN32)  // where names are letters of a code page, and any of them can be UTF-8
  refused(DefaultPlan("photo \xff.jpg"));
#endif
  plan = DefaultPlan("photo.jpg");
  plan.SettingOf("size").keys = {{0.5, 1.0}, {0.5, 2.0}};
  refused(plan);
}

}  // namespace
}  // namespace kelto::host
