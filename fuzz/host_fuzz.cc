// A random host over the module: models and instances made and deleted in any order, keys at any
// times, renders before parameters, cache commands, dialogs, files that change and memory that runs
// out. After every step, what must always hold is looked at.
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "fuzz/byte_source.h"
#include "fuzz/host_answers.h"
#include "fuzz/host_photos.h"
#include "image/cache.h"
#include "image/paths.h"
#include "platform/hfx.h"
#include "platform/ipl.h"
#include "runtime/hfx/host.h"
#include "state/PanZoomState.h"
#include "state/module.h"
#include "state/pool.h"

// The module's entry points, linked in, so that its insides can be looked at.
extern "C" {
int32_t hfxStartUp_v1();
void hfxShutDown_v1();
int32_t hfxNumModels_v1();
hfxModel_v1* hfxNewModel_v1(uint16_t number);
void* hfxNewOverlay_v1();
int32_t hfxGetModelAttributes_v1ext(uint16_t version, int32_t attribute, void* result);
int32_t hfxSetAttribute(int32_t reserved, int32_t attribute, intptr_t value, int32_t* result);
}

namespace kelto::fuzz {
namespace {

constexpr int kMostSteps = 120;
constexpr size_t kMostInstances = 12;
/// Large photographs, which take a second, are met by few inputs and a few times by each.
constexpr int kMostLargeSteps = 3;
constexpr int kMostStepsWithLarge = 8;

/// One use of the effect, and what the host itself last put into its record.
struct Use {
  hfxModel_v1* model;
  hfxInstance_v1* instance;
  bool hasParameters = false;
  std::string restored;
};

class RandomHost {
 public:
  explicit RandomHost(ByteSource& in) : in_(in) {
    Require(hfxStartUp_v1() == 1, "the module starts");
    AnswerWin32Calls();
    hfx::SetConsole([](const std::string&) {});
    answers = {};
    photos_.Restore();
    largeSteps_ = in_.Below(32) == 0 ? kMostLargeSteps : 0;
  }
  ~RandomHost() {
    while (!uses_.empty()) Delete(uses_.size() - 1);
    for (hfxModel_v1* model : models_) delete model;
    iplxSetMemoryLimit(0);
    Require(InstanceRegistry().empty(), "nothing stays in the registry");
    Require(Module().cachedBytes == 0 && iplxAllocatedBytes() == 0, "no image stays");
    int32_t result = 1;
    hfxSetAttribute(0, 0, 0, &result);
    hfxShutDown_v1();
    Module().knownFolders.clear();
  }
  RandomHost(const RandomHost&) = delete;
  RandomHost& operator=(const RandomHost&) = delete;

  void Run() {
    const int steps = largeSteps_ > 0 ? kMostStepsWithLarge : kMostSteps;
    for (int step = 0; step < steps && !in_.Empty(); ++step) {
      Step();
      CheckInvariants();
    }
  }

 private:
  void Step() {
    const int32_t kind = in_.Below(32);
    if (kind == 0) return Attributes();
    if (kind == 1 || models_.empty()) return AddModel();
    if (kind <= 3 || uses_.empty()) return AddInstance();
    const size_t which = static_cast<size_t>(in_.Below(static_cast<int32_t>(uses_.size())));
    Use& use = uses_[which];
    switch (kind) {
      case 4:
        return Delete(which);
      case 5:
      case 6:
        return Declare(use);
      case 7:
        hfx::SetPlayMode(in_.Mostly(0, 1));
        answers.hostState = in_.Mostly(0, 1);
        Require(use.instance->BeginRender() == 1, "a render begins");
        return;
      case 8:
        Require(use.instance->EndRender() == -1, "a render ends");
        return;
      case 9:
      case 10:
        return Restore(use);
      case 11:
      case 12:
        return Choose(use);
      case 13:
        photos_.Change(in_.Below(256), in_.Byte());
        return;
      case 14:
        iplxSetMemoryLimit(in_.Bool() ? 0 : uint64_t{in_.Byte()} * in_.Byte() * 16 + 1);
        return;
      case 15:
        use.instance->CopyInstance(
            uses_[static_cast<size_t>(in_.Below(static_cast<int32_t>(uses_.size())))].instance);
        use.restored = Record(*use.instance);
        return;
      case 16:
      case 17:
        return CacheCommand(use);
      case 18:
        return SetState(use);
      case 19:
      case 20:
      case 21:
      case 22:
        return EditKeys(use);
      case 23:
        Require(UpdateCallback(use)(use.instance), "edits are taken");
        return;
      case 24:
        return ReadValue(use);
      default:
        return Render(use);
    }
  }

