// Damaged projects: each is refused in one line, or is a project that renders.
#include <gtest/gtest.h>

#include "host/base/error.h"
#include "host/frames/effect_session.h"
#include "host/project/project_file.h"
#include "host/track/keyed_plan.h"
#include "tests/host/project/check_project_text.h"
#include "tests/host/project/mutator.h"
#include "tests/host/project/random_plan.h"
#include "tests/support/photo.h"

namespace kelto::test {
namespace {

class Mutations : public testing::Test {
 protected:
  Mutations() {
    WritePhoto(folder_ / "photo.bmp", 40, 30, [](int32_t x, int32_t y) {
      return Rgb{uint8_t(6 * x), uint8_t(8 * y), 90};
    });
    RandomPlan random(7, 3);
    for (int i = 0; i < 20; ++i) {
      host::RenderPlan plan = random.Make();
      plan.photo = "photo.bmp";
      texts_.push_back(host::ProjectText("some.json", plan));
    }
    texts_.push_back(host::ProjectText("some.json", host::DefaultPlan("photo.bmp")));
    texts_.push_back(R"({"image": "photo.bmp", "film": {"seconds": 2, "displayAspect": 1.5},
      "parameters": {"size": [{"frame": 0, "value": 1}, {"seconds": 1, "value": 2}],
                     "bgcolor": {"value": "#102040"}}})");
    texts_.push_back(R"({"image": "photo.bmp", "motion": "fly", "views": [
      {"view": "0,0,20,15", "hold": 1, "go": 2}, {"view": "2@0.1,0", "in": "constant"},
      {"view": "10,5,8,8", "out": "hold"}, {"view": "0.5"}]})");
  }

  TempFolder folder_;
  std::vector<std::string> texts_;
};

TEST_F(Mutations, DamagedProjectsAreRefusedOrRender) {
#if defined(_WIN32)
  constexpr int kCount = 1000;  // a test for what differs there, at Wine's pace
#elif defined(__SANITIZE_ADDRESS__)
  constexpr int kCount = 2500;  // a fuzz target makes the same check there, for a minute
#else
  constexpr int kCount = 10000;
#endif
  host::RenderPlan first = host::DefaultPlan(folder_ / "photo.bmp");
  first.format.size = {32, 24};
  host::EffectSession session(KELTO_MODULE, first, host::OpenPhoto(first.photo),
                              host::PixelLayout::kBGRA);
  Mutator mutator(20261121);
  int accepted = 0;
  for (int i = 0; i < kCount; ++i) {
    const std::string text = mutator.Mutate(texts_[i % texts_.size()]);
    SCOPED_TRACE(text);
    CheckProjectText(reinterpret_cast<const uint8_t*>(text.data()), text.size());
    host::RenderPlan plan;
    try {
      plan = host::ParseProject(text, "some.json");
    } catch (const host::Error&) {
      continue;
    }
    ++accepted;
    try {
      plan = host::KeyedPlan(plan, {40, 30});
    } catch (const host::Error&) {
      continue;  // a part of the photo that the effect cannot show
    }
    for (const host::Setting& setting : plan.settings) session.Change(setting);
    session.Render(i % 3 == 0 ? 0 : first.frames / 2);
  }
  // Both ways were gone.
  EXPECT_GT(accepted, kCount / 20);
  EXPECT_LT(accepted, kCount * 9 / 10);
}

}  // namespace
}  // namespace kelto::test
