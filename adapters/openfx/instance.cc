#include "adapters/openfx/instance.h"

#include <algorithm>
#include <cmath>

#include "adapters/frei0r/covered_pixels.h"
#include "adapters/openfx/deep_frame.h"
#include "adapters/openfx/frame_store.h"
#include "adapters/openfx/image.h"
#include "adapters/openfx/suites.h"
#include "adapters/pages/controls.h"

namespace kelto::openfx {
namespace {

using pages::Widget;

/// Largest side of a frame, and most pixels: the effect's own bounds, and 2 GiB a buffer.
constexpr int64_t kMaxSide = 32767, kMaxPixels = int64_t{1} << 29;

ofx::RectI Common(const ofx::RectI& a, const ofx::RectI& b) {
  return {std::max(a.x1, b.x1), std::max(a.y1, b.y1), std::min(a.x2, b.x2), std::min(a.y2, b.y2)};
}

/// The frame's number: the start of what a field or a blurred sample lies in.
int64_t FrameAt(ofx::Time time) {
  if (!(std::abs(time) < 1e15)) return 0;
  return static_cast<int64_t>(std::floor(time + 1e-6));
}

void SetAll(FrameMaker& maker, const frei0r::Values& values) {
  for (int i = 0; i < frei0r::kParameterCount; ++i) {
    const auto index = static_cast<size_t>(i);
    maker.SetText(i, values.texts[index].c_str());
    maker.SetNumber(i, values.numbers[index]);
  }
}

/// The source as the effect takes it, row for row from the top.
std::vector<uint32_t> VideoOf(const Image& source, const ofx::RectI& frame) {
  std::vector<uint32_t> video;
  video.reserve(static_cast<size_t>(frame.x2 - frame.x1) *
                static_cast<size_t>(frame.y2 - frame.y1));
  for (int y = frame.y2 - 1; y >= frame.y1; --y) {
    for (int x = frame.x1; x < frame.x2; ++x) {
      video.push_back(source.Holds(x, y) ? source.ReadBgra(x, y) : 0xff000000u);
    }
  }
  return video;
}

/// What of a window lies outside the frame has nothing in it.
void Clear(const Image& output, const ofx::RectI& window) {
  const ofx::RectI& frame = output.frame();
  for (int y = window.y1; y < window.y2; ++y) {
    for (int x = window.x1; x < window.x2; ++x) {
      if (x < frame.x1 || x >= frame.x2 || y < frame.y1 || y >= frame.y2) output.Write(x, y, {});
    }
  }
}

/// A window of a frame as the effect itself draws it, with 8 bits.
void DrawFrame(FrameMaker& maker, int64_t number, const Image* source, const ofx::RectI& frame,
               const ofx::RectI& window, const Image& output) {
  const auto width = static_cast<size_t>(frame.x2 - frame.x1);
  const auto height = static_cast<size_t>(frame.y2 - frame.y1);
  const std::vector<uint32_t> behind =
      source != nullptr ? VideoOf(*source, frame) : std::vector<uint32_t>();
  std::vector<uint32_t> drawn(width * height);
  frei0r::CoveredPixels covered;
  maker.RenderFrame(number, source != nullptr ? behind.data() : nullptr, drawn.data(), &covered);
  for (int y = window.y1; y < window.y2; ++y) {
    const int row = frame.y2 - 1 - y;
    for (int x = window.x1; x < window.x2; ++x) {
      const int column = x - frame.x1;
      const bool beside = row < covered.top || row >= covered.bottom || column < covered.left ||
                          column >= covered.right;
      if (source != nullptr && beside) {
        output.CopyFrom(*source, x, y);
      } else {
        output.WriteBgra(x, y,
                         drawn[static_cast<size_t>(row) * width + static_cast<size_t>(column)]);
      }
    }
  }
}

}  // namespace

Instance::Instance(ofx::Effect effect) : effect_(effect) {
  const Suites& suites = TheSuites();
  ofx::ParameterSet set = nullptr;
  if (suites.effects->getPropertySet(effect, &properties_) != ofx::kOk ||
      suites.effects->getParamSet(effect, &set) != ofx::kOk ||
      suites.effects->clipGetHandle(effect, ofx::kOutputClip, &output_, nullptr) != ofx::kOk) {
    throw ofx::Status{ofx::kFailed};
  }
  // A generator has none.
  if (suites.effects->clipGetHandle(effect, ofx::kSourceClip, &source_, &sourceProperties_) !=
      ofx::kOk) {
    source_ = nullptr;
  }
  for (const pages::Control& control : pages::Controls()) {
    ofx::ParameterHandle handle = nullptr;
    if (suites.parameters->getHandle(set, control.parameter().name, &handle, nullptr) != ofx::kOk) {
      throw ofx::Status{ofx::kFailed};
    }
    parameters_.push_back(handle);
  }
}

frei0r::Values Instance::ValuesAt(ofx::Time time) const {
  const auto get = TheSuites().parameters->getValueAtTime;
  frei0r::Values values = DefaultValues(frei0r::Role::kFilter);
  size_t number = 0;
  for (const pages::Control& control : pages::Controls()) {
    const ofx::ParameterHandle handle = parameters_[number++];
    if (control.widget == Widget::kSlider) {
      double value = 0.0;
      if (get(handle, time, &value) == ofx::kOk) values.numbers[control.index] = value;
    } else if (control.widget == Widget::kChoice) {
      int value = -1;
      if (get(handle, time, &value) != ofx::kOk) continue;
      if (value >= 0 && static_cast<size_t>(value) < control.words.size()) {
        values.texts[control.index] = control.words[static_cast<size_t>(value)].word;
      }
    } else {
      char* value = nullptr;
      if (get(handle, time, &value) == ofx::kOk && value != nullptr) {
        values.texts[control.index] = value;
      }
    }
  }
  return values;
}

bool Instance::HasSource() const {
  return source_ != nullptr && Reader(sourceProperties_).Int(ofx::prop::kConnected, 1) != 0;
}

void Instance::ShowOnce(const std::string& fault) {
  {
    const std::lock_guard lock(mutex_);
    if (shown_ == fault) return;
    shown_ = fault;
  }
  if (!fault.empty()) ShowError(effect_, fault);
}

ofx::Status Instance::Render(ofx::Properties inArgs) {
  const Reader arguments(inArgs);
  const ofx::Time time = arguments.Double(ofx::prop::kTime, 0.0);
  const Image output(output_, time);
  if (!output) return ofx::kFailed;
  ofx::RectI window = output.bounds();
  arguments.Rect(ofx::prop::kRenderWindow, window);
  window = Common(window, output.bounds());

  const ofx::RectI frame = output.frame();
  const int64_t width = int64_t{frame.x2} - frame.x1, height = int64_t{frame.y2} - frame.y1;
  if (width > kMaxSide || height > kMaxSide || width * height > kMaxPixels) return ofx::kFailed;

  frei0r::Values values = ValuesAt(time);
  const Image source(HasSource() ? source_ : nullptr, time);
  const bool video = values.texts[frei0r::kBackground] == "video" && source;
  if (!video && values.texts[frei0r::kBackground] == "video") {
    values.texts[frei0r::kBackground].clear();  // nothing lies behind: black
  }

  const LentMaker maker(video ? frei0r::Role::kFilter : frei0r::Role::kSource,
                        static_cast<uint32_t>(width), static_cast<uint32_t>(height));
  SetAll(*maker.operator->(), values);
  // A scale that differs by axis changes the shape of the image's pixels.
  const double shape = arguments.Double(ofx::prop::kRenderScale, 1.0, 1) /
                       arguments.Double(ofx::prop::kRenderScale, 1.0, 0);
  maker->SetPixelAspect(output.pixelAspect() * shape);

  Clear(output, window);
  const ofx::RectI part = Common(window, frame);
  if (part.x1 >= part.x2 || part.y1 >= part.y2) return ofx::kOk;
  const Image* behind = video ? &source : nullptr;
  frei0r::Adapter::Parts parts;
  if (output.depth() == Depth::kByte || !maker->TakeApart(FrameAt(time), parts) ||
      !DrawDeepFrame(parts, behind, frame, part, output)) {
    DrawFrame(*maker.operator->(), FrameAt(time), behind, frame, part, output);
  }
  ShowOnce(maker->Fault());
  return ofx::kOk;
}

ofx::Status Instance::IsIdentity(ofx::Properties inArgs, ofx::Properties outArgs) const {
  const ofx::Time time = Reader(inArgs).Double(ofx::prop::kTime, 0.0);
  const frei0r::Values values = ValuesAt(time);
  if (!values.texts[frei0r::kFilename].empty() || !HasSource()) return ofx::kReplyDefault;
  if (values.texts[frei0r::kBackground] != "video") return ofx::kReplyDefault;
  Writer(outArgs).String(ofx::prop::kName, ofx::kSourceClip).Double(ofx::prop::kTime, time);
  return ofx::kOk;
}

ofx::Status Instance::RegionOfDefinition(ofx::Properties outArgs) const {
  if (HasSource()) return ofx::kReplyDefault;  // the source's
  const Reader project(properties_);
  const double left = project.Double(ofx::prop::kProjectOffset, 0.0, 0);
  const double bottom = project.Double(ofx::prop::kProjectOffset, 0.0, 1);
  const double width = project.Double(ofx::prop::kProjectSize, 0.0, 0);
  const double height = project.Double(ofx::prop::kProjectSize, 0.0, 1);
  if (!(width > 0.0 && height > 0.0)) return ofx::kReplyDefault;
  const double sides[] = {left, bottom, left + width, bottom + height};
  for (int i = 0; i < 4; ++i) {
    Writer(outArgs).Double(ofx::prop::kRegionOfDefinition, sides[i], i);
  }
  return ofx::kOk;
}

ofx::Status Instance::ClipPreferences(ofx::Properties outArgs) {
  // A project runs by itself, without a keyframe in the host.
  Writer(outArgs)
      .Int(ofx::prop::kFrameVarying, 1)
      .String(ofx::prop::kPreMultiplication, ofx::value::kPremultiplied);
  return ofx::kOk;
}

}  // namespace kelto::openfx
