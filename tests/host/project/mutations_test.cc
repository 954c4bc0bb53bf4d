// Damaged projects: each is refused in one line, or is a project that renders.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "host/base/error.h"
#include "host/frames/effect_session.h"
#include "host/project/project_file.h"
#include "host/project/schema.h"
#include "host/track/keyed_plan.h"
#include "tests/host/project/check_project_text.h"
#include "tests/host/project/random_plan.h"
#include "tests/support/photo.h"

namespace kelto::test {
namespace {

using nlohmann::json;

/// Changes bytes, pieces and values of a project's text.
class Mutator {
 public:
  explicit Mutator(uint32_t seed) : random_(seed) {}

  std::string Mutate(std::string text) {
    const int32_t changes = 1 + Below(3);
    for (int32_t i = 0; i < changes; ++i)
      text = Below(3) == 0 ? ChangeBytes(text) : ChangeTree(text);
    return text;
  }

 private:
  int32_t Below(int32_t end) { return std::uniform_int_distribution<int32_t>(0, end - 1)(random_); }
  size_t Place(const std::string& text) { return Below(static_cast<int32_t>(text.size()) + 1); }

  std::string ChangeBytes(std::string text) {
    static const char* const kPieces[] = {"{",
                                          "}",
                                          "[",
                                          "]",
                                          "\"",
                                          ",",
                                          ":",
                                          "null",
                                          "-",
                                          "1e308",
                                          "1e-400",
                                          "\\u0000",
                                          "\xf0\x9f\x8e\x9e",
                                          "\xc3",
                                          "0.",
                                          "//"};
    const size_t at = Place(text);
    switch (Below(5)) {
      case 0:
        if (at < text.size()) text[at] = static_cast<char>(Below(256));
        break;
      case 1:
        text.erase(at, Below(20));
        break;
      case 2:
        text.insert(at, kPieces[Below(std::size(kPieces))]);
        break;
      case 3:
        text.insert(at, text.substr(Place(text), Below(200)));
        break;
      default:
        text.resize(at);
    }
    return text;
  }

  std::string ChangeTree(const std::string& text) {
    json document = json::parse(text, nullptr, false);
    if (document.is_discarded() || document.empty()) return text;
    std::vector<json*> values;
    Collect(document, values);
    json& place = *values[Below(static_cast<int32_t>(values.size()))];
    switch (Below(6)) {
      case 0:
        place = *values[Below(static_cast<int32_t>(values.size()))];
        break;
      case 1:
        if (place.is_object()) place["lens"] = 1;
        break;
      case 2:
        if (place.is_object() && !place.empty()) place.erase(place.begin());
        if (place.is_array() && !place.empty()) place.erase(place.begin());
        break;
      case 3:
        if (place.is_array() && !place.empty()) place.push_back(json(place[0]));
        break;
      case 4:
        if (place.is_number()) place = place.get<double>() * (Below(5) - 2);
        break;
      default:
        place = Odd();
    }
    return document.dump(-1, ' ', false, json::error_handler_t::replace);
  }

  static void Collect(json& value, std::vector<json*>& values) {
    values.push_back(&value);
    if (!value.is_structured()) return;
    for (json& part : value) Collect(part, values);
  }

  json Odd() {
    static const json kOdd[] = {nullptr,
                                true,
                                0,
                                -1,
                                1,
                                3,
                                0.5,
                                1e9,
                                1e300,
                                -1e-300,
                                "",
                                "x",
                                "Out: Hold",
                                json::array(),
                                json::object(),
                                json::array({0, 0}),
                                UINT64_MAX,
                                INT64_MIN};
    return kOdd[Below(std::size(kOdd))];
  }

  std::mt19937 random_;
};

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
