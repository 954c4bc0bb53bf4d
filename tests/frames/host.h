// A host in a few lines: the loaded module, one effect, a photograph and an output image.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "platform/hfx.h"
#include "runtime/hfx/host.h"
#include "state/module.h"
#include "tests/support/photo.h"
#include "tests/support/picture.h"

namespace kelto::test {

/// The filter list's indexes.
enum Filter : int32_t {
  kRealTime,
  kTriangle,
  kQuadratic,
  kCubic,
  kCatmull,
  kGaussian,
  kHiQual,
  kUltraQual
};

inline hfx::Module& LoadedModule() {
  static const std::unique_ptr<hfx::Module> module = [] {
    std::string error;
    auto loaded = hfx::Module::Load(KELTO_MODULE, &error);
    if (!loaded) throw std::runtime_error(error);
    loaded->startUp();
    return loaded;
  }();
  return *module;
}

class HostedEffect {
 public:
  HostedEffect(int32_t width, int32_t height, int32_t colorspace = hfxColorspaceYCbCr,
               int32_t padding = 0, bool bottomUp = false)
      : input(width, height, colorspace, padding, bottomUp),
        output(width, height, colorspace, padding, bottomUp) {
    std::string error;
    effect_ = hfx::Effect::Create(LoadedModule(), 1, &error);
    if (!effect_) throw std::runtime_error(error);
    state.displayAspect = static_cast<double>(width) / height;
    SetKey("display", 0.0, int32_t{1});
    hfx::SetActiveKey(parameter("display"), 0);
    std::vector<uint8_t> row(static_cast<size_t>(width) * 4, 128);
    for (int32_t y = 0; y < height; ++y) {
      std::memcpy(input.row(y), row.data(), input.rowBytes());
    }
  }

  hfxInstance_v1& instance() { return effect_->instance(); }
  hfxParameter& parameter(const char* key) { return *instance().FindParameter(key); }
  template <typename Value>
  void SetKey(const char* key, double time, const Value& value) {
    hfx::SetKey(parameter(key), time, &value, sizeof value);
  }
  void SetList(const char* key, int32_t value) {
    SetKey(key, 0.0, value);
    hfx::SetActiveKey(parameter(key), 0);
  }
  /// One key of the view; a still view needs two equal ones, as the effect honours no single key.
  void SetView(double time, double zoom, double x, double y) {
    const double xy[2] = {x, y};
    SetKey("position", time, xy);
    SetKey("size", time, zoom);
    SetKey("invelocity", time, int32_t{0});
    SetKey("outvelocity", time, int32_t{0});
  }
  void SetStillView(double zoom, double x = 0.0, double y = 0.0) {
    SetView(0.0, zoom, x, y);
    SetView(1.0, zoom, x, y);
  }
  void SetPhoto(const std::string& path) {
    std::vector<char> record(2048);
    std::memcpy(record.data(), path.data(), path.size());
    instance().SetInstanceData(record.data(), 2048);
  }
  void ParametersChanged() { effect_->ParametersChanged(); }

  /// Renders `frame` into `output`; true when the module reports success.
  bool Render(int32_t frame = 0) { return RenderInto(frame, output); }
  bool RenderInto(int32_t frame, Picture& to) {
    state.currentFrame = frame;
    std::string error;
    instance().BeginRender();
    const bool rendered = effect_->Render(state, input.image(), to.image(), &error);
    instance().EndRender();
    EXPECT_TRUE(rendered) << error;
    return rendered;
  }

  hfx::RenderState state;
  Picture input, output;

 private:
  std::unique_ptr<hfx::Effect> effect_;
};

}  // namespace kelto::test
