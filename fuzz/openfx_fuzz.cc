// A random host of the open effects interface, as strict as the tests' own: parameters and images
// of any kind, actions in any order, windows, fields and scales that make no sense, memory that the
// host refuses. Whatever it does, no fault is noted, no byte outside an image is written, and every
// image and all memory is given back.
#include <dlfcn.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "adapters/openfx/actions.h"
#include "fuzz/byte_source.h"
#include "fuzz/host_photos.h"
#include "tests/openfx/strict_host.h"

namespace kelto::fuzz {
namespace {

using test::HostImage;
using test::StrictHost;

constexpr int kMostOpenFxSteps = 60;

class RandomOpenFxHost {
 public:
  explicit RandomOpenFxHost(ByteSource& in) : in_(in), host_(openfx::ThePlugin(), Lacks()) {
    photos_.Restore();
    const char* contexts[] = {ofx::context::kFilter, ofx::context::kGeneral,
                              ofx::context::kGenerator};
    Require(host_.Start(contexts[in_.Below(3)]) == ofx::kOk, "every context is described");
    for (auto& [name, parameter] : host_.parameters()) {
      if (parameter.type != ofx::value::kGroup) names_.push_back(name);
    }
  }

  void Run() {
    for (int step = 0; step < kMostOpenFxSteps && !in_.Empty(); ++step) {
      Step(in_.Below(12));
      const std::vector<std::string> faults = test::TheFaults().Taken();
      if (!faults.empty()) std::fprintf(stderr, "fault: %s\n", faults.front().c_str());
      Require(faults.empty(), "the plug-in keeps to the interface");
    }
  }

 private:
  test::HostLacks Lacks() {
    const char* suites[] = {ofx::kMessageSuite, ofx::kMemorySuite, ofx::kDrawSuite};
    const int32_t kind = in_.Below(8);
    if (kind < 3) return {suites[kind], false};
    return {"", kind == 3};
  }

  void Step(int32_t action) {
    switch (action) {
      case 0:
        return CreateOrDestroy();
      case 1:
      case 2:
      case 3:
        return SetParameter();
      case 4: {
        const int32_t index = in_.Below(256);
        host_.parameter("filename").text = photos_.Path(HostPhotos::IsLarge(index) ? 0 : index);
        return;
      }
      case 5:
        return Ask();
      case 6:
        // A photograph that changes while it is shown.
        if (in_.Bool()) return photos_.Change(in_.Below(256), in_.Byte());
        host_.FailAllocation(in_.Below(4));
        return;
      default:
        if (!made_) CreateOrDestroy();
        return Render();
    }
  }

  void CreateOrDestroy() {
    if (made_) {
      Require(host_.Destroy() == ofx::kOk, "an instance can be destroyed");
    } else {
      Require(host_.Create() == ofx::kOk, "an instance can be made");
    }
    made_ = !made_;
  }

  void SetParameter() {
    auto& parameter = host_.parameter(
        names_[static_cast<size_t>(in_.Below(static_cast<int32_t>(names_.size())))]);
    const double number = in_.Double(-1.0, 3.0);
    parameter.number = [=](double) { return number; };
    parameter.choice = in_.Mostly(-1, 12);
    if (&parameter == &host_.parameter("filename")) return;
    const char* texts[] = {"", "1", "2@0.1,-0.2", "0.3@5,-9", "video", "#102030", "5"};
    if (in_.Bool()) {
      parameter.text = texts[in_.Below(7)];
    } else {
      const auto bytes = in_.Take(in_.Below(16));
      parameter.text.assign(bytes.begin(), bytes.end());
      parameter.text = parameter.text.c_str();  // ends where C does
    }
  }

  double Time() {
    const double time = in_.Double(-1.0, 30.0);
    return std::isnan(time) ? 0.0 : time;  // the host compares times
  }

  /// Everything that draws nothing, also with sets that are missing or empty.
  void Ask() {
    const char* actions[] = {ofx::action::kIsIdentity,        ofx::action::kRegionOfDefinition,
                             ofx::action::kClipPreferences,   ofx::action::kRender,
                             ofx::action::kDescribeInContext, ofx::action::kPurgeCaches,
                             "OfxActionSomethingElse"};
    const char* action = actions[in_.Below(7)];
    const double time = Time();
    if (in_.Below(3) == 0) {
      host_.Call(action);
    } else if (host_.hasClip("Source") && in_.Bool()) {
      if (made_) host_.Identity(time, in_.Bool());
    } else {
      host_.Region(in_.Bool());
    }
    if (host_.hasOverlay()) host_.Overlay(time, in_.Below(4) != 0);
  }

