// Every allocation, and every use of a file, fails once.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <functional>
#include <memory>

#include "image/cache.h"
#include "image/paths.h"
#include "platform/win32.h"
#include "plugin/PanZoomModel.h"
#include "plugin/update_params.h"
#include "render/motion.h"
#include "state/module.h"
#include "tests/faults/failing_calls.h"
#include "tests/support/instance.h"
#include "tests/support/photo.h"

namespace kelto {
namespace {

using test::FailingCall;
using test::FailNth;
using test::Instance;
using test::Picture;
using testing::AnyOf;
using testing::EndsWith;
using testing::Eq;
using testing::StartsWith;

std::string pickedPath;

BOOL KELTO_WINAPI PickPath(OPENFILENAMEA* dialog) {
  std::memcpy(dialog->lpstrFile, pickedPath.c_str(), pickedPath.size() + 1);
  return 1;
}

int messages = 0;

int KELTO_WINAPI CountMessage(HWND, const char* text, const char* caption, unsigned) {
  EXPECT_STREQ(text, "Not enough memory to load image.");
  EXPECT_STREQ(caption, "Kelto Pan & Zoom Error");
  ++messages;
  return IDOK;
}

/// What an operation did when one of its calls failed.
enum class Outcome { kTrue, kFalse, kThrew };

Outcome Try(const std::function<bool()>& operation) {
  try {
    return operation() ? Outcome::kTrue : Outcome::kFalse;
  } catch (int code) {
    EXPECT_EQ(code, 1) << "out of memory is the integer 1";
  } catch (const std::bad_alloc&) {
  }
  return Outcome::kThrew;
}

/// Two instances that hold pictures, and one to try things on.
class Faults : public testing::Test {
 protected:
  static constexpr int32_t kWidth = 40, kHeight = 24;

  Faults() : input(kWidth, kHeight, hfxColorspaceYCbCr) {
    win32().GetOpenFileNameA = PickPath;
    win32().MessageBoxA = CountMessage;
    messages = 0;
    iplSetErrMode(IPL_ErrModeSilent);
    hfx::SetConsole([this](const std::string& text) {
      // The console's own words need memory, too.
      if (consoleLines < kMostLines) console[consoleLines++] = text;
    });
    photo = folder / "photo.bmp";
    test::WritePhoto(photo, 90, 60, [](int32_t x, int32_t y) {
      return test::Rgb{static_cast<uint8_t>(x * 2), static_cast<uint8_t>(y * 4), 90};
    });
  }
  ~Faults() override {
    win32() = DefaultWin32Calls();
    hfx::SetConsole({});
    Module().knownFolders.clear();
    EXPECT_EQ(Module().cachedBytes, 0u);
    EXPECT_EQ(iplxAllocatedBytes(), 0u);
    EXPECT_TRUE(InstanceRegistry().empty());
  }

  std::unique_ptr<Instance> NewInstance(const std::string& path, int32_t filter = 0) {
    auto instance = std::make_unique<Instance>();
    instance->settings.display = 1;
    instance->settings.filter = filter;
    instance->SetPath(path);
    instance->render.playMode = hfxPlayModeRender;
    return instance;
  }

  bool Render(Instance& instance, Picture& output) {
    hfx::SetInput(instance, 0, input.image());
    hfx::SetOutput(instance, 0, output.image());
    return instance.RenderFrame({0, 0, kWidth - 1, kHeight - 1});
  }

  std::vector<uint8_t> Frame(Instance& instance) {
    Picture output(kWidth, kHeight, hfxColorspaceYCbCr, 6);
    EXPECT_TRUE(Render(instance, output));
    hfx::SetOutput(instance, 0, nullptr);
    EXPECT_TRUE(output.GuardsIntact());
    return output.Packed();
  }

