#include "host/moves/auto_move.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

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