  void Attributes() {
    int32_t result = 7;
    if (in_.Bool()) {
      const auto callback = reinterpret_cast<intptr_t>(in_.Bool() ? AnswerHostState : nullptr);
      Require(hfxSetAttribute(in_.Byte(), 0, callback, &result) == 0 && result == 0,
              "attributes are taken");
      return;
    }
    // Any number but 0, which is a callback's place.
    hfxSetAttribute(in_.Byte(), std::max(1, in_.Within(1, 40)), in_.Int32(), &result);
    Require(result == 0, "the result is written");
    uint8_t block[8] = {9, 9, 9, 9, 9, 9, 9, 9};
    const auto version = static_cast<uint16_t>(in_.Below(3));
    const int32_t attribute = in_.Within(0, 20);
    const int32_t answered = hfxGetModelAttributes_v1ext(version, attribute, block);
    Require((answered == 1) == (version == 1 && attribute == 12), "one attribute is answered");
    Require(block[0] == (answered ? 1 : 9) && block[1] == 9, "one byte is written for it");
    hfxGetModelAttributes_v1ext(1, in_.Within(0, 20), nullptr);
    Require(hfxNumModels_v1() == 1 && hfxNewOverlay_v1() == nullptr, "one model, no overlay");
  }

  void AddModel() {
    const auto number = static_cast<uint16_t>(in_.Below(4) == 0 ? in_.Int32() : 1);
    hfxModel_v1* model = hfxNewModel_v1(number);
    Require((model != nullptr) == (number == 1), "there is one model");
    if (model == nullptr) return;
    models_.push_back(model);
    if (in_.Bool()) model->DescribeEffect();
    model->DeclareConnections();
  }

  void AddInstance() {
    if (uses_.size() >= kMostInstances) return;
    hfxModel_v1* model = models_[static_cast<size_t>(
        in_.Below(static_cast<int32_t>(std::min<size_t>(models_.size(), 200))))];
    hfxInstance_v1* instance = model->CreateInstance();
    Require(instance != nullptr, "there is memory for an instance");
    uses_.push_back({model, instance, false, ""});
    if (in_.Below(4) != 0) Declare(uses_.back());
    if (in_.Below(4) != 0) Restore(uses_.back());
  }

  void Delete(size_t which) {
    uses_[which].model->DeleteInstance(uses_[which].instance);
    uses_.erase(uses_.begin() + static_cast<ptrdiff_t>(which));
  }

  static void Declare(Use& use) {
    if (use.hasParameters) return;
    Require(use.instance->CreateParameters(), "parameters are made");
    use.hasParameters = true;
  }

  /// The host puts a record back, or garbage, or takes it away.
  void Restore(Use& use) {
    if (in_.Below(8) == 0) {
      hfx::ClearInstanceData(*use.instance);
    } else if (in_.Below(8) == 0) {
      const auto bytes = in_.Take(in_.Byte());
      use.instance->SetInstanceData(bytes.data(), static_cast<int32_t>(bytes.size()));
    } else {
      const std::string path = photos_.Path(PhotoIndex());
      std::vector<char> record(kPathRecordSize);
      std::copy(path.begin(), path.end(), record.begin());
      use.instance->SetInstanceData(record.data(), kPathRecordSize);
    }
    use.restored = Record(*use.instance);
  }

  int32_t PhotoIndex() {
    const int32_t index = in_.Below(256);
    if (!HostPhotos::IsLarge(index)) return index;
    return --largeSteps_ >= 0 ? index : 0;
  }

  void Choose(Use& use) {
    const std::string path = photos_.Path(PhotoIndex());
    answers.picked = in_.Below(4) == 0 ? nullptr : path.c_str();
    answers.scrap = in_.Byte();
    answers.networkName = in_.Bool();
    const bool chosen = use.instance->ChooseImage();
    Require(chosen || answers.picked == nullptr || !State(use).picture.imagePath.empty(),
            "a pick is taken");
    answers.picked = nullptr;
    if (chosen) CheckBudget(use);
  }

