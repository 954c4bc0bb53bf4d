#include "host/moves/auto_move.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

#include "host/effect/photo.h"
#include "host/plan/default_plan.h"

namespace kelto::host {
namespace {

using Paint = std::function<std::array<uint8_t, 3>(int32_t, int32_t)>;

PhotoPixels Make(PixelSize size, const Paint& paint) {
  PhotoPixels pixels{size, {}};
  pixels.bytes.reserve(size_t{4} * size.width * size.height);
  for (int32_t y = 0; y < size.height; ++y) {
    for (int32_t x = 0; x < size.width; ++x) {
      const auto rgb = paint(x, y);
      pixels.bytes.insert(pixels.bytes.end(), {rgb[2], rgb[1], rgb[0], 255});
    }
  }
  return pixels;
}

/// A dark, gently shaded wall with a bright disc.
PhotoPixels Disc(PixelSize size, double x, double y) {
  const double radius = std::min(size.width, size.height) * 0.06;
  return Make(size, [=](int32_t px, int32_t py) -> std::array<uint8_t, 3> {
    if (std::hypot(px - x * size.width, py - y * size.height) < radius) return {240, 230, 200};
    const auto shade = static_cast<uint8_t>(40 + 20.0 * px / size.width + 10.0 * py / size.height);
    return {shade, shade, static_cast<uint8_t>(shade + 10)};
  });
}

constexpr PixelSize kPhotos[] = {{600, 400}, {400, 600}, {1600, 200}, {500, 500}};

bool Holds(const PhotoRect& view, double x, double y) {
  return x >= view.x && x <= view.Right() && y >= view.y && y <= view.Bottom();
}

TEST(AutoMove, KeepsABrightSubjectOutsideTheMiddleInView) {
  for (const PixelSize size : kPhotos) {
    const PhotoViews views(DefaultPlan("photo.jpg"), size);
    for (const double x : {0.12, 0.5, 0.85}) {
      for (const double y : {0.15, 0.8}) {
        const auto move = AutoMove(views, Disc(size, x, y), Fit::kFill);
        for (const PhotoRect& view : move) {
          EXPECT_TRUE(Holds(view, x * size.width, y * size.height))
              << size.width << "x" << size.height << " " << x << " " << y << ": " << view.x << ","
              << view.y << "," << view.width << "," << view.height;
        }
      }
    }
  }
}

/// A dark wall with bright heads of this radius about these places.
PhotoPixels Heads(PixelSize size, double radius,
                  const std::vector<std::array<double, 2>>& middles) {
  return Make(size, [=](int32_t px, int32_t py) -> std::array<uint8_t, 3> {
    for (const auto& [x, y] : middles) {
      if (std::hypot(px - x, py - y) < radius) return {190, 120, 60};
    }
    const auto shade = static_cast<uint8_t>(60 + 20.0 * px / size.width);
    return {shade, shade, shade};
  });
}

/// How far a part reaches beyond a view, in pixels; 0 where it is whole.
double CutFrom(const PhotoRect& view, const PhotoRect& part) {
  return std::max({0.0, view.x - part.x, view.y - part.y, part.Right() - view.Right(),
                   part.Bottom() - view.Bottom()});
}

TEST(AutoMove, CutsNoneOfTwoHeadsAboveEachOther) {
  // In 16:9 a view of this portrait is 225 pixels high: both fit, with little around them, and a
  // view closer by the usual factor would have one.
  constexpr PixelSize kSize{400, 600};
  constexpr double kRadius = 40;
  const PhotoViews views(DefaultPlan("photo.jpg"), kSize);
  for (const double top : {150.0, 260.0}) {
    const std::vector<std::array<double, 2>> middles = {{170, top}, {230, top + 110}};
    const auto move = AutoMove(views, Heads(kSize, kRadius, middles), Fit::kFill);
    for (const PhotoRect& view : move) {
      for (const auto& [x, y] : middles) {
        const PhotoRect head{x - kRadius, y - kRadius, 2 * kRadius, 2 * kRadius};
        EXPECT_EQ(CutFrom(view, head), 0) << top << ": " << view.y << " to " << view.Bottom();
      }
    }
    EXPECT_LE(move[1].width, move[0].width / 1.04) << "it moves";
  }
}

/// A photograph of a Debian package, and where its subjects are, in its widths and heights.
struct Photograph {
  const char* name;
  std::vector<PhotoRect> subjects;
};

TEST(AutoMove, KeepsTheSubjectsOfPhotographsWhole) {
  const std::vector<Photograph> photographs = {
      // two heads above each other, in a portrait
      {"friends_by_Aitzol_Berasategi.jpg", {{0.30, 0.24, 0.23, 0.16}, {0.46, 0.445, 0.215, 0.13}}},
      // sharp before leaves of every colour that are not, and the same turned on its side
      {"Dragonfly_by_Bolly.jpg", {{0.46, 0.33, 0.24, 0.18}}},
      {"Dragonfly_by_Bolly.jpg?turned=90", {{0.49, 0.43, 0.18, 0.33}}},
      {"free_by_Peter_Nerlich.jpg", {{0.25, 0.57, 0.40, 0.28}}},
      {"Kleiber_by_Lukas_Baubkus.jpg", {{0.41, 0.37, 0.13, 0.32}}},
      {"seeding_by_Clements_Engelhardt.jpg", {{0.16, 0.10, 0.29, 0.5}}},
  };
  for (const auto& [name, subjects] : photographs) {
    const Photo photo = OpenPhoto(std::string("/usr/share/backgrounds/") + name);
    const PhotoPixels pixels{{photo.width, photo.height}, DecodePhoto(photo)};
    const PhotoViews views(DefaultPlan("photo.jpg"), pixels.size);
    const auto move = AutoMove(views, pixels, Fit::kFill);
    for (const PhotoRect& subject : subjects) {
      const PhotoRect part{subject.x * photo.width, subject.y * photo.height,
                           subject.width * photo.width, subject.height * photo.height};
      EXPECT_EQ(CutFrom(move[0], part), 0) << name;
      EXPECT_EQ(CutFrom(move[1], part), 0) << name;
    }
  }
}

TEST(AutoMove, LeavesTheCornersOfAnEvenlyShadedPicture) {
  // Left and right, top and bottom differ: what is transformed as if it went on beyond its edges
  // jumps there.
  constexpr PixelSize kSize{600, 400};
  const PhotoViews views(DefaultPlan("photo.jpg"), kSize);
  const PhotoPixels shaded = Make(kSize, [](int32_t x, int32_t y) -> std::array<uint8_t, 3> {
    if (std::hypot(x - 330, y - 220) < 25) return {150, 130, 120};
    return {uint8_t(30 + x / 3), uint8_t(60 + y / 3), uint8_t(200 - x / 4)};
  });
  const PhotoRect last = AutoMove(views, shaded, Fit::kFill, 2.5)[1];
  EXPECT_EQ(CutFrom(last, {305, 195, 50, 50}), 0) << last.x << "," << last.y;
}

TEST(AutoMove, GoesInWithinThePhotoAndTheFirstViewHoldsTheLast) {
  for (const PixelSize size : kPhotos) {
    const PhotoViews views(DefaultPlan("photo.jpg"), size);
    const auto move = AutoMove(views, Disc(size, 0.2, 0.7), Fit::kFill);
    ASSERT_EQ(move.size(), 2u);
    const PhotoRect &first = move[0], &last = move[1];
    EXPECT_NEAR(last.width, 0.7 * first.width, 1e-6 * first.width);
    EXPECT_GE(first.x, -1e-9);
    EXPECT_GE(first.y, -1e-9);
    EXPECT_LE(first.Right(), size.width + 1e-3);
    EXPECT_LE(first.Bottom(), size.height + 1e-3);
    EXPECT_TRUE(Holds(first, last.x, last.y) && Holds(first, last.Right(), last.Bottom()));
  }
}

/// The picture a quarter further clockwise.
PhotoPixels Turned(const PhotoPixels& pixels) {
  const PixelSize size = pixels.size;
  return Make({size.height, size.width}, [&](int32_t x, int32_t y) -> std::array<uint8_t, 3> {
    const uint8_t* from =
        &pixels.bytes[4 * (size_t(size.height - 1 - x) * size.width + static_cast<size_t>(y))];
    return {from[2], from[1], from[0]};
  });
}

TEST(AutoMove, GoesToTheSamePlaceOfAPhotoThatIsTurnedInAFrameThatIsTurned) {
  RenderPlan upright = DefaultPlan("photo.jpg"), turned = upright;
  turned.format.size = {upright.format.size.height, upright.format.size.width};
  for (const PixelSize size : kPhotos) {
    // Places of the map that is looked at.
    const double reach = 2.5 * std::sqrt(1.0 * size.width * size.height) / 64;
    for (const double x : {0.2, 0.7}) {
      const PhotoPixels photo = Disc(size, x, 0.3);
      const PhotoRect one = AutoMove(PhotoViews(upright, size), photo, Fit::kFill).back();
      const PhotoRect other =
          AutoMove(PhotoViews(turned, {size.height, size.width}), Turned(photo), Fit::kFill).back();
      EXPECT_NEAR(other.CentreX(), size.height - one.CentreY(), reach);
      EXPECT_NEAR(other.CentreY(), one.CentreX(), reach);
    }
  }
}

TEST(AutoMove, IsTheSameForTheSamePicture) {
  const PhotoViews views(DefaultPlan("photo.jpg"), {600, 400});
  const PhotoPixels noise = Make({600, 400}, [](int32_t x, int32_t y) -> std::array<uint8_t, 3> {
    const uint32_t mixed = (x * 2654435761u) ^ (y * 2246822519u);
    return {uint8_t(mixed >> 24), uint8_t(mixed >> 16), uint8_t(mixed >> 8)};
  });
  const auto once = AutoMove(views, noise, Fit::kFill);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(AutoMove(views, noise, Fit::kFill), once);
}

TEST(AutoMove, GoesToTheMiddleOfAPictureOfNothing) {
  const PhotoViews views(DefaultPlan("photo.jpg"), {600, 400});
  const auto move = AutoMove(views,
                             Make({600, 400},
                                  [](int32_t, int32_t) {
                                    return std::array<uint8_t, 3>{90, 90, 90};
                                  }),
                             Fit::kFill);
  EXPECT_NEAR(move[1].CentreX(), 300, 1e-6);
  EXPECT_NEAR(move[1].CentreY(), 200, 1e-6);
}

TEST(AutoMove, BeginsWithAllOfThePhotoWhereThatIsAskedFor) {
  const PhotoViews views(DefaultPlan("photo.jpg"), {400, 600});
  const auto move = AutoMove(views, Disc({400, 600}, 0.5, 0.2), Fit::kWhole);
  EXPECT_EQ(move[0], views.Whole());
}

TEST(AutoMove, ManagesTheSmallestPictures) {
  for (const PixelSize size :
       {PixelSize{1, 1}, PixelSize{2, 1}, PixelSize{1, 500}, PixelSize{3, 2}}) {
    const PhotoViews views(DefaultPlan("photo.jpg"), size);
    const auto move = AutoMove(views, Disc(size, 0.5, 0.5), Fit::kFill);
    for (const PhotoRect& view : move) EXPECT_NO_THROW(views.ViewOf(view));
  }
}

}  // namespace
}  // namespace kelto::host
