#include "host/moves/face_move.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "host/moves/auto_move.h"
#include "host/plan/default_plan.h"
#include "tests/host/support/move_frames.h"

namespace kelto::host {
namespace {

constexpr PixelSize kFacePhotos[] = {{4000, 3000}, {3000, 4000}, {6000, 4000}, {2000, 2000}};

double EyesOf(const PhotoRect& face) { return face.y + 0.4 * face.height; }

/// Groups of faces near each other, as people stand for a photograph.
std::vector<std::vector<PhotoRect>> Groups(PixelSize photo) {
  std::mt19937 random(7);
  const auto real = [&](double from, double to) {
    return std::uniform_real_distribution<double>(from, to)(random);
  };
  std::vector<std::vector<PhotoRect>> groups;
  for (int i = 0; i < 40; ++i) {
    const double side = real(0.03, 0.14) * std::min(photo.width, photo.height);
    const double x = real(0.05, 0.6) * photo.width, y = real(0.05, 0.8) * photo.height;
    std::vector<PhotoRect> group;
    for (int n = 0; n <= i % 4; ++n) {
      const PhotoRect face{x + n * side * 1.3, y + real(0, 0.8) * side, side, side * 1.2};
      if (face.Right() < photo.width && face.Bottom() < photo.height) group.push_back(face);
    }
    if (!group.empty()) groups.push_back(group);
  }
  return groups;
}

TEST(FaceMove, CutsNoFaceAtAnyMoment) {
  for (const PixelSize photo : kFacePhotos) {
    const PhotoViews views(DefaultPlan("photo.jpg"), photo);
    for (const auto& group : Groups(photo)) {
      for (const double amount : {1.25, 1.43, 3.0}) {
        for (const PhotoRect& view :
             test::PartsThrough(FaceMove(views, group, Fit::kFill, amount), photo, 50)) {
          for (const PhotoRect& face : group) {
            EXPECT_TRUE(test::IsWhole(face, view))
                << photo.width << "x" << photo.height << " face " << face.x << "," << face.y
                << " view " << view.x << "," << view.y << "," << view.width << "," << view.height;
          }
        }
      }
    }
  }
}

TEST(FaceMove, EndsWithTheEyesInTheUpperThirdWhereThePhotoReaches) {
  for (const PixelSize photo : kFacePhotos) {
    const PhotoViews views(DefaultPlan("photo.jpg"), photo);
    for (const auto& group : Groups(photo)) {
      if (group.size() > 1) continue;
      const PhotoRect last = FaceMove(views, group, Fit::kFill, 1.43).back();
      const double eyes = (EyesOf(group[0]) - last.y) / last.height;
      const bool atTop = last.y<1, atBottom = last.Bottom()> photo.height - 1;
      if (!atBottom) {
        EXPECT_LE(eyes, 1.0 / 3 + 0.01);
      }
      if (!atTop && !atBottom) {
        EXPECT_GE(eyes, 0.2);
      }
    }
  }
}

TEST(FaceMove, GoesInGentlyAndWithinThePhoto) {
  for (const PixelSize photo : kFacePhotos) {
    const PhotoViews views(DefaultPlan("photo.jpg"), photo);
    for (const auto& group : Groups(photo)) {
      const auto parts = FaceMove(views, group, Fit::kFill, 1.43);
      EXPECT_LE(parts[1].width, parts[0].width + 1e-6);
      EXPECT_GE(parts[1].width, parts[0].width / 1.43 - 1e-6);
      for (const PhotoRect& part : parts) {
        EXPECT_GE(part.x, -1e-6);
        EXPECT_GE(part.y, -1e-6);
        EXPECT_LE(part.Right(), photo.width + 1e-6);
        EXPECT_LE(part.Bottom(), photo.height + 1e-6);
      }
    }
  }
}

TEST(FaceMove, VisitsFacesThatNoViewHasRoomForFromLeftToRight) {
  // A portrait cannot show two heads at its ends above each other in 16:9, a panorama none side by
  // side.
  const PixelSize panorama{9000, 1500}, portrait{1500, 4000};
  const std::vector<PhotoRect> row{{7800, 500, 300, 400}, {300, 500, 300, 400}};
  const PhotoViews wide(DefaultPlan("photo.jpg"), panorama);
  const auto across = FaceMove(wide, row, Fit::kFill, 1.43);
  EXPECT_TRUE(test::IsWhole(row[1], across.front()));
  EXPECT_TRUE(test::IsWhole(row[0], across.back()));
  const std::vector<PhotoRect> column{{600, 3400, 300, 400}, {600, 300, 300, 400}};
  const PhotoViews tall(DefaultPlan("photo.jpg"), portrait);
  const auto down = FaceMove(tall, column, Fit::kFill, 1.43);
  EXPECT_TRUE(test::IsWhole(column[1], down.front()));
  EXPECT_TRUE(test::IsWhole(column[0], down.back()));
  // Shown whole where what lies beside may be seen.
  for (const PhotoRect& view : FaceMove(tall, column, Fit::kBeside, 1.43)) {
    for (const PhotoRect& face : column) EXPECT_TRUE(test::IsWhole(face, view));
  }
}

TEST(FaceMove, KeepsBothHeadsOfAPortraitOfTwo) {
  // Two dogs side by side, one of them further up: what a move to the more eye-catching one cut.
  const PixelSize photo{2400, 3200};
  const std::vector<PhotoRect> heads{{250, 900, 700, 800}, {1350, 1300, 700, 800}};
  const PhotoViews views(DefaultPlan("photo.jpg"), photo);
  for (const PhotoRect& view :
       test::PartsThrough(FaceMove(views, heads, Fit::kFill, 1.43), photo, 50)) {
    for (const PhotoRect& head : heads) EXPECT_TRUE(test::IsWhole(head, view));
  }
}

}  // namespace
}  // namespace kelto::host
