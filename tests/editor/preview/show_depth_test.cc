// The preview of a show whose photos have different depths.
#include "editor/preview/show_depth.h"

#include <gtest/gtest.h>

#include <QColor>
#include <QCoreApplication>
#include <QImage>
#include <QTest>
#include <cmath>

#include "editor/preview/preview.h"
#include "host/base/error.h"
#include "host/effect/deep_photo.h"
#include "host/jobs/show_film.h"
#include "host/jobs/slideshow.h"
#include "host/plan/default_plan.h"
#include "tests/support/photo.h"

namespace kelto::editor {
namespace {

constexpr int kShowPatience = 60000;  // milliseconds

class ShowDepthPreview : public testing::Test {
 protected:
  ShowDepthPreview() {
    static int count = 1;
    static char name[] = "test";
    static char* arguments[] = {name, nullptr};
    if (QCoreApplication::instance() == nullptr) new QCoreApplication(count, arguments);
    const auto wave = [](int x, int y) {
      return 0.5 + 0.4 * std::sin(x * 0.1) * std::cos(y * 0.1);
    };
    test::WritePhoto(flat_, 240, 160, [&](int32_t x, int32_t y) {
      return test::Rgb{uint8_t(255 * wave(x, y)), uint8_t(y), uint8_t(255 - x)};
    });
    QImage words(200, 150, QImage::Format_RGBA64), glass(120, 90, QImage::Format_ARGB32);
    for (int y = 0; y < words.height(); ++y) {
      for (int x = 0; x < words.width(); ++x) {
        const auto level = quint16(65535 * wave(y, x));
        words.setPixelColor(x, y, QColor::fromRgba64(level, quint16(200 * x), 20000));
      }
    }
    for (int y = 0; y < glass.height(); ++y) {
      for (int x = 0; x < glass.width(); ++x) glass.setPixel(x, y, qRgba(250, y, x, 2 * x));
    }
    EXPECT_TRUE(words.save(QString::fromStdString(deep_)));
    EXPECT_TRUE(glass.save(QString::fromStdString(glass_)));
  }

  static host::Photo Opened(const std::string& path) {
    host::Photo photo = host::OpenPhoto(path);
    host::FindDepth(photo);
    photo.transparent = host::IsTransparent(photo);
    return photo;
  }

  host::RenderPlan PlanOf(const std::string& photo) {
    host::RenderPlan plan = host::DefaultPlan(photo);
    plan.format.size = {96, 54};
    plan.frames = 20;
    host::SetMove(plan, View{1.0, 0.0, 0.0}, View{1.7, 0.1, -0.05});
    plan.Set("bgcolor", host::BackgroundFor({0, 90, 30}));
    return plan;
  }

  /// Expects the preview of picture `at` to show the show's frames sooner or later, its fades into
  /// the pictures beside it, and the card before it, too.
  void ExpectAsInTheFilm(const std::vector<std::string>& photos, size_t at) {
    host::ShowScenes scenes;
    ShowDepths depths;
    for (const std::string& photo : photos) {
      scenes.plans.push_back(PlanOf(photo));
      scenes.photos.push_back(Opened(photo));
      depths.photos.push_back(photo);
    }
    constexpr int32_t kFade = 6, kCard = 12, kCardFade = 4;
    scenes.fades.assign(photos.size() - 1, kFade);
    scenes.title = {"Show", kCard, kCardFade};
    FadesAround fades;
    fades.depths = depths;
    if (at > 0) fades.before = scenes.plans[at - 1];
    if (at == 0) fades.title = "Show", fades.titleFrames = kCard;
    fades.in = at > 0 ? kFade : kCardFade;
    if (at + 1 < photos.size()) fades.after = scenes.plans[at + 1], fades.out = kFade;
    const host::RenderPlan plan = scenes.plans[at];
    const int32_t begin =
        scenes.title.Lead() + host::BeginningsOf(scenes.plans, scenes.fades)[at] - fades.Lead();
    host::ShowFilm film(KELTO_MODULE, std::move(scenes));

    Preview preview(KELTO_COMMAND, KELTO_MODULE);
    QImage shown;
    QObject::connect(
        &preview, &Preview::FrameDrawn, &preview,
        [&](const QImage& image, int32_t, bool exact) { shown = exact ? image : QImage(); });
    preview.SetPlan(plan, fades);
    const int32_t last = preview.Frames() - 1;
    for (const int32_t frame : {last, 0, 3, last - 10, last - 2}) {
      preview.Seek(frame);
      const host::FrameView view = film.Render(begin + frame, 1.0);
      const QImage filmed = QImage(view.pixels, view.size.width, view.size.height,
                                   int(view.rowBytes), QImage::Format_RGB32)
                                .copy();
      EXPECT_TRUE(QTest::qWaitFor([&] { return shown == filmed; }, kShowPatience))
          << "picture " << at << ", frame " << frame;
    }
  }

  test::TempFolder folder_;
  const std::string flat_ = folder_ / "flat.bmp", deep_ = folder_ / "deep.png",
                    glass_ = folder_ / "glass.png";
};

TEST_F(ShowDepthPreview, APictureOfEightBitsIsDrawnAsTheDeepShowHasIt) {
  ExpectAsInTheFilm({flat_, flat_, deep_}, 0);
}

TEST_F(ShowDepthPreview, EveryPictureOfAMixedShowIsDrawnAsTheFilmHasIt) {
  for (size_t at = 0; at < 3; ++at) ExpectAsInTheFilm({deep_, flat_, glass_}, at);
}

TEST_F(ShowDepthPreview, AShowOfEightBitsIsTheEffects) { ExpectAsInTheFilm({flat_, flat_}, 1); }

TEST_F(ShowDepthPreview, IsFoundOncePerPhotoAndForgottenWithIt) {
  ShowDepth depth(KELTO_COMMAND, KELTO_MODULE, nullptr);
  int changes = 0;
  QObject::connect(&depth, &ShowDepth::Changed, &depth, [&] { ++changes; });
  const auto becomes = [&](bool deep) {
    return QTest::qWaitFor([&] { return depth.IsDeep() == deep; }, kShowPatience);
  };
  const std::string missing = folder_ / "missing.png";
  depth.SetShow({true, false, {missing, flat_, glass_}});
  EXPECT_FALSE(depth.IsDeep()) << "nothing is known yet";
  EXPECT_TRUE(becomes(true));
  EXPECT_EQ(changes, 1);
  depth.SetShow({false, false, {missing, flat_, glass_}});
  EXPECT_FALSE(depth.IsDeep()) << "the effect alone can draw it";
  depth.SetShow({true, false, {flat_, glass_}});
  EXPECT_TRUE(depth.IsDeep()) << "at once, since the photos are known";
  depth.SetShow({true, false, {flat_}});
  EXPECT_FALSE(depth.IsDeep());
  depth.SetShow({true, true, {flat_}});
  EXPECT_TRUE(depth.IsDeep()) << "for linear light, say";
}

}  // namespace
}  // namespace kelto::editor
