#include "editor/preview/preview.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <algorithm>
#include <memory>

#include "host/base/error.h"
#include "host/deep/shown_film.h"
#include "host/effect/deep_photo.h"
#include "host/effect/photo.h"
#include "host/frames/effect_session.h"
#include "host/jobs/show_film.h"
#include "host/jobs/slideshow.h"
#include "host/jobs/title_frames.h"
#include "host/plan/default_plan.h"
#include "tests/support/photo.h"

namespace kelto::editor {
namespace {

using testing::Each;
using testing::HasSubstr;

/// Milliseconds; far more than anything takes, for machines that do other work.
constexpr int kPatience = 60000;

class PreviewProcess : public testing::Test {
 protected:
  PreviewProcess() {
    static int count = 1;
    static char name[] = "test";
    static char* arguments[] = {name, nullptr};
    if (QCoreApplication::instance() == nullptr) new QCoreApplication(count, arguments);
    test::WritePhoto(folder_ / "photo.bmp", 240, 160, [](int32_t x, int32_t y) {
      return test::Rgb{uint8_t(x), uint8_t(y + x / 2), uint8_t(90 + y / 3)};
    });
    plan_ = host::DefaultPlan(folder_ / "photo.bmp");
    plan_.format.size = {96, 54};
    plan_.frames = 25;
    host::SetMove(plan_, View{1.0, 0.0, 0.0}, View{4.0, 0.2, -0.1});
  }

  void Open(const QString& program = KELTO_COMMAND) {
    preview_ = std::make_unique<Preview>(program, KELTO_MODULE);
    QObject::connect(preview_.get(), &Preview::FrameDrawn, preview_.get(),
                     [this](const QImage& image, int32_t frame, bool exact) {
                       frame_ = {image, frame, exact};
                       drawn_.push_back(frame);
                     });
    QObject::connect(preview_.get(), &Preview::Failed, preview_.get(),
                     [this](const QString& reason) { failures_.push_back(reason.toStdString()); });
    QObject::connect(preview_.get(), &Preview::WayFound, preview_.get(),
                     [this](const FilmWay& way) { way_ = way; });
    QObject::connect(preview_.get(), &Preview::PhotoRead, preview_.get(),
                     [this](const QImage& photo) { photos_.push_back(photo); });
  }

  bool ShowsExactly(int32_t frame) {
    return QTest::qWaitFor([&] { return frame_.exact && frame_.number == frame; }, kPatience);
  }

  /// The frame as the film has it.
  QImage OfFilm(const host::RenderPlan& plan, int32_t number) {
    host::EffectSession session(KELTO_MODULE, plan, host::OpenPhoto(plan.photo),
                                host::PixelLayout::kBGRA);
    return ImageOf(session.Render(number));
  }

  static QImage ImageOf(const host::FrameView& view) {
    return QImage(view.pixels, view.size.width, view.size.height, int(view.rowBytes),
                  QImage::Format_RGB32)
        .copy();
  }

