// Plans with every parameter, by chance.
#pragma once

#include <cmath>
#include <random>
#include <string>

#include "catalogue/parameters.h"
#include "host/plan/default_plan.h"

namespace kelto::test {

class RandomPlan {
 public:
  explicit RandomPlan(uint32_t seed, int32_t maxKeys = 12) : random_(seed), maxKeys_(maxKeys) {}

  host::RenderPlan Make() {
    host::RenderPlan plan =
        host::DefaultPlan("folder/photo " + std::to_string(Whole(999)) + ".jpg");
    plan.format.size = {Whole(16382) + 2, Whole(16382) + 2};
    plan.format.rate =
        Pick<host::FrameRate>({{25, 1}, {30000, 1001}, {24000, 1001}, {1, 2}, {60, 1}});
    plan.format.fields =
        Pick<host::FieldOrder>({host::FieldOrder::kProgressive, host::FieldOrder::kTopFirst,
                                host::FieldOrder::kBottomFirst});
    plan.format.sampleAspect = Pick<host::SampleAspect>({{1, 1}, {64, 45}, {8, 9}, {4096, 4095}});
    plan.frames = Whole(9'999'999) + 1;
    plan.playMode = Whole(255);
    plan.rotate = 90 * Whole(3);
    plan.transparent = Whole(1) == 1;
    plan.linearLight = Whole(1) == 1;
    if (Whole(1) == 1) plan.over = "clips/street.mp4";
    if (Whole(1) == 1) plan.audio = "music.flac";
    for (const catalogue::Parameter& parameter : catalogue::kParameters) {
      plan.SettingOf(parameter.key) = SettingOf(parameter);
    }
    if (plan.over.empty() && Whole(1) == 1) plan.beside = host::Beside::kBlur;
    if (Whole(2) == 0) plan.caption.text = "Gr\u00fc\u00dfe\n\u05e9\u05dc\u05d5\u05dd \"quoted\"";
    plan.motion = Pick<host::MotionLaw>(
        {host::MotionLaw::kLinear, host::MotionLaw::kSteady, host::MotionLaw::kFly});
    if (Whole(1) == 1) plan.SetTour(Tour());
    plan.loop = !plan.views.empty() && Whole(3) == 0;
    if (plan.loop) host::CloseTour(plan.views);
    return plan;
  }

  int32_t Whole(int32_t last) { return std::uniform_int_distribution<int32_t>(0, last)(random_); }

 private:
  template <typename Value>
  Value Pick(std::initializer_list<Value> values) {
    return values.begin()[Whole(static_cast<int32_t>(values.size()) - 1)];
  }

  /// Numbers with few digits and with all of them, tiny ones too.
  double Real(double least, double most) {
    const double value = std::uniform_real_distribution<double>(least, most)(random_);
    switch (Whole(4)) {
      case 0:
        return std::clamp(std::round(value), std::ceil(least), most);
      case 1:
        return std::clamp(std::round(value * 100) / 100, least, most);
      case 2:
        return std::clamp(std::ldexp(value, -Whole(1000)), least, most);
      default:
        return value;
    }
  }

  host::GivenView GivenView() {
    if (Whole(1) == 1) return View{Real(0.1, 20), Real(-100, 100), Real(-100, 100)};
    return host::PhotoRect{Real(-1e4, 1e4), Real(-1e4, 1e4), 1e-3 + Real(0, 1e4),
                           1e-3 + Real(0, 1e4)};
  }

  std::vector<host::TourView> Tour() {
    std::vector<host::TourView> tour(1 + Whole(5));
    for (host::TourView& one : tour) {
      one.view = GivenView();
      if (Whole(1) == 1) one.hold = Real(0, 100);
      if (Whole(1) == 1) one.go = host::kShortestGo + Real(0, 100);
      if (Whole(1) == 1)
        one.arrival = std::get<std::string>(Value(*catalogue::Find(key::kInVelocity)));
      if (Whole(1) == 1)
        one.departure = std::get<std::string>(Value(*catalogue::Find(key::kOutVelocity)));
    }
    tour.back().go = 0.0;
    return tour;
  }

  host::SettingValue Value(const catalogue::Parameter& parameter) {
    switch (parameter.kind) {
      case catalogue::Kind::kList:
        return parameter.entries[Whole(static_cast<int32_t>(parameter.entries.size()) - 1)].text;
      case catalogue::Kind::kNumber:
        return Real(parameter.least, parameter.most);
      case catalogue::Kind::kPoint:
        return std::array{Real(-100, 100), Real(-100, 100)};
      case catalogue::Kind::kColour:
        return std::array{Real(0, 1), Real(0, 1), Real(0, 1)};
      default:
        return Whole(1) == 1;
    }
  }

  host::Setting SettingOf(const catalogue::Parameter& parameter) {
    host::Setting setting{parameter.key, std::nullopt, {}, -1};
    const int32_t keys = Whole(3) == 0 ? 0 : Whole(maxKeys_);
    if (keys == 0) {
      setting.value = Value(parameter);
      return setting;
    }
    double time = Real(-0.5, 0.5);
    for (int32_t i = 0; i < keys; ++i) {
      setting.keys.push_back({time, Value(parameter)});
      time = std::nextafter(time + Real(0, 0.3), 1e9);
    }
    setting.activeKey = Whole(keys) - 1;
    return setting;
  }

  std::mt19937 random_;
  int32_t maxKeys_;
};

}  // namespace kelto::test
