// Photographs turned beyond what their files say.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "tests/host/command/run.h"

namespace kelto::test {
namespace {

using testing::HasSubstr;

constexpr Rgb kUpperLeft{200, 40, 40}, kUpperRight{40, 200, 40}, kLowerRight{40, 40, 200},
    kLowerLeft{128, 128, 128};

/// A photo whose quarters, from the upper left clockwise, are red, green, blue and grey.
class TurnedPhotos : public testing::Test {
 protected:
  TurnedPhotos() {
    WritePng(photo_, MakePicture(96, 48, [](int x, int y) {
               return y < 24 ? (x < 48 ? kUpperLeft : kUpperRight)
                             : (x < 48 ? kLowerLeft : kLowerRight);
             }));
  }
  /// The quarters of a film's first frame, in the same order: r, g, b, and a point for grey.
  std::string Quarters(Words words, const std::string& size) {
    const std::string film = folder_ / "f.bgra";
    words.insert(words.end(), {"-o", film, "--size", size, "--jobs", "1"});
    const Outcome outcome = RunKelto(words);
    EXPECT_EQ(outcome.err, "");
    const std::string bytes = BytesOf(film);
    const size_t width = std::stoul(size), height = std::stoul(size.substr(size.find('x') + 1));
    if (bytes.size() < width * height * 4) return "no film";
    std::string letters;
    for (const auto& [x, y] : {std::pair{1, 1}, {3, 1}, {3, 3}, {1, 3}}) {
      const size_t at = (height * y / 4 * width + width * x / 4) * 4;
      const Rgb seen{uint8_t(bytes[at + 2]), uint8_t(bytes[at + 1]), uint8_t(bytes[at])};
      letters += Distance(seen, kUpperLeft) < 8    ? 'r'
                 : Distance(seen, kUpperRight) < 8 ? 'g'
                 : Distance(seen, kLowerRight) < 8 ? 'b'
                 : Distance(seen, kLowerLeft) < 8  ? '.'
                                                   : '?';
    }
    return letters;
  }
  std::string Rendered(const std::string& degrees, const std::string& size) {
    return Quarters({"render", photo_, "--move", "hold", "--frames", "1", "--rotate", degrees},
                    size);
  }

  TempFolder folder_;
  const std::string photo_ = folder_ / "p.png";
};

TEST_F(TurnedPhotos, AreSeenClockwise) {
  EXPECT_EQ(Rendered("0", "96x48"), "rgb.");
  EXPECT_EQ(Rendered("90", "48x96"), ".rgb");
  EXPECT_EQ(Rendered("180", "96x48"), "b.rg");
  EXPECT_EQ(Rendered("270", "48x96"), "gb.r");
}

TEST_F(TurnedPhotos, AreTheSameInFilmsOfMoreBits) {
  for (const char* degrees : {"90", "180", "270"}) {
    const auto film = [&](const std::string& name) {
      const Outcome outcome =
          RunKelto({"render", photo_, "-o", folder_ / name, "--move", "hold", "--frames", "1",
                    "--size", "96x96", "--jobs", "1", "--rotate", degrees});
      EXPECT_EQ(outcome.err, "");
      return BytesOf(folder_ / name);
    };
    const std::string eight = film("8.bgra"), sixteen = film("16.rgba64");
    ASSERT_EQ(eight.size() * 2, sixteen.size());
    for (const auto& [x, y] : {std::pair{36, 24}, {60, 24}, {36, 72}, {60, 72}}) {
      const size_t at = static_cast<size_t>(y * 96 + x) * 4;
      const Rgb a{uint8_t(eight[at + 2]), uint8_t(eight[at + 1]), uint8_t(eight[at])};
      // The higher byte of each word is the level.
      const Rgb b{uint8_t(sixteen[2 * at + 1]), uint8_t(sixteen[2 * at + 3]),
                  uint8_t(sixteen[2 * at + 5])};
      EXPECT_LE(Distance(a, b), 8) << degrees << " at " << x << "," << y;
    }
  }
}

TEST_F(TurnedPhotos, HaveTheirViewsInTheirOwnPixels) {
  // The photo is 48x96 then: below its middle lie blue and green.
  const Words view{"render", photo_, "--frames", "1", "--rotate", "90", "--view"};
  Words low = view, outside = view;
  low.emplace_back("24,48,24,48");
  outside.emplace_back("60,10,24,20");
  EXPECT_EQ(Quarters(low, "24x48"), "gggg");
  outside.insert(outside.end(), {"-o", folder_ / "f.y4m"});
  EXPECT_THAT(RunKelto(outside).err, HasSubstr("which is 48x96 pixels"));
  EXPECT_THAT(RunKelto({"inspect", photo_, "--rotate", "270"}).out, HasSubstr(", 48x96 pixels"));
}

TEST_F(TurnedPhotos, StayTurnedInProjects) {
  const std::string project = folder_ / "p.json";
  ASSERT_EQ(RunKelto({"new", photo_, "-o", project, "--move", "hold", "--rotate", "90"}).err, "");
  EXPECT_THAT(BytesOf(project), HasSubstr("\"rotate\": 90"));
  EXPECT_EQ(Quarters({"render", project, "--frames", "1"}, "48x96"), ".rgb");
  EXPECT_EQ(Quarters({"render", project, "--frames", "1", "--rotate", "0"}, "96x48"), "rgb.");
}

TEST_F(TurnedPhotos, StandBesideOthersInShowsAndTheirProjects) {
  const std::string list = folder_ / "list.txt", project = folder_ / "show.json";
  std::ofstream(list) << "p.png --rotate 180\np.png\n";
  const Words words{"slideshow", list,     "--each", "0.04",           "--fade",
                    "0",         "--move", "hold",   "--save-project", project};
  EXPECT_EQ(Quarters(words, "96x48"), "b.rg");
  EXPECT_EQ(BytesOf(folder_ / "f.bgra").size(), size_t{2} * 96 * 48 * 4);
  EXPECT_THAT(BytesOf(project), HasSubstr("\"rotate\": 180"));
  EXPECT_EQ(Quarters({"slideshow", project}, "96x48"), "b.rg");
}

TEST_F(TurnedPhotos, AreTurnedByQuartersAlone) {
  const Outcome outcome = Render(photo_, folder_ / "f.y4m", {"--rotate", "45"});
  EXPECT_NE(outcome.code, 0);
  EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
  EXPECT_THAT(outcome.err, HasSubstr("--rotate 45: choose one of 0, 90, 180, 270 degrees"));
}

}  // namespace
}  // namespace kelto::test