  test::TempFolder folder_;
  host::RenderPlan plan_;
  std::unique_ptr<Preview> preview_;
  struct {
    QImage image;
    int32_t number = -1;
    bool exact = false;
  } frame_;
  std::vector<int32_t> drawn_;
  std::vector<std::string> failures_;
  std::vector<QImage> photos_;
  FilmWay way_;
};

TEST_F(PreviewProcess, ShowsTheFilmsFramesToTheLastBit) {
  Open();
  preview_->SetPlan(plan_);
  for (const int32_t frame : {0, 7, 24}) {
    preview_->Seek(frame);
    ASSERT_TRUE(ShowsExactly(frame));
    EXPECT_EQ(frame_.image, OfFilm(plan_, frame));
  }
  preview_->Seek(900);
  EXPECT_EQ(preview_->Frame(), 24) << "the nearest that there is";
}

TEST_F(PreviewProcess, ShowsFieldsAsTheyWillBe) {
  plan_.format.fields = host::FieldOrder::kTopFirst;
  plan_.format.size = {96, 56};
  Open();
  preview_->SetPlan(plan_);
  preview_->Seek(12);
  ASSERT_TRUE(ShowsExactly(12));
  EXPECT_EQ(frame_.image, OfFilm(plan_, 12));
}

TEST_F(PreviewProcess, ShowsTransparencyAndLinearLightAsTheFilmDoes) {
  QImage glass(60, 40, QImage::Format_ARGB32);
  for (int y = 0; y < 40; ++y) {
    for (int x = 0; x < 60; ++x) glass.setPixel(x, y, qRgba(255, 255, 255, x % 2 == 0 ? 255 : 100));
  }
  plan_.photo = folder_ / "glass.png";
  ASSERT_TRUE(glass.save(QString::fromStdString(plan_.photo)));
  plan_.Set("bgcolor", host::BackgroundFor({255, 0, 0}));
  host::Photo photo = host::OpenPhoto(plan_.photo);
  host::FindDepth(photo);
  photo.transparent = host::IsTransparent(photo);
  Open();
  for (const bool linear : {false, true, false}) {
    plan_.linearLight = linear;
    frame_ = {};
    preview_->SetPlan(plan_);
    preview_->Seek(12);
    ASSERT_TRUE(ShowsExactly(12));
    host::ShownFilm film(KELTO_MODULE, plan_, photo);
    EXPECT_EQ(frame_.image, ImageOf(film.Render(12, 1.0)));
    const QRgb seen = frame_.image.pixel(48, 27);
    EXPECT_EQ(qRed(seen), 255) << "the background through the glass";
    EXPECT_GT(qGreen(seen), 90);
    EXPECT_LT(qGreen(seen), 250);
  }
}

TEST_F(PreviewProcess, ShowsFadesTitleAndCaptionsOfAShowAsItsFilmDoes) {
  test::WritePhoto(folder_ / "other.bmp", 200, 150, [](int32_t x, int32_t y) {
    return test::Rgb{uint8_t(200 - x), uint8_t(y), uint8_t(x)};
  });
  host::RenderPlan other = plan_;
  other.photo = folder_ / "other.bmp";
  other.caption.text = "There";
  plan_.caption.text = "Here";
  for (const bool dip : {false, true}) {
    const host::FadeKind kind = dip ? host::FadeKind::kDip : host::FadeKind::kCross;
    // The film: a card, this picture, the other one.
    std::vector<host::RenderPlan> plans = {plan_, other};
    host::PlaceCaptions(plans, {10}, 6);
    host::ShowFilm film(KELTO_MODULE, {plans,
                                       {host::OpenPhoto(plan_.photo), host::OpenPhoto(other.photo)},
                                       {10},
                                       kind,
                                       {"Summer", 20, 6}});
    FadesAround fades;
    fades.after = other;
    fades.out = 10;
    fades.dip = dip;
    fades.title = "Summer";
    fades.titleFrames = 20;
    fades.in = 6;
    Open();
    frame_ = {};
    preview_->SetPlan(plan_, fades);
    EXPECT_EQ(preview_->Frames(), 14 + 25);
    ASSERT_TRUE(ShowsExactly(14)) << "it begins with the picture";
    // The card's letters come and stay, then they fade into the picture.
    for (const int32_t frame : {0, 4, 13, 14, 16, 19, 20, 24, 29, 33, 38}) {
      preview_->Seek(frame);
      ASSERT_TRUE(ShowsExactly(frame));
      EXPECT_EQ(frame_.image, ImageOf(film.Render(frame, 1.0))) << frame;
    }
    // The other picture, behind this one.
    fades = {};
    fades.before = plan_;
    fades.in = 10;
    fades.dip = dip;
    frame_ = {};
    preview_->SetPlan(other, fades);
    for (const int32_t frame : {0, 9, 10, 17}) {
      preview_->Seek(frame);
      ASSERT_TRUE(ShowsExactly(frame));
      EXPECT_EQ(frame_.image, ImageOf(film.Render(14 + 15 + frame, 1.0))) << frame;
    }
  }
  EXPECT_TRUE(failures_.empty());
}

TEST_F(PreviewProcess, ShowsAPictureAloneWhereTheOneBesideItCannotBeRead) {
  host::RenderPlan missing = plan_;
  missing.photo = folder_ / "missing.bmp";
  FadesAround fades;
  fades.before = missing;
  fades.in = 10;
  Open();
  preview_->SetPlan(plan_, fades);
  ASSERT_TRUE(ShowsExactly(0));
  EXPECT_EQ(frame_.image, OfFilm(plan_, 0));
  EXPECT_TRUE(failures_.empty());
}

TEST_F(PreviewProcess, FollowsAPlanThatChanges) {
  Open();
  preview_->SetPlan(plan_);
  preview_->Seek(20);
  ASSERT_TRUE(ShowsExactly(20));
  frame_.exact = false;
  host::SetMove(plan_, View{2.0, 0.0, 0.0}, View{3.0, -0.2, 0.1});
  preview_->SetPlan(plan_);
  ASSERT_TRUE(ShowsExactly(20));
  EXPECT_EQ(frame_.image, OfFilm(plan_, 20));
  ASSERT_TRUE(QTest::qWaitFor([&] { return !photos_.empty(); }, kPatience));
  EXPECT_EQ(photos_.size(), 1u) << "the photo is read once";
}

TEST_F(PreviewProcess, DrawsTheLastOfManyChangesAndNotEachOfThem) {
  Open();
  preview_->SetPlan(plan_);
  ASSERT_TRUE(ShowsExactly(0));
  drawn_.clear();
  frame_.exact = false;
  constexpr int kChanges = 400;
  for (int change = 1; change <= kChanges; ++change) {
    host::SetMove(plan_, View{1.0 + change / 400.0, 0.0, 0.0}, View{3.0, 0.0, 0.0});
    preview_->SetPlan(plan_);
    if (change % 100 == 0) QCoreApplication::processEvents();
  }
  ASSERT_TRUE(ShowsExactly(0));
  EXPECT_EQ(frame_.image, OfFilm(plan_, 0));
  EXPECT_LT(drawn_.size(), size_t{kChanges} / 10);
}

TEST_F(PreviewProcess, DrawsLargeFilmsSmallerWhileTheyChange) {
  plan_.format.size = {960, 540};
  Open();
  preview_->SetBox({200, 200});
  bool small = false;
  QObject::connect(preview_.get(), &Preview::FrameDrawn, preview_.get(),
                   [&](const QImage& image, int32_t, bool exact) {
                     if (!exact) small = small || image.size() == QSize(200, 112);
                   });
  preview_->SetPlan(plan_);
  ASSERT_TRUE(ShowsExactly(0));
  frame_.exact = false;
  host::SetMove(plan_, View{2.0, 0.0, 0.0}, View{3.0, -0.2, 0.1});
  preview_->SetPlan(plan_);
  ASSERT_TRUE(ShowsExactly(0));
  EXPECT_TRUE(small);
  EXPECT_EQ(frame_.image, OfFilm(plan_, 0)) << "at rest it is the film's own";
}

TEST_F(PreviewProcess, FindsTheWayOfTheFilm) {
  Open();
  preview_->SetPlan(plan_);
  ASSERT_TRUE(QTest::qWaitFor([&] { return way_.size() == 25; }, kPatience));
  EXPECT_EQ(way_.front().seconds, 0.0);
  EXPECT_NEAR(way_.back().seconds, 24.0 / 25.0, 1e-9);
  EXPECT_NEAR(way_.front().part.width, 240.0, 0.01);
  EXPECT_NEAR(way_.back().part.width, 60.0, 0.01);
  EXPECT_GT(way_[12].speed, way_[1].speed) << "it begins gently";
}

TEST_F(PreviewProcess, PlaysToTheEndAndPauses) {
  Open();
  plan_.format.rate = {50, 1};
  preview_->SetPlan(plan_);
  ASSERT_TRUE(ShowsExactly(0));
  QSignalSpy playing(preview_.get(), &Preview::PlayingChanged);
  drawn_.clear();
  preview_->Play();
  EXPECT_TRUE(preview_->Playing());
  ASSERT_TRUE(QTest::qWaitFor([&] { return !preview_->Playing(); }, kPatience));
  ASSERT_TRUE(ShowsExactly(24));
  EXPECT_TRUE(std::is_sorted(drawn_.begin(), drawn_.end()));
  ASSERT_EQ(playing.size(), 2);
  EXPECT_TRUE(playing[0][0].toBool());
  EXPECT_FALSE(playing[1][0].toBool());
}

TEST_F(PreviewProcess, LoopsUntilItIsPaused) {
  Open();
  plan_.frames = 5;
  plan_.format.rate = {50, 1};
  preview_->SetLoop(true);
  preview_->SetPlan(plan_);
  preview_->Play();
  ASSERT_TRUE(
      QTest::qWaitFor([&] { return !std::is_sorted(drawn_.begin(), drawn_.end()); }, kPatience));
  preview_->Pause();
  EXPECT_FALSE(preview_->Playing());
  EXPECT_TRUE(ShowsExactly(preview_->Frame()));
}

TEST_F(PreviewProcess, OpensAnotherPhoto) {
  Open();
  preview_->SetPlan(plan_);
  ASSERT_TRUE(ShowsExactly(0));
  ASSERT_TRUE(QTest::qWaitFor([&] { return photos_.size() == 1; }, kPatience));
  frame_.exact = false;
  test::WritePhoto(folder_ / "other.bmp", 100, 200, [](int32_t x, int32_t) {
    return test::Rgb{uint8_t(2 * x), 0, 200};
  });
  plan_.photo = folder_ / "other.bmp";
  preview_->SetPlan(plan_);
  ASSERT_TRUE(ShowsExactly(0));
  EXPECT_EQ(frame_.image, OfFilm(plan_, 0));
  ASSERT_TRUE(QTest::qWaitFor([&] { return photos_.size() == 2; }, kPatience));
  EXPECT_EQ(photos_[1].size(), QSize(100, 200));
}

// Those of a camera take a second to read whole, and a screen shows a tenth of their pixels.
TEST_F(PreviewProcess, ReadsALargePhotoQuicklyAndWholeOnDemand) {
  QImage photo(3000, 2000, QImage::Format_RGB32);
  for (int y = 0; y < photo.height(); ++y) {
    auto* row = reinterpret_cast<QRgb*>(photo.scanLine(y));
    for (int x = 0; x < photo.width(); ++x) row[x] = qRgb(x / 12, y / 8, 120);
  }
  plan_.photo = folder_ / "large.jpg";
  ASSERT_TRUE(photo.save(QString::fromStdString(plan_.photo), nullptr, 95));
  Open();
  preview_->SetPlan(plan_);
  ASSERT_TRUE(QTest::qWaitFor([&] { return photos_.size() == 1; }, kPatience));
  EXPECT_EQ(photos_[0].size(), QSize(1500, 1000)) << "more than a million pixels";
  preview_->WantWholePhoto();
  ASSERT_TRUE(QTest::qWaitFor([&] { return photos_.size() == 2; }, kPatience));
  ASSERT_EQ(photos_[1].size(), photo.size());
  EXPECT_NEAR(qGreen(photos_[0].pixel(700, 500)), qGreen(photos_[1].pixel(1400, 1000)), 3);
  // There is no more of it, and frames are the film's as ever.
  preview_->WantWholePhoto();
  ASSERT_TRUE(ShowsExactly(0));
  EXPECT_EQ(frame_.image, OfFilm(plan_, 0));
  EXPECT_EQ(photos_.size(), 2u);
  EXPECT_TRUE(failures_.empty());
}

TEST_F(PreviewProcess, SaysWhatIsWrongAsTheCommandDoesAndGoesOnAfterwards) {
  host::RenderPlan missing = plan_;
  missing.photo = folder_ / "missing.jpg";
  Open();
  preview_->SetPlan(missing);
  ASSERT_TRUE(QTest::qWaitFor([&] { return !failures_.empty(); }, kPatience));
  try {
    host::OpenPhoto(missing.photo);
    FAIL();
  } catch (const host::Error& error) {
    EXPECT_EQ(failures_.front(), error.what());
  }
  QTest::qWait(50);
  EXPECT_EQ(failures_.size(), 1u) << "once";
  preview_->SetPlan(plan_);
  EXPECT_TRUE(ShowsExactly(0));
}

TEST_F(PreviewProcess, SaysThatTheProcessEndedAndStartsAnotherWithTheNextChange) {
  Open("/bin/false");
  for (size_t change = 1; change <= 3; ++change) {
    preview_->SetPlan(plan_);
    ASSERT_TRUE(QTest::qWaitFor([&] { return failures_.size() == change; }, kPatience));
    EXPECT_THAT(failures_.back(), HasSubstr("ended with code 1"));
  }
}

TEST_F(PreviewProcess, SaysThatTheProgramIsNotThere) {
  Open("/nowhere/kelto-preview");
  preview_->SetPlan(plan_);
  ASSERT_TRUE(QTest::qWaitFor([&] { return !failures_.empty(); }, kPatience));
  EXPECT_THAT(failures_, Each(HasSubstr("/nowhere/kelto-preview: cannot be started")));
}

TEST_F(PreviewProcess, EndsWithTheEditor) {
  QProcess process;
  process.start(KELTO_COMMAND, {KELTO_MODULE});
  ASSERT_TRUE(process.waitForStarted(kPatience));
  process.closeWriteChannel();
  ASSERT_TRUE(process.waitForFinished(kPatience));
  EXPECT_EQ(process.exitCode(), 0);
}

TEST_F(PreviewProcess, StartedByHandSaysWhatToRun) {
  QProcess process;
  process.start(KELTO_COMMAND, QStringList());
  ASSERT_TRUE(process.waitForFinished(kPatience));
  EXPECT_EQ(process.exitCode(), 2);
  EXPECT_THAT(process.readAllStandardError().toStdString(), HasSubstr("run kelto-edit"));
}

}  // namespace
}  // namespace kelto::editor
