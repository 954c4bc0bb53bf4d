// Photographs over themselves, blurred, where they do not fill the frame.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/host/command/run.h"

namespace kelto::test {
namespace {

constexpr int kFrameWidth = 192, kFrameHeight = 108;

class BesideThePhoto : public testing::Test {
 protected:
  BesideThePhoto() {
    // Light above, dark below, with fine stripes that a blur takes away.
    WritePng(
        portrait_, MakePicture(200, 600, [](int, int y) {
          const int stripe = y / 4 % 2 == 0 ? 30 : 0;
          return y < 300 ? Rgb{uint8_t(200 + stripe), 180, 60} : Rgb{uint8_t(40 + stripe), 60, 160};
        }));
    WritePng(landscape_, MakePicture(400, 300, [](int x, int y) {
               return Rgb{uint8_t(x / 2), uint8_t(y / 2), 90};
             }));
  }
  std::string Film(const std::string& photo, const Words& more) {
    Words words{"render", photo, "-o", folder_ / "f.bgra", "--size", "192x108", "--frames", "4"};
    words.insert(words.end(), more.begin(), more.end());
    const Outcome outcome = RunKelto(words);
    EXPECT_EQ(outcome.err, "");
    return BytesOf(folder_ / "f.bgra");
  }
  static Rgb At(const std::string& film, int x, int y) {
    const size_t at = size_t{4} * (size_t(y) * kFrameWidth + x);
    return {uint8_t(film[at + 2]), uint8_t(film[at + 1]), uint8_t(film[at])};
  }

  TempFolder folder_;
  const std::string portrait_ = folder_ / "portrait.png", landscape_ = folder_ / "landscape.png";
};

TEST_F(BesideThePhoto, IsThePhotoItselfBlurredAndDarkened) {
  const std::string film = Film(portrait_, {"--move", "hold", "--beside", "blur"});
  const std::string plain = Film(portrait_, {"--move", "hold", "--fit", "whole"});
  for (int y = 0; y < kFrameHeight; ++y) {
    // The photo is 36 of 192 columns wide.
    EXPECT_LE(Distance(At(film, 96, y), At(plain, 96, y)), 1) << "the photo itself, row " << y;
    EXPECT_EQ(ToString(At(plain, 20, y)), ToString(Rgb{})) << y;
  }
  const Rgb above = At(film, 20, 8), below = At(film, 20, 100);
  EXPECT_GT(above.r, 90) << "darker than 200, and not black";
  EXPECT_LT(above.r, 150);
  EXPECT_GT(below.b, below.r);
  for (int y = 1; y < kFrameHeight; ++y) {
    EXPECT_LE(Distance(At(film, 20, y), At(film, 20, y - 1)), 6) << "no stripes: " << y;
    EXPECT_LE(Distance(At(film, 5, y), At(film, 6, y)), 6) << y;
  }
}

TEST_F(BesideThePhoto, IsNothingOfPhotographsAboutAsWideAsTheFrame) {
  for (const char* move : {"hold", "in", "left"}) {
    EXPECT_EQ(Film(landscape_, {"--move", move, "--beside", "blur"}),
              Film(landscape_, {"--move", move}))
        << move;
  }
  // But where all of it is asked for.
  const std::string whole =
      Film(landscape_, {"--move", "hold", "--beside", "blur", "--fit", "whole"});
  EXPECT_NE(ToString(At(whole, 4, 54)), ToString(Rgb{}));
}

TEST_F(BesideThePhoto, StaysInSightWhileMovesGoOn) {
  for (const char* move : {"in", "out", "down", "auto"}) {
    const std::string film = Film(portrait_, {"--move", move, "--beside", "blur"});
    for (size_t frame = 0; frame < 4; ++frame) {
      const std::string one = film.substr(frame * 4 * kFrameWidth * kFrameHeight);
      EXPECT_GT(At(one, 4, 54).r + At(one, 4, 54).b, 30) << move;
      EXPECT_LT(At(one, 4, 30).r, 160) << move << ": the photo fills the frame";
    }
  }
}

TEST_F(BesideThePhoto, IsTheSameInFieldsAndForEveryNumberOfJobsAndInProjects) {
  const Words words{"--move", "in", "--beside", "blur", "--fields", "top"};
  Words jobs = words;
  jobs.insert(jobs.end(), {"--jobs", "3", "--save-project", folder_ / "p.json"});
  const std::string film = Film(portrait_, words);
  EXPECT_EQ(film, Film(portrait_, jobs));
  ASSERT_EQ(RunKelto({"render", folder_ / "p.json", "-o", folder_ / "g.bgra"}).err, "");
  EXPECT_EQ(BytesOf(folder_ / "g.bgra"), film);
}

TEST_F(BesideThePhoto, IsOneThingAtATime) {
  const Outcome outcome =
      Render(portrait_, folder_ / "f.bgra", {"--beside", "blur", "--background", "#102030"});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_EQ(outcome.err,
            "kelto: --beside blur and --background both say what is beside the photo; give one of "
            "them\n");
  EXPECT_EQ(Render(portrait_, folder_ / "f.bgra", {"--beside", "glass"}).err,
            "kelto: --beside glass: choose one of colour, blur\n");
}

}  // namespace
}  // namespace kelto::test