  HostImage Image() {
    const char* depths[] = {ofx::value::kByte, ofx::value::kShort, ofx::value::kFloat,
                            "OfxBitDepthHalf"};
    const char* components[] = {ofx::value::kRgba, ofx::value::kRgb, "OfxImageComponentAlpha"};
    const char* alphas[] = {ofx::value::kOpaque, ofx::value::kPremultiplied,
                            ofx::value::kUnpremultiplied, "nonsense"};
    const char* fields[] = {ofx::value::kFieldNone, ofx::value::kFieldBoth, ofx::value::kFieldLower,
                            ofx::value::kFieldUpper, "nonsense"};
    const int x = in_.Within(-40, 40), y = in_.Within(-40, 40);
    HostImage image;
    image.bounds = {x, y, x + in_.Within(1, 60), y + in_.Within(1, 40)};
    image.frame = image.bounds;
    if (in_.Below(4) == 0) {
      const int left = in_.Within(-60, 60), bottom = in_.Within(-60, 60);
      image.frame = {left, bottom, left + in_.Within(-5, 100), bottom + in_.Within(-5, 100)};
    }
    image.depth = depths[in_.Below(16) == 0 ? 3 : in_.Below(3)];
    image.components = components[in_.Below(16) == 0 ? 2 : in_.Below(2)];
    image.alpha = alphas[in_.Below(4)];
    image.field = fields[in_.Below(5)];
    image.halfHeight = in_.Bool();
    image.topDown = in_.Bool();
    image.padding = in_.Below(40);
    image.pixelAspect = in_.Double(0.3, 3.0);
    image.Make();
    return image;
  }

  void Render() {
    HostImage output = Image(), source = Image();
    // Floats of any kind; bytes and words likewise.
    for (size_t i = 0; i < source.memory.size(); ++i) {
      source.memory[i] = static_cast<uint8_t>(source.memory[i] + 37 * i);
    }
    const std::vector<uint8_t> before = source.memory;
    test::Render render{.time = Time(), .output = &output};
    if (in_.Bool()) render.source = &source;
    if (in_.Bool()) {
      render.window = ofx::RectI{in_.Mostly(-60, 90), in_.Mostly(-60, 90), in_.Mostly(-60, 90),
                                 in_.Mostly(-60, 90)};
    }
    const char* fields[] = {ofx::value::kFieldNone, ofx::value::kFieldBoth, ofx::value::kFieldLower,
                            ofx::value::kFieldUpper, "nonsense"};
    render.field = fields[in_.Below(5)];
    render.withScaleAndField = in_.Below(4) != 0;
    render.scaleX = in_.Double(0.1, 1.0);
    render.scaleY = in_.Bool() ? render.scaleX : in_.Double(0.1, 1.0);
    const ofx::Status status = host_.Run(render);
    Require(status == ofx::kOk || status == ofx::kFailed || status == ofx::kOutOfMemory,
            "a frame is drawn or not");
    Require(output.GuardsHold(), "no byte outside an image is written");
    Require(source.memory == before, "the source stays as it is");
    Require(host_.allocated() == 0, "the host's memory is given back");
  }

  ByteSource& in_;
  HostPhotos photos_;
  StrictHost host_;
  std::vector<std::string> names_;
  bool made_ = false;
};

}  // namespace
}  // namespace kelto::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // The fuzzer reads what the module counts even when the plug-in has let go of that.
  static const bool stays = dlopen(KELTO_MODULE_FILE, RTLD_NOW | RTLD_NODELETE) != nullptr;
  kelto::fuzz::Require(stays, "the module can be loaded");
  kelto::fuzz::ByteSource in(data, size);
  {
    kelto::fuzz::RandomOpenFxHost host(in);
    host.Run();
  }
  kelto::fuzz::Require(kelto::test::TheFaults().Taken().empty(), "everything is given back");
  return 0;
}
