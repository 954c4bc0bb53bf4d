// Films by the laws of motion, read frame by frame from `kelto inspect`.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>
#include <sstream>

#include "tests/host/command/run.h"

namespace kelto::test {
namespace {

/// A column of `kelto inspect --csv` for each name.
using Table = std::map<std::string, std::vector<double>>;

Table TableOf(const std::string& csv) {
  std::istringstream lines(csv);
  std::string line, cell;
  std::getline(lines, line);
  std::vector<std::string> names;
  for (std::istringstream head(line); std::getline(head, cell, ',');) names.push_back(cell);
  Table table;
  while (std::getline(lines, line)) {
    std::istringstream row(line);
    for (const std::string& name : names) {
      std::getline(row, cell, ',');
      table[name].push_back(std::strtod(cell.c_str(), nullptr));
    }
  }
  return table;
}

class MotionLaws : public testing::Test {
 protected:
  static constexpr int kWidth = 1632, kHeight = 1224;
  MotionLaws() {
    WritePng(photo_, MakePicture(kWidth, kHeight, [](int x, int y) {
               return Rgb{uint8_t(x / 8), uint8_t(y / 8), 128};
             }));
  }

  Table Inspect(const Words& more, const std::string& input = "") {
    Words words{"inspect", input.empty() ? photo_ : input, "--csv"};
    words.insert(words.end(), more.begin(), more.end());
    const Outcome outcome = RunKelto(words);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    return TableOf(outcome.out);
  }

