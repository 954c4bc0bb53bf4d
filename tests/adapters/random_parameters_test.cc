// A thousand random settings, for the sanitizers.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <limits>
#include <random>

#include "tests/adapters/built_plugins.h"
#include "tests/adapters/run.h"

namespace kelto {
namespace {

using namespace frei0r;
using test::Instance;

constexpr int kSets = 1000;

class RandomHost {
 public:
  explicit RandomHost(const test::TempFolder& folder) {
    test::WriteTestPhoto(folder / "wide.bmp", 300, 20);
    test::WriteTestPhoto(folder / "tall.bmp", 37, 211);
    test::WriteTestPhoto(folder / "dot.bmp", 1, 1);
    std::ofstream(folder / "text.jpg") << "not a picture";
    std::ofstream(folder / "film.json") << "{}";
    for (const char* name :
         {"wide.bmp", "tall.bmp", "dot.bmp", "text.jpg", "film.json", "none.png"}) {
      texts_.push_back(folder / name);
      photos_.push_back(folder / name);
    }
    photos_.push_back(folder / "");
  }

  /// One instance with some parameters set, three frames and some changes in between.
  void Run() {
    const test::Plugin& plugin = Chance(2) ? test::FilterPlugin() : test::SourcePlugin();
    const uint32_t width = Below(70), height = Below(70);
    SCOPED_TRACE(std::to_string(width) + "x" + std::to_string(height));
    Instance instance(plugin, width, height);
    if (!Chance(4)) instance.Set(kImage, Any(photos_));
    for (int frame = 0; frame < 3; ++frame) {
      for (uint32_t i = Below(8); i > 0; --i) SetAny(instance);
      std::fill(instance.output.begin(), instance.output.end(), Instance::kUntouched);
      instance.Render(Number());
      for (const uint32_t pixel : instance.output) {
        ASSERT_EQ(pixel >> 24, 255u) << "a pixel that nobody wrote, with " << Settings(instance);
      }
    }
  }

 private:
  void SetAny(Instance& instance) {
    const auto index = static_cast<int>(Below(kParameterCount));
    if (Parameters(Role::kFilter)[static_cast<size_t>(index)].isText) {
      instance.Set(index, Chance(3) ? Garbage() : Any(texts_));
    } else {
      instance.Set(index, Number());
    }
  }
  static std::string Settings(Instance& instance) {
    std::string text;
    for (int i = 0; i < kParameterCount; ++i) {
      const Parameter& parameter = Parameters(Role::kFilter)[static_cast<size_t>(i)];
      text += std::string(" ") + parameter.name + "=" +
              (parameter.isText ? instance.Text(i) : std::to_string(instance.Number(i)));
    }
    return text;
  }
  double Number() {
    const double numbers[] = {0.0,
                              1.0,
                              -1.0,
                              0.5,
                              20.0,
                              1e-300,
                              -3.68935e20,
                              1e308,
                              0.04,
                              40.0,
                              25.0,
                              std::numeric_limits<double>::quiet_NaN(),
                              std::numeric_limits<double>::infinity()};
    if (Chance(2)) return numbers[Below(std::size(numbers))];
    return std::uniform_real_distribution<>(-2.0, 22.0)(random_);
  }
  std::string Garbage() {
    std::string text(Below(40), ' ');
    for (char& c : text) c = static_cast<char>(1 + Below(255));
    return text;
  }
  const std::string& Any(const std::vector<std::string>& from) { return from[Below(from.size())]; }
  uint32_t Below(size_t bound) { return static_cast<uint32_t>(random_() % bound); }
  bool Chance(uint32_t oneIn) { return Below(oneIn) == 0; }

  std::mt19937 random_{20240607};
  std::vector<std::string> photos_,
      texts_{"1",       "2@0.2,-0.1", "0.1@100,-100", "20@0,0",   "0.3@-0.4,0", "5",
             "1000",    "10000000",   "realtime",     "triangle", "quadratic",  "cubic",
             "catmull", "gaussian",   "hiqual",       "ultra",    "video",      "#a0b0c0",
             "linear",  "ease",       "constant",     "hold",     "spline",     "rgb",
             "601",     "target",     "source",       "25",       "29.97",      "",
             "nonsense"};
};

TEST(FreiRandom, AThousandRandomSettingsGiveAFrameEachTime) {
  test::TempFolder folder;
  RandomHost host(folder);
  testing::internal::CaptureStderr();
  for (int i = 0; i < kSets && !testing::Test::HasFatalFailure(); ++i) {
    SCOPED_TRACE("set " + std::to_string(i));
    host.Run();
  }
  const std::string said = testing::internal::GetCapturedStderr();
  EXPECT_EQ(said.find("could not be rendered"), std::string::npos);
}

}  // namespace
}  // namespace kelto