  void CacheCommand(Use& use) {
    auto* cache = use.instance->FindParameter("cache");
    if (cache == nullptr) return;
    const int32_t command = in_.Mostly(0, 8);
    hfx::SetKey(*cache, 0.0, &command, sizeof command);
    hfx::SetActiveKey(*cache, in_.Bool() ? 0 : -1);
    UpdateCallback(use)(use.instance);
  }

  void SetState(Use& use) {
    hfx::RenderState& state = hfx::StateOf(*use.instance);
    state.currentFrame = in_.Mostly(-3, 300);
    // Films of very many frames take seconds to prepare here.
    state.totalFrames = in_.Below(64) == 0 ? in_.Int32() : in_.Within(-1, 3000);
    state.field = in_.Mostly(0, 1);
    state.videoType = in_.Mostly(0, 3);
    state.fieldMode = in_.Mostly(0, 3);
    state.topField = in_.Bool();
    state.displayAspect = in_.Double(0.5, 3.0);
    state.quality = in_.Double(0.0, 1.0);
    state.aborted = in_.Bool();
  }

  void EditKeys(Use& use) {
    const auto parameters = hfx::ParametersOf(*use.instance);
    if (parameters.empty()) return;
    hfxParameter& parameter =
        *parameters[static_cast<size_t>(in_.Below(static_cast<int32_t>(parameters.size())))];
    const int32_t keys = parameter.GetNumKeys();
    const int32_t index = in_.Within(-1, std::min(keys, 200));
    switch (in_.Below(8)) {
      case 0:
        hfx::RemoveKey(parameter, index);
        return;
      case 1:
        hfx::RemoveAllKeys(parameter);
        return;
      case 2:
        hfx::SetActiveKey(parameter, index);
        return;
      case 3:
        hfx::MoveKey(parameter, index, in_.Double(-0.5, 1.5));
        return;
      default:
        if (keys < 60) {
          const auto value = Value(parameter);
          hfx::SetKey(parameter, in_.Double(0.0, 1.0), value.data(), hfx::ValueSizeOf(parameter));
        }
    }
  }

  std::vector<uint8_t> Value(const hfxParameter& parameter) {
    std::vector<uint8_t> value(static_cast<size_t>(hfx::ValueSizeOf(parameter)));
    if (value.size() == 4) {
      const int32_t entry = in_.Mostly(0, 8);
      std::memcpy(value.data(), &entry, 4);
    } else if (value.size() == 1) {
      value[0] = in_.Byte() & 1;
    }
    for (size_t at = 0; at + 8 <= value.size(); at += 8) {
      const double number = in_.Double(-1.0, 3.0);
      std::memcpy(&value[at], &number, 8);
    }
    return value;
  }

  void ReadValue(Use& use) {
    const auto parameters = hfx::ParametersOf(*use.instance);
    if (parameters.empty()) return;
    hfxParameter& parameter =
        *parameters[static_cast<size_t>(in_.Below(static_cast<int32_t>(parameters.size())))];
    if (in_.Bool() && hfx::ValueSizeOf(parameter) > 0) {
      const auto value = Value(parameter);
      hfx::SetBoundValue(parameter, value.data(), hfx::ValueSizeOf(parameter));
    }
    uint8_t result[24];
    hfx::ValueAt(parameter, in_.Double(0.0, 1.0), result, hfx::ValueSizeOf(parameter));
  }