  TempFolder folder_;
  const std::string photo_ = folder_ / "photo.png";
};

double Most(const std::vector<double>& values) {
  return *std::max_element(values.begin(), values.end());
}
double Least(const std::vector<double>& values) {
  return *std::min_element(values.begin(), values.end());
}

const Words kEven{"--in", "linear", "--out", "linear"};

Words And(const Words& words, Words more) {
  more.insert(more.begin(), words.begin(), words.end());
  return more;
}

TEST_F(MotionLaws, TheTargetOfASteadyFilmIsInViewThroughoutAndOfALinearOneIsNot) {
  const auto out = [&](const char* law) {
    const Table film =
        Inspect({"--from", "1", "--to", "8@0.4,0", "--frames", "101", "--motion", law});
    int outside = 0;
    for (size_t i = 0; i < 101; ++i) {
      if ((0.4 - film.at("x")[i]) * film.at("zoom")[i] > 0.5) ++outside;
    }
    return outside;
  };
  EXPECT_EQ(out("steady"), 0);
  EXPECT_EQ(out("linear"), 50);
}

TEST_F(MotionLaws, AViewGivenInPixelsStaysInViewFromTheWidestOne) {
  const Table film = Inspect(
      And(kEven, {"--view", "0,306,1632,918", "--view", "1202,1025,240,135", "--frames", "101"}));
  for (size_t i = 0; i < 101; ++i) {
    EXPECT_LE(film.at("left")[i], 1202.01) << i;
    EXPECT_GE(film.at("left")[i] + film.at("width")[i], 1441.99) << i;
    EXPECT_LE(film.at("top")[i], 1025.01) << i;
    EXPECT_GE(film.at("top")[i] + film.at("height")[i], 1159.99) << i;
  }
}

TEST_F(MotionLaws, ViewsThatAreGivenGoSteadilyUnlessAWordSaysOtherwise) {
  const Words views{"--from", "1", "--to", "4", "--frames", "51"};
  const Table steady = Inspect(And(kEven, views));
  EXPECT_LE(Most(steady.at("perceived_speed")), 1.001 * Least(steady.at("perceived_speed")));
  EXPECT_NEAR(steady.at("zoom")[25], 2.0, 1e-9);
  EXPECT_NEAR(steady.at("zoom_rate")[25], 2.0 / 2.0, 1e-6) << "two doublings in two seconds";
  const Table linear = Inspect(And(kEven, And(views, {"--motion", "linear"})));
  EXPECT_NEAR(linear.at("zoom")[25], 2.5, 1e-9);
  EXPECT_GT(Most(linear.at("perceived_speed")), 3.5 * Least(linear.at("perceived_speed")));
}

TEST_F(MotionLaws, AFlightDrawsBackBetweenCloseUpsAndStaysOnThePhoto) {
  const Table film =
      Inspect({"--from", "6@-0.3,0", "--to", "6@0.3,0.1", "--motion", "fly", "--frames", "101"});
  EXPECT_LT(Least(film.at("zoom")), 3.0);
  EXPECT_DOUBLE_EQ(film.at("zoom").front(), 6.0);
  EXPECT_DOUBLE_EQ(film.at("zoom").back(), 6.0);
  for (size_t i = 0; i < 101; ++i) {
    EXPECT_GE(film.at("left")[i], -0.01);
    EXPECT_LE(film.at("left")[i] + film.at("width")[i], kWidth + 0.01);
  }
}

TEST_F(MotionLaws, ASmoothTourMeetsItsViewsWithoutAHitch) {
  const Table film =
      Inspect({"--view", "0,306,1632,918", "--view", "150,450,600,338", "--view", "850,250,480,270",
               "--view", "600,700,800,450", "--path", "spline", "--seconds", "8", "--fps", "50"});
  const std::vector<double>& speed = film.at("perceived_speed");
  double mean = 0.0;
  for (const double one : speed) mean += one / static_cast<double>(speed.size());
  for (size_t i = 1; i < speed.size(); ++i) {
    EXPECT_LE(std::abs(speed[i] - speed[i - 1]), 0.04 * mean) << "frame " << i;
    // Between its first and last moments it never stops.
    if (i > 50 && i + 50 < speed.size()) {
      EXPECT_GT(speed[i], 0.2 * mean) << "frame " << i;
    }
  }
  // The second view is met between the frames 133 and 134.
  EXPECT_NEAR(film.at("width")[133], 600, 6);
  EXPECT_NEAR(film.at("left")[133], 150, 12);
}

TEST_F(MotionLaws, AConstantTourMeetsItsMiddleView) {
  const Table film =
      Inspect({"--view", "0,306,1632,918", "--view", "150,450,600,338", "--view", "850,250,480,270",
               "--in", "constant", "--out", "constant", "--frames", "1001"});
  double nearest = 1e9;
  for (size_t i = 0; i < 1001; ++i) {
    nearest = std::min(nearest, std::hypot(film.at("left")[i] - 150, film.at("width")[i] - 600));
  }
  EXPECT_LT(nearest, 2.0);
  const std::vector<double>& speed = film.at("perceived_speed");
  EXPECT_LE(Most(speed), 1.01 * Least(speed)) << "one speed, also where it turns";
}

TEST_F(MotionLaws, FieldsOfAnInterlacedFilmAreMomentsOfTheirOwn) {
  const Table film =
      Inspect(And(kEven, {"--from", "1", "--to", "4", "--frames", "25", "--fields", "top"}));
  EXPECT_NEAR(film.at("zoom")[1], std::pow(4.0, 0.5 / 24), 1e-9);
  EXPECT_NEAR(film.at("zoom")[2], std::pow(4.0, 1.0 / 24), 1e-9);
}

TEST_F(MotionLaws, BelowZoom1TheWayIsStraightToo) {
  const Table film = Inspect(And(
      kEven, {"--from", "0.5@0.5,0", "--to", "2@0.25,0", "--frames", "3", "--motion", "steady"}));
  // Zoom 1 half way: the centre, from 1 to 0.25 in widths of zoom 1, by (2 - 1) / (2 - 0.5).
  EXPECT_NEAR(film.at("zoom")[1], 1.0, 1e-9);
  EXPECT_NEAR(film.at("x")[1], 1.0 - 0.75 * (1.0 / 1.5), 1e-9);
}

TEST_F(MotionLaws, AProjectKeepsItsLawAndLinearIsUnderstood) {
  const Words film{"--from", "1",    "--to",   "4",     "--frames",
                   "3",      "--in", "linear", "--out", "linear"};
  const auto saved = [&](const char* name, const Words& more) {
    Words words{"new", photo_, "-o", folder_ / name};
    words = And(words, And(film, more));
    EXPECT_EQ(RunKelto(words).code, 0);
    return BytesOf(folder_ / name);
  };
  const auto text = saved("steady.json", {});
  EXPECT_THAT(text, testing::HasSubstr("\"motion\": \"steady\""));
  saved("linear.json", {"--motion", "linear"});
  EXPECT_NEAR(Inspect({}, folder_ / "steady.json").at("zoom")[1], 2.0, 1e-9);
  EXPECT_NEAR(Inspect({}, folder_ / "linear.json").at("zoom")[1], 2.5, 1e-9);
  EXPECT_NEAR(Inspect({"--motion", "steady"}, folder_ / "linear.json").at("zoom")[1], 2.0, 1e-9);
}

TEST_F(MotionLaws, HoldAndGoSayHowLongViewsAndWaysTake) {
  const Words tour{"--view", "1",       "--hold", "1", "--go",   "3",
                   "--view", "4@0.2,0", "--hold", "2", "--view", "2"};
  const Table film = Inspect(tour);
  // One second, three, two, and two for the way of which nothing is said.
  ASSERT_EQ(film.at("zoom").size(), 8u * 25);
  const auto zoomAt = [&](const Table& table, double share) {
    const std::vector<double>& zoom = table.at("zoom");
    return zoom[static_cast<size_t>(share / 8 * static_cast<double>(zoom.size() - 1))];
  };
  for (const double still : {0.0, 0.5, 0.99}) EXPECT_EQ(zoomAt(film, still), 1.0) << still;
  EXPECT_GT(zoomAt(film, 1.5), 1.0);
  for (const double still : {4.05, 5.0, 5.95}) EXPECT_NEAR(zoomAt(film, still), 4.0, 1e-9) << still;
  EXPECT_NEAR(zoomAt(film, 8.0), 2.0, 1e-9);
  const Table scaled = Inspect(And(tour, {"--seconds", "4"}));
  ASSERT_EQ(scaled.at("zoom").size(), 4u * 25);
  EXPECT_NEAR(zoomAt(scaled, 5.0), 4.0, 1e-9);
}

TEST_F(MotionLaws, ASavedTourIsOneListWithItsTimesAndTheSameFilm) {
  const Words tour{"--view", "0,0,1632,918",    "--hold", "1", "--go",   "3",
                   "--view", "600,400,480,270", "--hold", "2", "--view", "2@0.1,0"};
  Words words{"new", photo_, "-o", folder_ / "tour.json"};
  EXPECT_EQ(RunKelto(And(words, tour)).code, 0);
  const std::string text = BytesOf(folder_ / "tour.json");
  EXPECT_THAT(text, testing::HasSubstr(R"({"view": "600,400,480,270", "hold": 2.0})"));
  EXPECT_THAT(text, testing::Not(testing::HasSubstr("\"frames\"")));
  EXPECT_EQ(Inspect({}, folder_ / "tour.json"), Inspect(tour));
  EXPECT_EQ(Inspect({"--path", "spline"}, folder_ / "tour.json"),
            Inspect(And(tour, {"--path", "spline"})));
  EXPECT_EQ(Inspect({"--in", "linear", "--motion", "linear"}, folder_ / "tour.json"),
            Inspect(And(tour, {"--in", "linear", "--motion", "linear"})));
}

TEST_F(MotionLaws, APartOfThePhotoThatCannotBeShownIsToldByItsPlaceInTheProject) {
  const auto told = [&](const char* part) {
    std::ofstream(folder_ / "p.json") << R"({"image": "photo.png", "views": [{"view": "1"},
      {"view": ")" << part << "\"}]}";
    const Outcome outcome = RunKelto({"inspect", folder_ / "p.json", "--csv"});
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    return std::to_string(outcome.code) + outcome.err;
  };
  EXPECT_THAT(told("-900000,0,900000,100"),
              testing::StartsWith("1kelto: " + (folder_ / "p.json") +
                                  ": views[1].view: -9e+05,0,9e+05,100: lies outside the photo"));
  EXPECT_THAT(told("10,10,8,8"), testing::StartsWith("0kelto: " + (folder_ / "p.json") +
                                                     ": views[1].view: 10,10,8,8: is widened to "));
}

TEST_F(MotionLaws, ABatchPassesTheTimesOnWithTheirViews) {
  const Outcome outcome =
      RunKelto({"batch", folder_ / "", "-o", folder_ / "films", "--plan", "--view", "1", "--hold",
                "1", "--view", "2", "--hold", "2", "--fps", "50"});
  EXPECT_THAT(outcome.out, testing::HasSubstr("--view 1 --hold 1 --view 2 --hold 2"));
}

TEST_F(MotionLaws, AmountSaysHowFarAMoveGoes) {
  const auto closest = [&](const Words& words) { return Most(Inspect(words).at("zoom")); };
  EXPECT_NEAR(closest({"--move", "in"}), 1.5, 1e-4);
  EXPECT_NEAR(closest({"--move", "in", "--amount", "3"}), 3.0, 1e-4);
  EXPECT_NEAR(closest({}), 1.25, 1e-4);
  EXPECT_NEAR(closest({"--amount", "1.1"}), 1.1, 1e-4);
}

TEST_F(MotionLaws, WordsThatMakeNoSenseAreRefusedInOneLine) {
  for (const Words& words :
       {Words{"--motion", "warp"}, Words{"--amount", "0.5"}, Words{"--move", "mixed"},
        Words{"--from", "2", "--amount", "2"}, Words{"--hold", "2", "--view", "1"},
        Words{"--go", "2"}, Words{"--go", "1", "--view", "1", "--view", "2"}}) {
    Words all{"inspect", photo_};
    all.insert(all.end(), words.begin(), words.end());
    const Outcome outcome = RunKelto(all);
    EXPECT_EQ(outcome.code, 2);
    EXPECT_TRUE(IsOneLine(outcome.err)) << outcome.err;
    EXPECT_THAT(outcome.err, testing::HasSubstr(words[0] == "--from" ? "--amount" : words[0]));
  }
}

}  // namespace
}  // namespace kelto::test
