// A small effect module for the tests of the host library: fills the frame with a grey level, and
// misbehaves when told to. Built several times; the definitions choose what is broken.
#include <cmath>
#include <cstring>
#include <stdexcept>
#include <string>

#include "platform/hfx.h"

#if defined(_WIN32)
#define SAMPLE_EXPORT __declspec(dllexport)
#else
#define SAMPLE_EXPORT __attribute__((visibility("default")))
#endif
#ifndef SAMPLE_START_UP
#define SAMPLE_START_UP 1
#endif

int32_t DefinedNowhere();

namespace {

hfxHostStateCallback g_hostState = nullptr;

/// Lets SAMPLE_START_UP be a throw-expression too.
constexpr bool kStarts = true;

enum Behaviour : int32_t {
  kFill,
  kThrowInteger,
  kThrowOwnException,
  kThrowText,
  kThrowSomethingElse,
  kReportFailure,
  kStopWhenAborted,
};
const char* const kBehaviours[] = {
    "Fill",        "Throw integer",  "Throw own exception", "Throw text",
    "Throw other", "Report failure", "Stop when aborted",   nullptr};

/// An exception class that only this module knows.
class SampleError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};
struct Unknown {};

/// With two keys and more: the square of the time. Otherwise the host's own rules.
bool SquareOfTime(hfxParameter* parameter, double time, void* result, int32_t size, int32_t) {
  if (parameter->GetNumKeys() < 2 || size != 8) return false;
  const double value = time * time;
  std::memcpy(result, &value, sizeof value);
  return true;
}

class SampleInstance : public hfxInstance_v1 {
 public:
  explicit SampleInstance(int32_t model) : model_(model) {}
  ~SampleInstance() override { hfxGlobal::ConsolePrintf("sample: instance gone\n"); }

  bool CreateParameters() override {
    if (model_ == 5) return false;
    if (model_ == 6) throw 1;
    hfxPGroup* look = hfxPGroup::New("Look", "look", 1);
    AddParameter(look, nullptr);
    hfxPNumber* level = hfxPNumber::New("Level", "level", &level_, 8, 0.0, 1.0, 0.01, 0, 1);
    AddParameter(level, look);
    level->SetInterpolator(SquareOfTime);
    level->SetUserData(this);
    AddParameter(hfxPList::New("Behaviour", "behaviour", &behaviour_, 4, kBehaviours, 1), nullptr);
    return true;
  }

  int32_t BeginRender() override {
    hfxGlobal::ConsolePrintf("sample: begin, play mode %d, host state %d, record '%s'\n",
                             static_cast<int>(hfxGetPlayMode()),
                             static_cast<int>(g_hostState ? g_hostState() : -1), Record());
    return behaviour_ == kReportFailure ? 0 : 1;
  }

  int32_t EndRender() override {
    if (behaviour_ == kThrowInteger) throw 2;
    return -1;
  }

  bool RenderFrame(const hfxRect& region) override {
    switch (behaviour_) {
      case kThrowInteger:
        throw 1;
      case kThrowOwnException:
        throw SampleError("lens cap on");
      case kThrowText:
        throw "plain text";
      case kThrowSomethingElse:
        throw Unknown();
      case kReportFailure:
        return false;
      case kStopWhenAborted:
        return !Aborted();
      default:
        break;
    }
    hfxImage* output = GetOutput(0);
    if (output == nullptr || GetInput(0) == nullptr) throw 1;
    for (int32_t y = region.y0; y <= region.y1; ++y) {
      std::memset(output->GetRowPtr(y), static_cast<int>(std::lround(level_ * 255.0)),
                  static_cast<size_t>(region.x1 - region.x0 + 1) * 4);
    }
    return true;
  }

 private:
  const char* Record() const {
    const void* record = GetInstanceData(nullptr);
    return record != nullptr ? static_cast<const char*>(record) : "";
  }

  int32_t model_;
  double level_ = 0.25;
  int32_t behaviour_ = kFill;
};

/// Keeps the level at 1 or less; proves that a module can tell the host's classes apart.
bool UpdateParams(hfxInstance_v1* instance) {
  if (dynamic_cast<SampleInstance*>(instance) == nullptr) return false;
  hfxParameter* level = instance->FindParameter("level");
  if (dynamic_cast<hfxPNumber*>(level) == nullptr || dynamic_cast<hfxPList*>(level) != nullptr) {
    return false;
  }
  for (int32_t i = 0; i < level->GetNumKeys(); ++i) {
    double value;
    std::memcpy(&value, level->GetKey(i)->GetValue(), sizeof value);
    if (value < 0.0) throw SampleError("negative level");
    const double limited = value > 1.0 ? 1.0 : value;
    level->GetKey(i)->SetValue(&limited, sizeof limited);
  }
  hfxGlobal::ConsolePrintf("sample: parameters updated\n");
  return true;
}

/// Model 1 works, the others fail at one step each.
class SampleModel : public hfxModel_v1 {
 public:
  explicit SampleModel(int32_t number) : number_(number) {}
  ~SampleModel() override { hfxGlobal::ConsolePrintf("sample: model gone\n"); }

  bool DescribeEffect() override {
    SetType(0);
    SetName("Grey");
    SetPluginVersion(1.5f);
    SetVendor("Tests");
    SetCategory("Image");
    return number_ != 2;
  }
  bool DeclareConnections() override {
    if (number_ == 3) throw SampleError("no connections today");
    AddFormat(hfxColorspaceRGB, 8, nullptr, hfxImgFormatBGRA);
    AddInput(0, "Input1", "input1", 0);
    AddOutput(0, "Output", "output", 0);
    SetUpdateParamsCallback(UpdateParams);
    return true;
  }
  hfxInstance_v1* CreateInstance() override {
    return number_ == 4 ? nullptr : new SampleInstance(number_);
  }

 private:
  int32_t number_;
};

}  // namespace

extern "C" {

// NOLINTNEXTLINE(bugprone-branch-clone): one of them is another build's
SAMPLE_EXPORT int32_t hfxStartUp_v1() { return kStarts ? SAMPLE_START_UP : 0; }
SAMPLE_EXPORT void hfxShutDown_v1() { hfxGlobal::ConsolePrintf("sample: shut down\n"); }
SAMPLE_EXPORT int32_t hfxNumModels_v1() { return 6; }
SAMPLE_EXPORT hfxModel_v1* hfxNewModel_v1(uint16_t number) {
  return number >= 1 && number <= 6 ? new SampleModel(number) : nullptr;
}
SAMPLE_EXPORT int32_t hfxGetModelAttributes_v1ext(uint16_t, int32_t, void*) { return 0; }
#ifndef SAMPLE_WITHOUT_ENTRIES
SAMPLE_EXPORT void* hfxNewOverlay_v1() { return nullptr; }
SAMPLE_EXPORT int32_t hfxSetAttribute(int32_t, int32_t attribute, intptr_t value, int32_t* result) {
  *result = 0;
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the interface passes the function so
  if (attribute == 0) g_hostState = reinterpret_cast<hfxHostStateCallback>(value);
  return 0;
}
#endif
}
