#include "adapters/openfx/instance.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <optional>

#include "adapters/frei0r/covered_pixels.h"
#include "adapters/openfx/deep_frame.h"
#include "adapters/openfx/frame_store.h"
#include "adapters/openfx/host_memory.h"
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

/// A maker may have been another instance's: what it cannot take when out of memory must not be
/// drawn as that one had it.
void SetAll(FrameMaker& maker, const frei0r::Values& values) {
  for (int i = 0; i < frei0r::kParameterCount; ++i) {
    const auto index = static_cast<size_t>(i);
    maker.SetText(i, values.texts[index].c_str());
    maker.SetNumber(i, values.numbers[index]);
    if (values.texts[index] != maker.Text(i) || values.numbers[index] != maker.Number(i)) {
      throw std::bad_alloc();
    }
  }
}

/// The source as the effect takes it, row for row from the top.
void FillVideo(const Image& source, const ofx::RectI& frame, uint32_t* video) {
  for (int y = frame.y2 - 1; y >= frame.y1; --y) {
    for (int x = frame.x1; x < frame.x2; ++x) {
      *video++ = source.Holds(x, y) ? source.ReadBgra(x, y) : 0xff000000u;
    }
  }
}

/// What of a window lies outside the frame has nothing in it.
void Clear(const Image& output, const ofx::RectI& window) {
  const ofx::RectI& frame = output.frame();
  for (int y = window.y1; y < window.y2; ++y) {
    if (!output.Draws(y)) continue;
    for (int x = window.x1; x < window.x2; ++x) {
      if (x < frame.x1 || x >= frame.x2 || y < frame.y1 || y >= frame.y2) output.Write(x, y, {});
    }
  }
}

uint32_t* Pixels(const HostMemory& memory) { return static_cast<uint32_t*>(memory.data()); }

