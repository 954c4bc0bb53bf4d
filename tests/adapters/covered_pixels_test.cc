// Video beside the photo: the plug-in returns it to the bit.
#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <random>
#include <string>

#include "adapters/frei0r/covered_pixels.h"
#include "tests/adapters/built_plugins.h"
#include "tests/adapters/run.h"

namespace kelto {
namespace {

using namespace frei0r;
using test::FilterPlugin;
using test::Instance;

constexpr uint32_t kColumns = 161, kRows = 90;
constexpr uint32_t kBlack = 0xff000000, kWhite = 0xffffffff;

struct Case {
  std::string view, filter;
};

class CoveredPixels : public testing::Test {
 protected:
  CoveredPixels() {
    // Greys: without chroma, a frame over a grey shows which pixels the photo touches.
    test::WritePhoto(photo_, 300, 200, [](int32_t x, int32_t y) {
      const auto grey = static_cast<uint8_t>(60 + (7 * x + 5 * y) % 130);
      return test::Rgb{grey, grey, grey};
    });
    std::mt19937 random(20261122);
    for (uint32_t& pixel : video_) pixel = static_cast<uint32_t>(random());  // with any alpha
  }

  std::vector<uint32_t> Render(const std::string& photo, const Case& given,
                               const std::string& background, bool inPlace = false) {
    Instance instance(FilterPlugin(), kColumns, kRows);
    instance.Set(kImage, photo);
    if (!given.view.empty()) instance.Set(kFrom, given.view);
    instance.Set(kFilter, given.filter);
    if (!background.empty()) instance.Set(kBackground, background);
    instance.input = video_;
    if (!inPlace) return instance.Render();
    FilterPlugin().update(instance.handle(), 0.0, instance.input.data(), instance.input.data());
    return instance.input;
  }

  /// Expects the video's own pixels where the photo touches none, and the photo's where it covers
  /// them; returns how many of the former there are.
  int ExpectVideoBeside(const std::string& photo, const Case& given) {
    const auto black = Render(photo, given, "#000000"), white = Render(photo, given, "#ffffff");
    const auto over = Render(photo, given, "");
    EXPECT_EQ(over, Render(photo, given, "", true)) << "in place";
    const auto covered = [&](size_t i) { return i < over.size() && black[i] == white[i]; };
    int beside = 0;
    for (size_t i = 0; i < over.size(); ++i) {
      const bool untouched = black[i] == kBlack && white[i] == kWhite;
      if (untouched) {
        EXPECT_EQ(over[i], video_[i])
            << given.view << " column " << i % kColumns << " row " << i / kColumns;
      } else if (covered(i) && covered(i - 1) && covered(i + 1)) {
        // Not at the edges: a pair of columns shares its chroma.
        EXPECT_EQ(over[i], black[i]);
      }
      beside += untouched ? 1 : 0;
      if (HasFailure()) return beside;
    }
    return beside;
  }

  test::TempFolder folder_;
  std::string photo_ = folder_ / "photo.png";
  std::vector<uint32_t> video_ = std::vector<uint32_t>(size_t{kColumns} * kRows);
};

TEST_F(CoveredPixels, VideoBesideThePhotoIsKeptToTheBit) {
  for (const char* filter : {"hiqual", "ultra", "triangle", "realtime"}) {
    for (const char* view : {"0.5", "0.37@0.11,-0.23", "0.9@0.3,0.3", "1@0.61,0", "3@0.62,-0.48"}) {
      EXPECT_GT(ExpectVideoBeside(photo_, {view, filter}), 0) << view << " " << filter;
      ASSERT_FALSE(HasFailure()) << view << " " << filter;
    }
  }
}

TEST_F(CoveredPixels, AnInterlacedProjectKeepsTheRowsOfBothFields) {
  const std::string project = folder_ / "film.json";
  std::ofstream(project) << R"({"image": "photo.png", "film": {"fields": "top", "frames": 8},
    "parameters": {"compositeover": {"value": "Background: Video"}, "size": [{"frame": 0, "value": 0.4}, {"frame": 7, "value": 0.6}]}})";
  EXPECT_GT(ExpectVideoBeside(project, {"", "hiqual"}), 0);
}

TEST(CoveredArea, OfTwoFieldsAreThoseOfEither) {
  const auto either = [](const frei0r::CoveredPixels& a, const frei0r::CoveredPixels& b) {
    const frei0r::CoveredPixels all = frei0r::CoveredByEither(a, b);
    return std::array{all.left, all.top, all.right, all.bottom};
  };
  EXPECT_EQ(either({1, 2, 9, 8}, {3, 1, 10, 7}), (std::array{1, 1, 10, 8}));
  EXPECT_EQ(either({5, 5, 5, 9}, {3, 1, 10, 7}), (std::array{3, 1, 10, 7})) << "one is empty";
  EXPECT_EQ(either({1, 2, 9, 8}, {}), (std::array{1, 2, 9, 8}));
}

TEST_F(CoveredPixels, APhotoThatIsNowhereInSightLeavesTheVideo) {
  EXPECT_EQ(Render(photo_, {"5@3,3", "hiqual"}, ""), video_);
}

}  // namespace
}  // namespace kelto