  /// Module().cachedBytes is what the instances hold, and nothing else is allocated.
  void ExpectAccountIsRight() {
    uint64_t held = 0;
    for (const PanZoomState* state : InstanceRegistry()) {
      for (const ImagePtr& image : state->picture.workImages) held += image ? image->imageSize : 0;
    }
    EXPECT_EQ(Module().cachedBytes, held);
    EXPECT_EQ(iplxAllocatedBytes(), held);
    EXPECT_EQ(iplGetErrStatus(), IPL_StsOk);
  }

  void ExpectOnlyTheKnownConsoleLines() {
    for (int i = 0; i < consoleLines; ++i) {
      EXPECT_THAT(console[i],
                  AnyOf(Eq("PanZoom HFX: Unable to allocate memory for image.\n"),
                        testing::AllOf(StartsWith("KeltoPanAndZoom instance at "),
                                       EndsWith(" failed to allocate memory for image, even when "
                                                "reclaiming memory from other instances.\n"))));
    }
    consoleLines = 0;
  }

  /// Renders without fault: the picture, or, where the load had failed, the plain background until
  /// the user picks the picture again.
  void ExpectNextFrameIsRight(Instance& instance, const std::vector<uint8_t>& expected,
                              const std::string& path) {
    if (instance.picture.loadFailed) {
      EXPECT_NE(Frame(instance), expected) << "a failed load is not tried again unasked";
      pickedPath = path;
      EXPECT_TRUE(instance.ChooseImage());
    }
    EXPECT_EQ(Frame(instance), expected);
  }

  /// Runs `operation` on what `make` made, with the n-th call of a kind failing, n = 1 and up,
  /// until none does; `check` looks at what is left each time. Gives the number of calls that
  /// failed.
  template <typename Make, typename Operation, typename Check>
  int64_t ForEveryCall(FailingCall kind, const Make& make, const Operation& operation,
                       const Check& check) {
    for (int64_t n = 1;; ++n) {
      auto subject = make();
      FailNth fault(kind, n);
      const Outcome outcome = Try([&] { return operation(*subject); });
      fault.Stop();
      ExpectAccountIsRight();
      check(*subject, outcome, fault.Fired());
      ExpectOnlyTheKnownConsoleLines();
      if (HasFailure()) ADD_FAILURE() << "when call " << n << " failed";
      if (HasFailure() || !fault.Fired()) return n - 1;
    }
  }

  void LoadWithFaults(FailingCall kind, const std::string& path) {
    const std::vector<uint8_t> expected = Frame(*NewInstance(path));
    Picture output(kWidth, kHeight, hfxColorspaceYCbCr);
    const auto make = [&] {
      Module().knownFolders.clear();
      return NewInstance(path);
    };
    const auto check = [&](Instance& instance, Outcome outcome, bool) {
      EXPECT_NE(outcome, Outcome::kFalse) << "only an abort fails a render";
      if (instance.picture.loadFailed) {
        EXPECT_EQ(instance.picture.workImages[0], nullptr);
      }
      ExpectNextFrameIsRight(instance, expected, path);
    };
    const int64_t failed = ForEveryCall(
        kind, make, [&](Instance& instance) { return Render(instance, output); }, check);
    RecordProperty("calls", static_cast<int>(failed));
    EXPECT_GT(failed, 3);
  }

