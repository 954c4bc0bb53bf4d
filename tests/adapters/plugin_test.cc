// What every host relies on, asked of the loaded plug-ins themselves.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <limits>
#include <string>

#include "tests/adapters/built_plugins.h"
#include "tests/adapters/run.h"

namespace kelto {
namespace {

using namespace frei0r;
using test::FilterPlugin;
using test::Instance;
using test::SourcePlugin;

const double kGarbageTimes[] = {-3.68935e20,
                                std::numeric_limits<double>::quiet_NaN(),
                                std::numeric_limits<double>::infinity(),
                                -std::numeric_limits<double>::infinity(),
                                1.8446744073709553e10,
                                std::numeric_limits<double>::max(),
                                -1.0};

/// What is written to the standard error while `work` runs.
template <typename Work>
std::string Said(Work work) {
  testing::internal::CaptureStderr();
  work();
  return testing::internal::GetCapturedStderr();
}

bool IsOneLine(const std::string& text) {
  return text.starts_with("kelto_pan_zoom: ") && std::count(text.begin(), text.end(), '\n') == 1;
}

class FreiPlugin : public testing::Test {
 protected:
  FreiPlugin() { test::WriteTestPhoto(photo_, 300, 200); }
  test::TempFolder folder_;
  std::string photo_ = folder_ / "photo.bmp";
};

TEST_F(FreiPlugin, InitAnswersOneSinceOneHostTakesZeroForFailure) {
  EXPECT_EQ(FilterPlugin().init(), 1);
  EXPECT_EQ(SourcePlugin().init(), 1);
}

TEST_F(FreiPlugin, NameEqualsTheFileName) {
  PluginInfo info{};
  FilterPlugin().getInfo(&info);
  EXPECT_STREQ(info.name, "kelto_pan_zoom");
  EXPECT_EQ(info.pluginType, kTypeFilter);
  SourcePlugin().getInfo(&info);
  EXPECT_STREQ(info.name, "kelto_pan_zoom_src");
  EXPECT_EQ(info.pluginType, kTypeSource);
}

TEST_F(FreiPlugin, NoParameterIsAPositionOrBearsANameThatHostsUseThemselves) {
  PluginInfo info{};
  FilterPlugin().getInfo(&info);
  ASSERT_EQ(info.parameterCount, kParameterCount);
  for (int i = 0; i < info.parameterCount; ++i) {
    ParameterInfo parameter{};
    FilterPlugin().getParameterInfo(&parameter, i);
    EXPECT_TRUE(parameter.type == kValueDouble || parameter.type == kValueString) << i;
    for (const char* taken : {"in", "out", "length", "resource", "name", "parent"}) {
      EXPECT_STRNE(parameter.name, taken);
    }
  }
}

TEST_F(FreiPlugin, DefaultsCanBeReadBeforeAnythingIsSet) {
  Instance filter(FilterPlugin(), 64, 48), source(SourcePlugin(), 64, 48);
  EXPECT_EQ(filter.Text(kImage), "");
  EXPECT_EQ(filter.Text(kBackground), "video");
  EXPECT_EQ(source.Text(kBackground), "#000000");
  EXPECT_EQ(filter.Text(kFilter), "hiqual");
  EXPECT_EQ(filter.Number(kZoom), 1.0);
  EXPECT_EQ(filter.Number(kQuality), 1.0);
}

TEST_F(FreiPlugin, ValuesSetAreReadBack) {
  Instance instance(FilterPlugin(), 64, 48);
  instance.Set(kTo, "2@0.5,0");
  instance.Set(kZoom, 3.5);
  EXPECT_EQ(instance.Text(kTo), "2@0.5,0");
  EXPECT_EQ(instance.Number(kZoom), 3.5);
}

TEST_F(FreiPlugin, MakingAnInstanceLoadsNoModuleAndSaysNothing) {
  const std::string said = Said([&] {
    Instance instance(FilterPlugin(), 640, 480);
    instance.Set(kImage, folder_ / "nowhere.jpg");
    instance.Set(kFilter, "sharpest");
  });
  EXPECT_EQ(said, "");
  std::ifstream maps("/proc/self/maps");
  const std::string loaded((std::istreambuf_iterator<char>(maps)), {});
  EXPECT_EQ(loaded.find("KeltoPanAndZoom.hfx"), std::string::npos);
}

TEST_F(FreiPlugin, VideoBesideThePhotoKeepsItsTransparency) {
  constexpr uint32_t kHalf = 0x80604020;
  Instance instance(FilterPlugin(), 101, 67);
  instance.Set(kImage, photo_);
  instance.Set(kZoom, 0.6);
  std::fill(instance.input.begin(), instance.input.end(), kHalf);
  const std::vector<uint32_t> frame = instance.Render();
  EXPECT_EQ(frame.front(), kHalf);
  EXPECT_EQ(frame.back(), kHalf);
  EXPECT_EQ(frame[33 * 101 + 50] >> 24, 255u) << "the photo is opaque";
}

TEST_F(FreiPlugin, ABackgroundOfNothingIsTransparent) {
  const std::string white = folder_ / "white.bmp";
  test::WritePhoto(white, 90, 60, [](int32_t, int32_t) { return test::Rgb{255, 255, 255}; });
  Instance filter(FilterPlugin(), 101, 67), source(SourcePlugin(), 101, 67);
  for (Instance* instance : {&filter, &source}) {
    instance->Set(kImage, white);
    instance->Set(kZoom, 0.6);
    instance->Set(kBackground, "none");
  }
  const std::vector<uint32_t> frame = filter.Render();
  EXPECT_EQ(frame.front(), 0u);
  EXPECT_EQ(frame[33 * 101 + 50], 0xffffffff);
  int parts = 0;
  for (const uint32_t pixel : frame) {
    const uint32_t alpha = pixel >> 24;
    if (alpha < 16) continue;
    parts += alpha < 255;
    ASSERT_GE(pixel & 255, 225u) << "no dark fringe, at alpha " << alpha;
  }
  EXPECT_GT(parts, 50) << "edges between pixels";
  SourcePlugin().update(source.handle(), 0.0, nullptr, source.output.data());
  EXPECT_EQ(source.output, frame);
}

TEST_F(FreiPlugin, SourceDoesWithoutAnInput) {
  Instance instance(SourcePlugin(), 97, 41);
  instance.Set(kImage, photo_);
  SourcePlugin().update(instance.handle(), 0.0, nullptr, instance.output.data());
  EXPECT_FALSE(instance.IsAll(Instance::kUntouched));
  EXPECT_FALSE(instance.IsAll(0xff000000));
}

TEST_F(FreiPlugin, InputAndOutputMayBeTheSameFrame) {
  Instance apart(FilterPlugin(), 97, 41), inPlace(FilterPlugin(), 97, 41);
  for (Instance* instance : {&apart, &inPlace}) {
    instance->Set(kImage, photo_);
    instance->Set(kZoom, 0.7);
  }
  inPlace.output = inPlace.input;
  FilterPlugin().update(inPlace.handle(), 0.0, inPlace.output.data(), inPlace.output.data());
  EXPECT_EQ(inPlace.output, apart.Render());
}

TEST_F(FreiPlugin, TheHostsVideoIsNotWrittenTo) {
  Instance instance(FilterPlugin(), 97, 41);
  instance.Set(kImage, photo_);
  instance.Set(kZoom, 0.5);
  const std::vector<uint32_t> video = instance.input;
  instance.Render();
  EXPECT_EQ(instance.input, video);
}

TEST_F(FreiPlugin, GarbageTimesAreCountedInstead) {
  for (const double garbage : kGarbageTimes) {
    Instance timed(FilterPlugin(), 64, 48), lost(FilterPlugin(), 64, 48);
    for (Instance* instance : {&timed, &lost}) {
      instance->Set(kImage, photo_);
      instance->Set(kFrom, "1");
      instance->Set(kTo, "3@0.2,0.1");
      instance->Set(kFrames, "5");
    }
    for (int frame = 0; frame < 7; ++frame) {
      EXPECT_EQ(lost.Render(garbage), timed.Render(frame / 25.0)) << garbage << ", frame " << frame;
    }
  }
}

TEST_F(FreiPlugin, AMissingPhotographGivesTheInputAndOneLine) {
  Instance instance(FilterPlugin(), 64, 48);
  instance.Set(kImage, folder_ / "nowhere.jpg");
  EXPECT_TRUE(IsOneLine(Said([&] {
    for (int i = 0; i < 5; ++i) instance.Render(i / 25.0);
  })));
  EXPECT_TRUE(instance.IsAll(Instance::kGrey));
}

TEST_F(FreiPlugin, APhotographThatComesLaterIsShownFromThenOn) {
  Instance instance(FilterPlugin(), 64, 48);
  const std::string late = folder_ / "late.bmp";
  instance.Set(kImage, late);
  Said([&] {
    for (int i = 0; i < 3; ++i) instance.Render(i / 25.0);
  });
  EXPECT_TRUE(instance.IsAll(Instance::kGrey));
  test::WriteTestPhoto(late, 90, 60);
  // It is looked for ever more seldom: the frames since the first look double between two.
  for (int i = 3; i < 7; ++i) instance.Render(i / 25.0);
  EXPECT_FALSE(instance.IsAll(Instance::kGrey));
}

TEST_F(FreiPlugin, AMissingPhotographGivesTheBackgroundWhereThatIsAColour) {
  Instance instance(FilterPlugin(), 64, 48);
  instance.Set(kImage, folder_ / "nowhere.jpg");
  instance.Set(kBackground, "#102030");
  Said([&] { instance.Render(); });
  EXPECT_TRUE(instance.IsAll(0xff102030));
}

TEST_F(FreiPlugin, APhotographThatCannotBeDecodedGivesOneLineThatSaysWhy) {
  std::ofstream(folder_ / "text.jpg") << "not a picture";
  std::filesystem::copy_file(photo_, folder_ / "cut.bmp");
  std::filesystem::resize_file(folder_ / "cut.bmp", 40);
  for (const char* name : {"text.jpg", "cut.bmp"}) {
    Instance instance(FilterPlugin(), 64, 48);
    instance.Set(kImage, folder_ / name);
    const std::string said = Said([&] {
      instance.Render();
      instance.Render();
    });
    EXPECT_TRUE(IsOneLine(said)) << said;
    EXPECT_NE(said.find(name), std::string::npos) << said;
    EXPECT_TRUE(instance.IsAll(Instance::kGrey)) << name;
  }
}

TEST_F(FreiPlugin, AnUnreadableProjectGivesTheInputAndOneLineThatNamesTheFault) {
  std::ofstream(folder_ / "film.json") << "{";
  Instance instance(FilterPlugin(), 64, 48);
  instance.Set(kImage, folder_ / "film.json");
  const std::string said = Said([&] {
    instance.Render();
    instance.Render();
  });
  EXPECT_TRUE(IsOneLine(said)) << said;
  EXPECT_NE(said.find("film.json: is not JSON"), std::string::npos) << said;
  EXPECT_TRUE(instance.IsAll(Instance::kGrey));
}

TEST_F(FreiPlugin, NoPhotographAtAllGivesTheInputAndOneLine) {
  Instance instance(FilterPlugin(), 64, 48);
  EXPECT_TRUE(IsOneLine(Said([&] {
    instance.Render();
    instance.Render();
  })));
  EXPECT_TRUE(instance.IsAll(Instance::kGrey));
}

TEST_F(FreiPlugin, BadValuesKeepTheDefaultAndGiveOneLineEach) {
  const std::vector<std::pair<int, std::string>> bad = {
      {kFrom, "nonsense"},  {kTo, "99"},        {kFrames, "-3"},   {kFilter, "sharpest"},
      {kBackground, "#12"}, {kLeave, "slow"},   {kArrive, "hold"}, {kPath, "curly"},
      {kLevels, "pc"},      {kDisplay, "both"}, {kFps, "0"}};
  Instance plain(FilterPlugin(), 64, 48);
  plain.Set(kImage, photo_);
  for (const auto& [index, text] : bad) {
    Instance instance(FilterPlugin(), 64, 48);
    instance.Set(kImage, photo_);
    instance.Set(index, text);
    const std::string said = Said([&] {
      instance.Render();
      instance.Render();
    });
    EXPECT_TRUE(IsOneLine(said)) << said;
    EXPECT_EQ(instance.output, plain.Render()) << text;
  }
}

TEST_F(FreiPlugin, NumbersOutOfRangeAreHeldAndThoseThatAreNoneIgnored) {
  Instance instance(FilterPlugin(), 64, 48);
  const std::string said = Said([&] {
    instance.Set(kZoom, 50.0);
    EXPECT_EQ(instance.Number(kZoom), 20.0);
    instance.Set(kZoom, 60.0);
    instance.Set(kZoom, std::numeric_limits<double>::quiet_NaN());
    instance.Set(kZoom, std::numeric_limits<double>::infinity());
    EXPECT_EQ(instance.Number(kZoom), 20.0);
    instance.Set(kZoom, 0.0);
    EXPECT_EQ(instance.Number(kZoom), 1.0);
  });
  EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 2) << said;
}

TEST_F(FreiPlugin, PlacesBeyondTheTableAndNullsDoNothing) {
  Instance instance(FilterPlugin(), 64, 48);
  double number = 1.0;
  char* none = nullptr;
  for (const int index : {-1, int{kParameterCount}, 1 << 30}) {
    FilterPlugin().set(instance.handle(), &number, index);
    FilterPlugin().get(instance.handle(), &number, index);
    ParameterInfo info{};
    FilterPlugin().getParameterInfo(&info, index);
  }
  FilterPlugin().set(instance.handle(), &none, kImage);
  FilterPlugin().set(instance.handle(), nullptr, kImage);
  FilterPlugin().set(nullptr, &number, kZoom);
  FilterPlugin().update(nullptr, 0.0, nullptr, nullptr);
  FilterPlugin().update(instance.handle(), 0.0, nullptr, nullptr);
  FilterPlugin().destruct(nullptr);
  EXPECT_EQ(instance.Text(kImage), "");
  EXPECT_EQ(number, 1.0);
}

TEST_F(FreiPlugin, ALineOnTheConsoleStaysOneLineWhateverTheFileIsCalled) {
  Instance instance(FilterPlugin(), 64, 48);
  instance.Set(kImage, folder_ / "two\nlines\x1b[2J\xc2\x9b.jpg");
  const std::string said = Said([&] { instance.Render(); });
  EXPECT_TRUE(IsOneLine(said)) << said;
  EXPECT_NE(said.find(R"(two\nlines\x1b[2J\u009b.jpg)"), said.npos) << said;
}

TEST_F(FreiPlugin, SmallestFramesAreRendered) {
  for (const uint32_t side : {0u, 1u, 2u, 3u}) {
    Instance instance(FilterPlugin(), side, side);
    instance.Set(kImage, photo_);
    instance.Render();
    EXPECT_EQ(instance.IsAll(Instance::kUntouched), side == 0) << side;
  }
}

}  // namespace
}  // namespace kelto
