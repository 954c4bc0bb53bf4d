// Faces found by what a picture looks like, and what that is good for.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <iostream>

#include "host/base/error.h"
#include "host/effect/photo.h"
#include "host/faces/detectors.h"
#include "host/moves/auto_move.h"
#include "host/moves/face_move.h"
#include "host/plan/default_plan.h"
#include "tests/host/support/drawn_faces.h"
#include "tests/host/support/move_frames.h"
#include "tests/support/photo.h"

namespace kelto::host {
namespace {

using test::DrawnFace;
using test::Portrait;

PhotoPixels Drawn(const Portrait& portrait) {
  PhotoPixels pixels{{portrait.width, portrait.height}, {}};
  pixels.bytes.reserve(size_t{4} * portrait.width * portrait.height);
  for (int32_t y = 0; y < portrait.height; ++y) {
    for (int32_t x = 0; x < portrait.width; ++x) {
      const auto rgb = test::ColourAt(portrait, x, y);
      pixels.bytes.insert(pixels.bytes.end(), {rgb[2], rgb[1], rgb[0], 255});
    }
  }
  return pixels;
}

std::vector<PhotoRect> FacesIn(const PhotoPixels& pixels) {
  return FacesByCascades({pixels.size, pixels.bytes.data()});
}

/// People alone, in pairs and in groups, in pictures of both shapes, each with something beside
/// them that is more eye-catching.
std::vector<Portrait> Portraits() {
  return {
      {480, 640, {{180, 150, 120}}, 90, 560, 60},
      {480, 640, {{60, 60, 100, 0.8}}, 390, 540, 70},
      {480, 640, {{270, 330, 90, 0.6}}, 90, 90, 60},
      {480, 640, {{70, 130, 110}, {290, 210, 110, 0.7}}, 70, 590, 40},
      {480, 640, {{180, 40, 80, 0.9}, {200, 400, 90}}, 60, 300, 40},
      {640, 480, {{60, 90, 80}}, 560, 400, 60},
      {640, 480, {{500, 60, 90, 0.7}}, 80, 400, 60},
      {640, 480, {{120, 120, 90}, {380, 140, 80, 0.6}}, 570, 420, 50},
      {640,
       480,
       {{50, 150, 64}, {200, 110, 70, 0.8}, {360, 130, 66}, {510, 160, 60, 0.6}},
       320,
       420,
       40},
      {800, 400, {{90, 80, 70, 0.75}, {620, 90, 74}}, 400, 330, 50},
  };
}

/// How many of a film's 25 frames show every face whole.
int WholeFrames(const Portrait& portrait, const std::vector<PhotoRect>& parts) {
  int whole = 0;
  for (const PhotoRect& view : test::PartsThrough(parts, {portrait.width, portrait.height}, 25)) {
    whole += std::all_of(portrait.faces.begin(), portrait.faces.end(),
                         [&](const DrawnFace& face) { return test::IsWhole(face, view); });
  }
  return whole;
}

TEST(Faces, AreFoundWhereTheyAre) {
  ASSERT_EQ(CascadesFault(), "");
  for (const Portrait& portrait : Portraits()) {
    const std::vector<PhotoRect> found = FacesIn(Drawn(portrait));
    ASSERT_EQ(found.size(), portrait.faces.size()) << portrait.faces[0].x;
    for (const DrawnFace& face : portrait.faces) {
      const double x = face.x + face.side / 2, y = (face.y + face.Bottom()) / 2;
      EXPECT_TRUE(std::any_of(found.begin(), found.end(),
                              [&](const PhotoRect& one) {
                                return std::hypot(one.CentreX() - x, one.CentreY() - y) <
                                           face.side / 4 &&
                                       one.width > face.side * 0.8 && one.width < face.side * 1.6;
                              }))
          << face.x << "," << face.y;
    }
  }
}

TEST(Faces, AreNotFoundInPhotographsWithoutAny) {
  // Insects, leaves and rock: single cascades take parts of each of these for faces.
  for (const char* name : {"Dragonfly_by_Bolly.jpg", "Picture_1A_by_freespace.jpg",
                           "aitzgorri_by_Aitzol_Berasategi.jpg"}) {
    const Photo photo = OpenPhoto(std::string("/usr/share/backgrounds/") + name);
    const PhotoPixels pixels{{photo.width, photo.height}, DecodePhoto(photo)};
    EXPECT_EQ(FacesIn(pixels).size(), 0u) << name;
  }
}

TEST(Faces, AreNotFoundInWhatIsTooSmallToBeTheSubject) {
  // Passers-by: less than a twentieth of the shorter side.
  EXPECT_EQ(FacesIn(Drawn({640, 480, {{300, 200, 12}}})).size(), 0u);
}

TEST(Faces, AreWholeInEveryFrameOfAutomaticMoves) {
  const std::vector<Portrait> portraits = Portraits();
  int before = 0, after = 0;
  for (const Portrait& portrait : portraits) {
    const PhotoPixels pixels = Drawn(portrait);
    const PhotoViews views(DefaultPlan("photo.jpg"), pixels.size);
    const auto move = [&](const std::vector<PhotoRect>& faces) {
      // What a portrait of two people above each other needs in a frame that is wide.
      const Fit fit =
          faces.size() > 1 && portrait.height > portrait.width ? Fit::kBeside : Fit::kFill;
      return faces.empty() ? AutoMove(views, pixels, fit) : FaceMove(views, faces, fit, 1.43);
    };
    before += WholeFrames(portrait, move({}));
    after += WholeFrames(portrait, move(FacesIn(pixels)));
  }
  const int frames = 25 * static_cast<int>(portraits.size());
  std::cout << "frames with every face whole: " << 100 * before / frames
            << " % by what is eye-catching, " << 100 * after / frames << " % by faces\n";
  EXPECT_EQ(after, frames);
  EXPECT_LT(before, frames * 2 / 3) << "portraits that nothing draws the eye away from";
}

TEST(FaceModels, ThatCannotBeUsedAreNamedWithWhatCanBe) {
  const test::TempFolder folder;
  std::ofstream(folder / "model.onnx") << "not a network";
  const PhotoPixels pixels = Drawn({64, 48, {}});
  try {
    FacesByModel({pixels.size, pixels.bytes.data()}, folder / "model.onnx");
    FAIL() << "took it";
  } catch (const Error& error) {
    const std::string text = error.what();
    EXPECT_EQ(text.find(folder / "model.onnx"), 0u) << text;
    EXPECT_NE(text.find("face_detection_yunet_2022mar.onnx"), std::string::npos) << text;
    EXPECT_EQ(text.find('\n'), std::string::npos) << text;
  }
}

}  // namespace
}  // namespace kelto::host