  static constexpr int kMostLines = 8;
  std::string console[kMostLines];
  int consoleLines = 0;
  test::TempFolder folder;
  std::string photo;
  Picture input;
};

class EveryForm : public Faults, public testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(Stills, EveryForm,
                         testing::Values("turned-with-profile.jpg", "progressive.jpg", "cmyk.jpg",
                                         "interlaced-turned.png", "words-alpha-profile.png",
                                         "tiles.tif", "words.tif", "jpeg.tif", "ycck.jpg",
                                         "chunks.webp", "interlaced.gif", "32.bmp", "packed.tga"),
                         [](const auto& tested) {
                           std::string name = tested.param;
                           std::replace_if(
                               name.begin(), name.end(), [](char c) { return !std::isalnum(c); },
                               '_');
                           return name;
                         });

TEST_P(EveryForm, LoadsAgainAfterAnyAllocationHasFailed) {
  LoadWithFaults(FailingCall::kAllocation, std::string(KELTO_FUZZ_SEEDS) + "/stills/" + GetParam());
}

TEST_P(EveryForm, LoadsAgainAfterAnyUseOfItsFileHasFailed) {
  LoadWithFaults(FailingCall::kFile, std::string(KELTO_FUZZ_SEEDS) + "/stills/" + GetParam());
}

class EveryFilter : public Faults, public testing::WithParamInterface<int32_t> {};

INSTANTIATE_TEST_SUITE_P(Filters, EveryFilter, testing::Range(0, 8));

TEST_P(EveryFilter, DrawsAgainAfterAnyAllocationHasFailed) {
  const std::vector<uint8_t> expected = Frame(*NewInstance(photo, GetParam()));
  Picture output(kWidth, kHeight, hfxColorspaceYCbCr, 6);
  const auto make = [&] {
    auto instance = NewInstance(photo, GetParam());
    Frame(*instance);
    return instance;
  };
  const auto check = [&](Instance& instance, Outcome outcome, bool fired) {
    EXPECT_NE(outcome, Outcome::kFalse);
    if (!fired) {
      EXPECT_EQ(output.Packed(), expected);
    }
    EXPECT_TRUE(output.GuardsIntact());
    EXPECT_NE(instance.picture.workImages[0], nullptr) << "the picture stays loaded";
    EXPECT_EQ(Frame(instance), expected);
  };
  ForEveryCall(
      FailingCall::kAllocation, make, [&](Instance& instance) { return Render(instance, output); },
      check);
}

TEST_F(Faults, AFilmOfManyKeysIsDrawnRightOrNotAtAll) {
  // More keys than the ten that a new curve has room for.
  const auto make = [&] {
    auto instance = NewInstance(photo);
    instance->settings.pathType = 1;
    instance->host().totalFrames = 100;
    instance->host().currentFrame = 73;  // a third of the way from the first key beyond that room
    for (int i = 0; i < 15; ++i) {
      const double time = i / 14.0, side = i % 2 == 0 ? 0.2 : -0.2;
      instance->SetPosition(time, side, -side);
      instance->SetVelocities(time, kVelocityEase, kVelocityEase);
      instance->SetKey("size", time, 1.5 + side);
    }
    Frame(*instance);
    instance->paramsChanged = true;
    return instance;
  };
  const std::vector<uint8_t> expected = Frame(*make());
  Picture output(kWidth, kHeight, hfxColorspaceYCbCr, 6);
  const auto check = [&](Instance& instance, Outcome outcome, bool fired) {
    EXPECT_NE(outcome, Outcome::kFalse);
    if (outcome == Outcome::kTrue) {
      EXPECT_EQ(output.Packed(), expected);
    }
    EXPECT_TRUE(fired || outcome == Outcome::kTrue);
    EXPECT_EQ(Frame(instance), expected) << "the next time";
  };
  const int64_t failed = ForEveryCall(
      FailingCall::kAllocation, make, [&](Instance& instance) { return Render(instance, output); },
      check);
  EXPECT_GT(failed, 20);
}

class EveryCacheCommand : public Faults, public testing::WithParamInterface<int32_t> {};

INSTANTIATE_TEST_SUITE_P(Commands, EveryCacheCommand, testing::Range(0, 8));

TEST_P(EveryCacheCommand, IsCarriedOutAgainAfterAnyAllocationHasFailed) {
  const auto other = NewInstance(photo);
  const std::vector<uint8_t> expected = Frame(*other);
  const auto make = [&] {
    auto instance = NewInstance(photo);
    Frame(*instance);
    instance->SetKey("cache", 0.0, GetParam());
    instance->SetActive("cache", 0);
    return instance;
  };
  const auto check = [&](Instance& instance, Outcome, bool) {
    EXPECT_TRUE(UpdateParams(&instance));
    EXPECT_EQ(Frame(instance), expected);
    EXPECT_EQ(Frame(*other), expected);
  };
  ForEveryCall(
      FailingCall::kAllocation, make, [](Instance& instance) { return UpdateParams(&instance); },
      check);
}

TEST_F(Faults, APlayingHostsReductionKeepsTheNaturalSizeWhereMemoryFails) {
  const auto make = [&] {
    auto instance = NewInstance(photo);
    instance->render.playMode = hfxPlayModePreview;
    return instance;
  };
  Picture output(kWidth, kHeight, hfxColorspaceYCbCr);
  const std::vector<uint8_t> reduced = Frame(*make());
  bool keptNatural = false;
  const auto check = [&](Instance& instance, Outcome, bool) {
    if (instance.picture.workImages[0]) keptNatural |= instance.picture.workImages[0]->width == 90;
    ExpectNextFrameIsRight(instance, reduced, photo);
  };
  ForEveryCall(
      FailingCall::kAllocation, make, [&](Instance& instance) { return Render(instance, output); },
      check);
  EXPECT_TRUE(keptNatural);
}

TEST_F(Faults, ChoosingAnImageTellsThatItFailedAndCanBeDoneAgain) {
  const std::vector<uint8_t> expected = Frame(*NewInstance(photo));
  const auto make = [&] {
    auto instance = NewInstance(folder / "none");
    instance->BeginRender();
    pickedPath = photo;
    messages = 0;
    return instance;
  };
  const auto check = [&](Instance& instance, Outcome outcome, bool) {
    EXPECT_NE(outcome, Outcome::kFalse) << "the user did pick a file";
    const bool loaded = instance.picture.workImages[0] != nullptr;
    if (outcome == Outcome::kTrue) {
      EXPECT_EQ(messages, loaded ? 0 : 1);
    }
    pickedPath = photo;
    EXPECT_TRUE(instance.ChooseImage());
    EXPECT_EQ(Frame(instance), expected);
  };
  const int64_t failed = ForEveryCall(
      FailingCall::kAllocation, make, [](Instance& instance) { return instance.ChooseImage(); },
      check);
  EXPECT_GT(failed, 10);
}

TEST_F(Faults, MakingAnInstanceWithItsParametersLeavesNothingBehindWhenItFails) {
  PanZoomModel model;
  const auto make = [] { return std::make_unique<hfxInstance_v1*>(nullptr); };
  const auto operation = [&](hfxInstance_v1*& made) {
    made = model.CreateInstance();
    return made != nullptr && made->CreateParameters();
  };
  const auto check = [&](hfxInstance_v1*& made, Outcome outcome, bool fired) {
    if (!fired) {
      EXPECT_EQ(outcome, Outcome::kTrue);
    }
    EXPECT_EQ(InstanceRegistry().size(), made ? 1u : 0u);
    model.DeleteInstance(made);
    EXPECT_TRUE(InstanceRegistry().empty());
  };
  EXPECT_GT(ForEveryCall(FailingCall::kAllocation, make, operation, check), 50);
}

TEST_F(Faults, CopyingAnInstanceLeavesBothUsable) {
  const auto original = NewInstance(photo);
  original->SetPosition(0.0, 0.1, 0.2);
  original->SetPosition(1.0, 0.3, 0.1);
  const std::vector<uint8_t> expected = Frame(*original);
  const auto check = [&](Instance& copy, Outcome, bool) {
    EXPECT_TRUE(copy.CopyInstance(original.get()));
    copy.settings.display = 1;
    copy.paramsChanged = true;
    EXPECT_EQ(Frame(copy), expected);
  };
  ForEveryCall(
      FailingCall::kAllocation, [&] { return NewInstance(photo); },
      [&](Instance& copy) { return copy.CopyInstance(original.get()); }, check);
}

}  // namespace
}  // namespace kelto