/// A window of a frame as the effect itself draws it, with 8 bits.
void DrawFrame(ofx::Effect effect, FrameMaker& maker, int64_t number, const Image* source,
               const ofx::RectI& frame, const ofx::RectI& window, const Image& output) {
  const auto width = static_cast<size_t>(frame.x2 - frame.x1);
  const auto height = static_cast<size_t>(frame.y2 - frame.y1);
  const size_t bytes = width * height * sizeof(uint32_t);
  std::optional<HostMemory> video;
  if (source != nullptr) FillVideo(*source, frame, Pixels(video.emplace(effect, bytes)));
  const HostMemory memory(effect, bytes);
  uint32_t* drawn = Pixels(memory);
  frei0r::CoveredPixels covered;
  maker.RenderFrame(number, video ? Pixels(*video) : nullptr, drawn, &covered);
  if (maker.Fault() == frei0r::kNoMemory) throw std::bad_alloc();
  for (int y = window.y1; y < window.y2; ++y) {
    if (!output.Draws(y)) continue;
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
      if (get(handle, time, &value) != ofx::kOk || !std::isfinite(value)) continue;
      const frei0r::Parameter& parameter = control.parameter();
      values.numbers[control.index] = std::clamp(value, parameter.lower, parameter.upper);
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
  if (inArgs == nullptr) return ofx::kBadHandle;  // there is no saying what to render
  const Reader arguments(inArgs);
  const ofx::Time time = arguments.Double(ofx::prop::kTime, 0.0);
  const double scaleY = arguments.Double(ofx::prop::kRenderScale, 1.0, 1);
  Image output(output_, time, scaleY);
  if (!output) return ofx::kFailed;
  output.DrawFieldAlone(arguments.String(ofx::prop::kFieldToRender, ""));
  ofx::RectI window = output.bounds();
  if (arguments.Rect(ofx::prop::kRenderWindow, window)) window = output.WindowOf(window);

  const ofx::RectI frame = output.frame();
  const int64_t width = int64_t{frame.x2} - frame.x1, height = int64_t{frame.y2} - frame.y1;
  if (width > kMaxSide || height > kMaxSide || width * height > kMaxPixels) return ofx::kFailed;

  frei0r::Values values = ValuesAt(time);
  const Image source(HasSource() ? source_ : nullptr, time, scaleY);
  const bool video = values.texts[frei0r::kBackground] == "video" && source;
  if (!video && values.texts[frei0r::kBackground] == "video") {
    values.texts[frei0r::kBackground].clear();  // nothing lies behind: black
  }

  const LentMaker maker(video ? frei0r::Role::kFilter : frei0r::Role::kSource,
                        static_cast<uint32_t>(width), static_cast<uint32_t>(height));
  SetAll(*maker.operator->(), values);
  // A scale that differs by axis changes the shape of the image's pixels.
  const double shape = scaleY / arguments.Double(ofx::prop::kRenderScale, 1.0, 0);
  maker->SetPixelAspect(output.pixelAspect() * shape);

  Clear(output, window);
  const ofx::RectI part = Common(window, frame);
  if (part.x1 >= part.x2 || part.y1 >= part.y2) return ofx::kOk;
  const Image* behind = video ? &source : nullptr;
  const int64_t number = FrameAt(time);
  std::string shallow;  ///< why a photograph is drawn with less than its bits
  const auto drawDeep = [&] {
    shallow.clear();
    frei0r::Adapter::Parts parts;
    return output.depth() != Depth::kByte && maker->TakeApart(number, parts) &&
           DrawDeepFrame(effect_, parts, behind, frame, part, output, shallow);
  };
  if (!drawDeep()) {
    const bool failed = !maker->Fault().empty();
    DrawFrame(effect_, *maker.operator->(), number, behind, frame, part, output);
    // A photograph that could be read only now has all its bits, too.
    if (failed && maker->Fault().empty()) drawDeep();
  }
  const std::string fault = maker->Fault();
  ShowOnce(fault.empty() ? shallow : fault);
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

bool Instance::ProjectFrame(ofx::RectD& frame) const {
  const Reader project(properties_);
  const double left = project.Double(ofx::prop::kProjectOffset, 0.0, 0);
  const double bottom = project.Double(ofx::prop::kProjectOffset, 0.0, 1);
  const double width = project.Double(ofx::prop::kProjectSize, 0.0, 0);
  const double height = project.Double(ofx::prop::kProjectSize, 0.0, 1);
  frame = {left, bottom, left + width, bottom + height};
  return width > 0.0 && height > 0.0;
}

ofx::Status Instance::RegionOfDefinition(ofx::Properties outArgs) const {
  ofx::RectD frame{};
  // With a source it is the source's.
  if (HasSource() || !ProjectFrame(frame)) return ofx::kReplyDefault;
  const double sides[] = {frame.x1, frame.y1, frame.x2, frame.y2};
  for (int i = 0; i < 4; ++i) {
    Writer(outArgs).Double(ofx::prop::kRegionOfDefinition, sides[i], i);
  }
  return ofx::kOk;
}

bool Instance::ViewAt(ofx::Time time, View& view, ofx::RectD& frame) const {
  const auto regionOf = TheSuites().effects->clipGetRegionOfDefinition;
  const bool known = regionOf != nullptr && regionOf(output_, time, &frame) == ofx::kOk;
  if (!known && !ProjectFrame(frame)) return false;
  const double width = std::round(frame.x2 - frame.x1), height = std::round(frame.y2 - frame.y1);
  constexpr auto kMost = static_cast<double>(kMaxSide);
  if (!(width >= 1.0 && width <= kMost && height >= 1.0 && height <= kMost)) return false;
  const LentMaker maker(frei0r::Role::kFilter, static_cast<uint32_t>(width),
                        static_cast<uint32_t>(height));
  SetAll(*maker.operator->(), ValuesAt(time));
  frei0r::Adapter::Parts parts;
  if (!maker->TakeApart(FrameAt(time), parts)) return false;
  view = parts.shown.view;
  return true;
}

ofx::Status Instance::ClipPreferences(ofx::Properties outArgs) {
  // A project runs by itself, without a keyframe in the host.
  Writer(outArgs)
      .Int(ofx::prop::kFrameVarying, 1)
      .String(ofx::prop::kPreMultiplication, ofx::value::kPremultiplied);
  return ofx::kOk;
}

}  // namespace kelto::openfx