  void Render(Use& use) {
    const int32_t colorspace = in_.Bool() ? hfxColorspaceRGB : hfxColorspaceYCbCr;
    const auto image = [&](int32_t width, int32_t height) {
      return std::make_unique<hfx::ImageBuffer>(
          width, height, in_.Below(16) == 0 ? 1 - colorspace : colorspace,
          hfx::ImageBuffer::Rows{in_.Bool() ? 400 : 0, in_.Below(4) == 0});
    };
    const int32_t width = in_.Within(0, 70), height = in_.Within(0, 50);
    const auto input = image(width, height);
    const auto output =
        image(in_.Bool() ? width : in_.Within(0, 70), in_.Bool() ? height : in_.Within(0, 50));
    // A colour space that is neither reaches the module from foreign hosts.
    hfxImage foreign(width, height, input->image()->GetRowPtr(0), input->image()->GetRowDelta(),
                     in_.Mostly(2, 3), in_.Mostly(0, 15));
    const int32_t lent = in_.Below(16);
    hfx::SetInput(*use.instance, 0, lent == 0 ? nullptr : lent == 1 ? &foreign : input->image());
    hfx::SetOutput(*use.instance, 0, lent == 2 ? nullptr : output->image());
    // The input in the output's place, as of hosts that render in place.
    if (lent == 3) hfx::SetInput(*use.instance, 0, output->image());
    hfx::WriteBoundFields(*use.instance, hfx::FrameTime(hfx::StateOf(*use.instance)));
    const hfxRect whole = {0, 0, output->image()->GetWidth() - 1, output->image()->GetHeight() - 1};
    const hfxRect region = in_.Below(4) != 0 ? whole
                                             : hfxRect{in_.Mostly(-5, 80), in_.Mostly(-5, 80),
                                                       in_.Mostly(-5, 80), in_.Mostly(-5, 80)};
    const IplImage* before = State(use).picture.workImages[0].get();
    const bool missing = lent == 0 || lent == 2;
    try {
      const bool finished = use.instance->RenderFrame(region);
      Require(finished == !hfx::StateOf(*use.instance).aborted, "only an abort fails a render");
    } catch (int code) {
      Require(code == 1 && missing, "only a missing image throws");
    }
    hfx::SetInput(*use.instance, 0, nullptr);
    hfx::SetOutput(*use.instance, 0, nullptr);
    const IplImage* loaded = State(use).picture.workImages[0].get();
    if (loaded != nullptr && loaded != before) CheckBudget(use);
  }

  /// What a load leaves must be within the budget where it can be.
  static void CheckBudget(const Use& use) {
    uint64_t own = 0;
    for (const ImagePtr& image : State(use).picture.workImages) own += image ? image->imageSize : 0;
    if (own <= kCacheBudget)
      Require(Module().cachedBytes <= kCacheBudget, "loads keep to the budget");
  }

  void CheckInvariants() const {
    const auto& registry = InstanceRegistry();
    Require(registry.size() == uses_.size(), "the registry holds the live instances");
    uint64_t total = 0;
    std::set<const IplImage*> images;
    for (size_t i = 0; i < uses_.size(); ++i) {
      const PanZoomState& state = State(uses_[i]);
      Require(registry[i] == &state, "the registry is in order of creation");
      for (const ImagePtr& image : state.picture.workImages) {
        if (image == nullptr) continue;
        Require(images.insert(image.get()).second, "no image is shared");
        Require(image->imageData != nullptr, "cached images have pixels");
        Require(image->imageId == static_cast<BufferPool*>(&Module().cachePool),
                "cached images are counted");
        total += image->imageSize;
      }
      CheckRecord(uses_[i]);
    }
    Require(total == Module().cachedBytes, "cachedBytes is the sum over the live images");
    Require(total == iplxAllocatedBytes(), "no image lives outside the instances");
    Require(iplGetErrStatus() == IPL_StsOk, "no error status is left behind");
  }

  /// What the module itself saved is a path record.
  static void CheckRecord(const Use& use) {
    const std::string record = Record(*use.instance);
    if (record == use.restored) return;
    Require(record.size() == size_t{kPathRecordSize}, "saved records are 2048 bytes");
    const size_t end = record.find('\0');
    Require(end != std::string::npos, "saved records have an end");
    Require(record.find_first_not_of('\0', end) == std::string::npos,
            "behind the path there are zeros");
  }

  static std::string Record(const hfxInstance_v1& instance) {
    int32_t length = 0;
    const void* record = instance.GetInstanceData(&length);
    return record ? std::string(static_cast<const char*>(record), static_cast<size_t>(length)) : "";
  }

  static const PanZoomState& State(const Use& use) {
    return static_cast<const PanZoomState&>(*use.instance);
  }

  static hfxUpdateParamsCallback UpdateCallback(const Use& use) {
    return hfx::DescriptionOf(*use.model).updateParams;
  }

  ByteSource& in_;
  HostPhotos photos_;
  std::vector<hfxModel_v1*> models_;
  std::vector<Use> uses_;
  int largeSteps_ = 0;  ///< left to this input
};

}  // namespace
}  // namespace kelto::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kelto::fuzz::ByteSource in(data, size);
  kelto::fuzz::RandomHost host(in);
  host.Run();
  return 0;
}
