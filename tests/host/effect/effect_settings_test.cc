#include "host/effect/effect_settings.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "tests/support/photo.h"

namespace kelto::host {
namespace {

std::vector<uint8_t> ValueOf(hfx::Effect& effect, const char* key) {
  const hfxParameter& parameter = *effect.instance().FindParameter(key);
  std::vector<uint8_t> value(hfx::ValueSizeOf(parameter));
  EXPECT_TRUE(hfx::BoundValueOf(parameter, value.data(), hfx::ValueSizeOf(parameter)));
  return value;
}

TEST(EffectSettings, OutliveTheLookForThePicture) {
  const test::TempFolder folder;
  test::WritePhoto(folder / "photo.bmp", 90, 60, [](int32_t x, int32_t y) {
    return test::Rgb{uint8_t(2 * x), uint8_t(y), 50};
  });
  const Photo photo = OpenPhoto(folder / "photo.bmp");
  const auto module = hfx::Module::Load(KELTO_MODULE, nullptr);
  ASSERT_TRUE(module);
  const auto effect = hfx::Effect::Create(*module, 1, nullptr);
  ASSERT_TRUE(effect);
  SetPhoto(*effect, photo);
  // Other values than those that the look needs.
  Apply(*effect, {"display", std::string("Display: Source"), {}, -1});
  Apply(*effect, {"compositeover", std::string("Background: Video"), {}, -1});
  Apply(*effect, {"bgcolor", std::array<double, 3>{0.2, 0.4, 0.6}, {}, -1});
  constexpr const char* kKeys[] = {"display", "compositeover", "bgcolor"};
  std::vector<std::vector<uint8_t>> before;
  for (const char* key : kKeys) before.push_back(ValueOf(*effect, key));

  hfx::ImageBuffer input(32, 32, hfxColorspaceRGB), output(32, 32, hfxColorspaceRGB);
  EXPECT_TRUE(HasPicture(*effect, photo, {}, hfxPlayModeRender, *input.image(), output));
  for (size_t i = 0; i < before.size(); ++i) {
    EXPECT_EQ(ValueOf(*effect, kKeys[i]), before[i]) << kKeys[i];
  }
}

}  // namespace
}  // namespace kelto::host
