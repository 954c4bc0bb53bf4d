#include "host/jobs/scene_renderer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

#include "host/base/error.h"
#include "host/plan/default_plan.h"
#include "runtime/hfx/host.h"
#include "tests/support/photo.h"

namespace kelto::host {
namespace {

using testing::HasSubstr;

/// A film of one photo that others replace or change.
class ScenePhoto : public testing::Test {
 protected:
  ScenePhoto() {
    hfx::SetConsole([](const std::string&) {});
    Write(photo_, 90, 200);
    RenderPlan plan = DefaultPlan(photo_);
    plan.format.size = {48, 32};
    plan.frames = 3;
    list_ = {KELTO_MODULE, PixelLayout::kBGRA, {{plan, {0, 3}}}};
  }
  void TearDown() override { hfx::SetConsole({}); }

  static void Write(const std::string& path, int32_t width, uint8_t level) {
    test::WritePhoto(path, width, 60, [level](int32_t, int32_t) {
      return test::Rgb{level, level, level};
    });
  }
  static std::vector<uint8_t> Frame(SceneRenderer& renderer, int32_t number) {
    const FrameView view = renderer.Render(0, number);
    return {view.pixels, view.pixels + view.rowBytes * view.size.height};
  }
  std::string ErrorOfRendering() const {
    SceneRenderer renderer(list_, nullptr);
    try {
      renderer.Render(0, 0);
    } catch (const Error& error) {
      return error.what();
    }
    return "none";
  }

  test::TempFolder folder_;
  const std::string photo_ = folder_ / "photo.bmp";
  SceneList list_;
};

TEST_F(ScenePhoto, ThatWasNotedIsRendered) {
  NoteFiles(list_);
  EXPECT_EQ(ErrorOfRendering(), "none");
}

TEST_F(ScenePhoto, ThatWasReplacedSinceItWasNotedFailsTheFilm) {
  NoteFiles(list_);
  Write(folder_ / "other.bmp", 90, 50);
  std::filesystem::rename(folder_ / "other.bmp", photo_);
  EXPECT_THAT(ErrorOfRendering(), HasSubstr(photo_ + ": was changed or replaced"));
}

TEST_F(ScenePhoto, ThatWasRewrittenSinceItWasNotedFailsTheFilm) {
  NoteFiles(list_);
  Write(photo_, 70, 200);
  EXPECT_THAT(ErrorOfRendering(), HasSubstr(photo_ + ": was changed or replaced"));
}

TEST_F(ScenePhoto, ThatIsGoneIsNamed) {
  NoteFiles(list_);
  std::filesystem::remove(photo_);
  EXPECT_THAT(ErrorOfRendering(), HasSubstr(photo_));
}

TEST_F(ScenePhoto, ThatIsOnceReadMayBeReplacedOrGo) {
  NoteFiles(list_);
  SceneRenderer renderer(list_, nullptr);
  const auto first = Frame(renderer, 0);
  Write(folder_ / "other.bmp", 90, 50);
  std::filesystem::rename(folder_ / "other.bmp", photo_);
  EXPECT_EQ(Frame(renderer, 1), first);
  std::filesystem::remove(photo_);
  EXPECT_EQ(Frame(renderer, 2), first);
}

}  // namespace
}  // namespace kelto::host
