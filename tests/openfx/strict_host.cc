#include "tests/openfx/strict_host.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace kelto::test {
namespace {

constexpr uint8_t kGuard = 0xa5;
constexpr size_t kGuardBytes = 64;

/// One host at a time loads the plug-in, as in a process of a real one. Renders of a thread have
/// their request here.
StrictHost* current = nullptr;
thread_local const Render* rendering = nullptr;

}  // namespace

size_t HostImage::PixelBytes() const {
  const size_t sample = depth == ofx::value::kByte ? 1 : depth == ofx::value::kShort ? 2 : 4;
  return sample * (components == ofx::value::kRgba ? 4 : 3);
}

int HostImage::RowBytes() const {
  const int bytes = static_cast<int>(PixelBytes()) * (bounds.x2 - bounds.x1) + padding;
  return topDown ? -bytes : bytes;
}

uint8_t* HostImage::At(int x, int y) {
  const int rows = bounds.y2 - bounds.y1, row = y - bounds.y1;
  const size_t stored = static_cast<size_t>(topDown ? rows - 1 - row : row);
  return memory.data() + kGuardBytes + stored * static_cast<size_t>(std::abs(RowBytes())) +
         static_cast<size_t>(x - bounds.x1) * PixelBytes();
}

void HostImage::Make() {
  const auto rows = static_cast<size_t>(bounds.y2 - bounds.y1);
  memory.assign(2 * kGuardBytes + rows * static_cast<size_t>(std::abs(RowBytes())), kGuard);
}

bool HostImage::GuardsHold() const {
  const auto row = static_cast<size_t>(std::abs(RowBytes()));
  const size_t used = row - static_cast<size_t>(padding);
  const size_t rows = static_cast<size_t>(bounds.y2 - bounds.y1);
  for (size_t i = 0; i < memory.size(); ++i) {
    const bool inside =
        i >= kGuardBytes && i < kGuardBytes + rows * row && (i - kGuardBytes) % row < used;
    if (!inside && memory[i] != kGuard) return false;
  }
  return true;
}

double HostImage::Sample(int x, int y, int channel) {
  const uint8_t* at = At(x, y);
  if (depth == ofx::value::kByte) return at[channel] / 255.0;
  if (depth == ofx::value::kShort) {
    uint16_t sample = 0;
    std::memcpy(&sample, at + 2 * channel, 2);
    return sample / 65535.0;
  }
  float sample = 0.0f;
  std::memcpy(&sample, at + 4 * channel, 4);
  return sample;
}

struct StrictHost::Functions {
  static bool IsEffect(ofx::Effect effect) {
    if (reinterpret_cast<StrictHost*>(effect) == current && current != nullptr) return true;
    TheFaults().Note("an effect that is none");
    return false;
  }
  static PropertySet* NewImage(HostImage& image, const std::string& owner) {
    auto* set = new PropertySet(owner);
    const auto sides = [](const ofx::RectI& r) { return std::vector<int>{r.x1, r.y1, r.x2, r.y2}; };
    set->Pointer(ofx::prop::kImageData, image.At(image.bounds.x1, image.bounds.y1))
        .Ints(ofx::prop::kImageBounds, sides(image.bounds))
        .Ints(ofx::prop::kImageRegionOfDefinition, sides(image.frame))
        .Ints(ofx::prop::kImageRowBytes, {image.RowBytes()})
        .Doubles(ofx::prop::kImagePixelAspect, {image.pixelAspect})
        .Strings(ofx::prop::kPixelDepth, {image.depth})
        .Strings(ofx::prop::kComponents, {image.components})
        .Strings(ofx::prop::kPreMultiplication, {image.alpha})
        .Strings(ofx::prop::kImageField, {image.field})
        .Seal();
    return set;
  }

  // The effect suite.
  static ofx::Status GetPropertySet(ofx::Effect effect, ofx::Properties* properties) {
    const AtWork host(AtWork::kHost);
    if (!IsEffect(effect)) return ofx::kBadHandle;
    *properties = current->effect_.handle();
    return ofx::kOk;
  }
  static ofx::Status GetParamSet(ofx::Effect effect, ofx::ParameterSet* set) {
    const AtWork host(AtWork::kHost);
    if (!IsEffect(effect)) return ofx::kBadHandle;
    *set = reinterpret_cast<ofx::ParameterSet>(current);
    return ofx::kOk;
  }
  static ofx::Status ClipDefine(ofx::Effect effect, const char* name, ofx::Properties* properties) {
    const AtWork host(AtWork::kHost);
    if (!IsEffect(effect)) return ofx::kBadHandle;
    if (current->clips_.contains(name)) return ofx::kExists;
    auto set = std::make_unique<PropertySet>(std::string("clip ") + name);
    set->Strings(ofx::prop::kSupportedComponents, {}, 0)
        .Ints(ofx::prop::kSupportsTiles, {1})
        .Ints(ofx::prop::kTemporalClipAccess, {0})
        .Ints(ofx::prop::kOptional, {0})
        .Ints(ofx::prop::kConnected, {1});
    *properties = set->handle();
    current->clips_[name].properties = std::move(set);
    return ofx::kOk;
  }
  static ofx::Status ClipGetHandle(ofx::Effect effect, const char* name, ofx::Clip* clip,
                                   ofx::Properties* properties) {
    const AtWork host(AtWork::kHost);
    if (!IsEffect(effect)) return ofx::kBadHandle;
    const auto found = current->clips_.find(name);
    if (found == current->clips_.end()) return ofx::kBadIndex;
    *clip = reinterpret_cast<ofx::Clip>(&found->second);
    if (properties != nullptr) *properties = found->second.properties->handle();
    return ofx::kOk;
  }
  static ofx::Status ClipGetPropertySet(ofx::Clip, ofx::Properties*) { return ofx::kUnsupported; }
  static ofx::Status ClipGetImage(ofx::Clip clip, ofx::Time time, const ofx::RectD*,
                                  ofx::Properties* image) {
    const AtWork host(AtWork::kHost);
    if (rendering == nullptr || time != rendering->time) {
      TheFaults().Note("an image at a time that is not rendered");
      return ofx::kFailed;
    }
    const bool output = reinterpret_cast<ClipRecord*>(clip) == &current->clips_.at("Output");
    HostImage* pixels = output ? rendering->output : rendering->source;
    if (pixels == nullptr) return ofx::kFailed;
    *image = NewImage(*pixels, output ? "output image" : "source image")->handle();
    const std::lock_guard lock(current->mutex_);
    ++current->images_;
    return ofx::kOk;
  }
  static ofx::Status ClipReleaseImage(ofx::Properties image) {
    const AtWork host(AtWork::kHost);
    delete PropertySet::Of(image);
    const std::lock_guard lock(current->mutex_);
    --current->images_;
    return ofx::kOk;
  }

  static ofx::Status ClipGetRegionOfDefinition(ofx::Clip, ofx::Time time, ofx::RectD* region) {
    const AtWork host(AtWork::kHost);
    *region = {0.0, 0.0, 320.0, 180.0};
    if (rendering == nullptr) return ofx::kOk;
    if (time != rendering->time) TheFaults().Note("a region at a time that is not rendered");
    const HostImage& image = *rendering->output;
    const double rows = image.halfHeight ? 2.0 : 1.0;
    *region = {image.frame.x1 / rendering->scaleX, image.frame.y1 * rows / rendering->scaleY,
               image.frame.x2 / rendering->scaleX, image.frame.y2 * rows / rendering->scaleY};
    return ofx::kOk;
  }

  // The parameter suite.
  static ofx::Status Define(ofx::ParameterSet, const char* type, const char* name,
                            ofx::Properties* properties) {
    const AtWork host(AtWork::kHost);
    if (current->parameters_.contains(name)) return ofx::kExists;
    HostParameter& parameter = current->parameters_[name];
    parameter.type = type;
    parameter.properties = std::make_unique<PropertySet>(std::string("parameter ") + name);
    PropertySet& set = *parameter.properties;
    for (const char* text : {ofx::prop::kLabel, ofx::prop::kShortLabel, ofx::prop::kLongLabel,
                             ofx::prop::kHint, ofx::prop::kParent}) {
      set.Strings(text, {""});
    }
    if (parameter.type == ofx::value::kDouble) {
      for (const char* number :
           {ofx::prop::kDefault, ofx::prop::kMin, ofx::prop::kMax, ofx::prop::kDisplayMin,
            ofx::prop::kDisplayMax, ofx::prop::kIncrement}) {
        set.Doubles(number, {std::nan("")});
      }
      set.Ints(ofx::prop::kDigits, {2}).Ints(ofx::prop::kAnimates, {1});
    } else if (parameter.type == ofx::value::kChoice) {
      set.Ints(ofx::prop::kDefault, {0})
          .Strings(ofx::prop::kChoiceOption, {}, 0)
          .Ints(ofx::prop::kAnimates, {1});
    } else if (parameter.type == ofx::value::kString) {
      set.Strings(ofx::prop::kDefault, {""})
          .Strings(ofx::prop::kStringMode, {ofx::value::kSingleLine})
          .Ints(ofx::prop::kAnimates, {1});
    } else if (parameter.type != ofx::value::kGroup) {
      TheFaults().Note("a parameter of type " + parameter.type);
      return ofx::kUnsupported;
    }
    *properties = set.handle();
    return ofx::kOk;
  }
  static ofx::Status GetHandle(ofx::ParameterSet, const char* name, ofx::ParameterHandle* handle,
                               ofx::Properties*) {
    const AtWork host(AtWork::kHost);
    const auto found = current->parameters_.find(name);
    if (found == current->parameters_.end()) return ofx::kUnknown;
    *handle = reinterpret_cast<ofx::ParameterHandle>(&found->second);
    return ofx::kOk;
  }
  static ofx::Status GetValueAtTime(ofx::ParameterHandle handle, ofx::Time time, ...) {
    const AtWork host(AtWork::kHost);
    if (rendering != nullptr && time != rendering->time) {
      TheFaults().Note("a parameter at another time than the frame's");
    }
    const auto& parameter = *reinterpret_cast<HostParameter*>(handle);
    va_list rest;
    va_start(rest, time);
    if (parameter.type == ofx::value::kDouble) {
      *va_arg(rest, double*) = parameter.number(time);
    } else if (parameter.type == ofx::value::kChoice) {
      *va_arg(rest, int*) = parameter.choice;
    } else {
      *va_arg(rest, const char**) = parameter.text.c_str();
    }
    va_end(rest);
    return ofx::kOk;
  }

  [[gnu::format(printf, 4, 5)]] static ofx::Status Message(void*, const char*, const char*,
                                                           const char* format, ...) {
    const AtWork host(AtWork::kHost);
    char text[1024];
    va_list rest;
    va_start(rest, format);
    std::vsnprintf(text, sizeof text, format, rest);
    va_end(rest);
    const std::lock_guard lock(current->mutex_);
    current->messages_.emplace_back(text);
    return ofx::kOk;
  }

  // The memory suite. Addresses are as odd as an allocator's can be.
  static ofx::Status Allocate(void*, size_t bytes, void** memory) {
    const AtWork host(AtWork::kHost);
    const std::lock_guard lock(current->mutex_);
    if (++current->allocations_ == current->failing_) return ofx::kOutOfMemory;
    *memory = std::malloc(bytes);
    current->memory_.insert(*memory);
    return ofx::kOk;
  }
  static ofx::Status Free(void* memory) {
    const AtWork host(AtWork::kHost);
    const std::lock_guard lock(current->mutex_);
    if (current->memory_.erase(memory) == 0) {
      TheFaults().Note("memory that is not the host's");
      return ofx::kBadHandle;
    }
    std::free(memory);
    return ofx::kOk;
  }

  // The draw suite.
  static bool IsContext(ofx::DrawContext context) {
    if (reinterpret_cast<StrictHost*>(context) == current) return true;
    TheFaults().Note("a context of drawing that is none");
    return false;
  }
  static ofx::Status GetColour(ofx::DrawContext context, int standard, ofx::Colour* colour) {
    if (!IsContext(context) || standard < 0 || standard > 6) return ofx::kBadValue;
    *colour = {0.9f, 0.8f, 0.1f, 1.0f};
    return ofx::kOk;
  }
  static ofx::Status SetColour(ofx::DrawContext context, const ofx::Colour*) {
    return IsContext(context) ? ofx::kOk : ofx::kBadHandle;
  }
  static ofx::Status SetLineWidth(ofx::DrawContext, float) { return ofx::kOk; }
  static ofx::Status SetLineStipple(ofx::DrawContext, int) { return ofx::kOk; }
  static ofx::Status DrawPoints(ofx::DrawContext context, int primitive, const ofx::PointD* points,
                                int count) {
    const AtWork host(AtWork::kHost);
    if (!IsContext(context) || primitive != ofx::kLineLoop) return ofx::kBadValue;
    current->overlay_.assign(points, points + count);
    return ofx::kOk;
  }
  static ofx::Status DrawText(ofx::DrawContext, const char*, const ofx::PointD*, int) {
    return ofx::kUnsupported;
  }

  static const void* FetchSuite(ofx::Properties, const char* name, int version) {
    const AtWork host(AtWork::kHost);
    static const ofx::EffectSuite effects{GetPropertySet,
                                          GetParamSet,
                                          ClipDefine,
                                          ClipGetHandle,
                                          ClipGetPropertySet,
                                          ClipGetImage,
                                          ClipReleaseImage,
                                          ClipGetRegionOfDefinition,
                                          nullptr,
                                          nullptr,
                                          nullptr,
                                          nullptr,
                                          nullptr};
    static const ofx::ParameterSuite parameters = [] {
      ofx::ParameterSuite suite{};
      suite.define = Define;
      suite.getHandle = GetHandle;
      suite.getValueAtTime = GetValueAtTime;
      return suite;
    }();
    static const ofx::MessageSuite messages{Message, nullptr, nullptr}, noMessages{};
    static const ofx::MemorySuite memory{Allocate, Free}, noMemory{};
    static const ofx::DrawSuite draw{GetColour,      SetColour,  SetLineWidth,
                                     SetLineStipple, DrawPoints, DrawText},
        noDrawing{};
    const std::string wanted = name;
    if (wanted == current->lacks_.suite) return nullptr;
    if (wanted == ofx::kPropertySuite && version == 1) return &PropertySet::Suite();
    if (wanted == ofx::kEffectSuite && version == 1) return &effects;
    if (wanted == ofx::kParameterSuite && version == 1) return &parameters;
    if (wanted == ofx::kMessageSuite && version <= 2) {
      return current->lacks_.functions ? &noMessages : &messages;
    }
    if (wanted == ofx::kMemorySuite && version == 1) {
      return current->lacks_.functions ? &noMemory : &memory;
    }
    if (wanted == ofx::kDrawSuite && version == 1) {
      return current->lacks_.functions ? &noDrawing : &draw;
    }
    return nullptr;
  }
};

StrictHost::StrictHost(const ofx::Plugin& plugin, HostLacks lacks)
    : plugin_(plugin), lacks_(std::move(lacks)) {
  current = this;
  host_ = {hostProperties_.handle(), Functions::FetchSuite};
  for (const char* name :
       {ofx::prop::kLabel, ofx::prop::kShortLabel, ofx::prop::kLongLabel, ofx::prop::kGrouping,
        ofx::prop::kPluginDescription, ofx::prop::kRenderThreadSafety, ofx::prop::kContext}) {
    effect_.Strings(name, {""});
  }
  for (const char* name : {ofx::prop::kSupportedContexts, ofx::prop::kSupportedPixelDepths}) {
    effect_.Strings(name, {}, 0);
  }
  for (const char* name : {ofx::prop::kSingleInstance, ofx::prop::kHostFrameThreading,
                           ofx::prop::kSupportsMultiResolution, ofx::prop::kSupportsTiles,
                           ofx::prop::kTemporalClipAccess, ofx::prop::kMultipleClipPars}) {
    effect_.Ints(name, {-1});
  }
  effect_.Strings(ofx::prop::kIcon, {"", ""});
  if (lacks_.suite != ofx::kDrawSuite) effect_.Pointer(ofx::prop::kOverlay, nullptr);
  effect_.Pointer(ofx::prop::kInstanceData, nullptr)
      .Doubles(ofx::prop::kProjectSize, {320.0, 180.0})
      .Doubles(ofx::prop::kProjectOffset, {0.0, 0.0});
}

StrictHost::~StrictHost() {
  if (instance_) Destroy();
  if (loaded_) plugin_.mainEntry(ofx::action::kUnload, nullptr, nullptr, nullptr);
  if (images_ != 0) TheFaults().Note("images that were not given back");
  if (!memory_.empty()) TheFaults().Note("memory that was not given back");
  current = nullptr;
}

ofx::Status StrictHost::Call(const char* action, PropertySet* in, PropertySet* out) {
  const AtWork plugin(AtWork::kPlugin);
  return plugin_.mainEntry(action, this, in == nullptr ? nullptr : in->handle(),
                           out == nullptr ? nullptr : out->handle());
}

ofx::Status StrictHost::Start(const std::string& context) {
  plugin_.setHost(&host_);
  ofx::Status status = plugin_.mainEntry(ofx::action::kLoad, nullptr, nullptr, nullptr);
  loaded_ = status == ofx::kOk;
  if (status == ofx::kOk) status = Call(ofx::action::kDescribe);
  PropertySet in("describe");
  in.Strings(ofx::prop::kContext, {context}).Seal();
  if (status == ofx::kOk) status = Call(ofx::action::kDescribeInContext, &in);
  for (auto& [name, parameter] : parameters_) {
    if (parameter.type == ofx::value::kDouble) {
      const double preset = parameter.properties->Double(ofx::prop::kDefault);
      parameter.number = [=](double) { return preset; };
    } else if (parameter.type == ofx::value::kChoice) {
      parameter.choice = parameter.properties->Int(ofx::prop::kDefault);
    } else if (parameter.type == ofx::value::kString) {
      parameter.text = parameter.properties->String(ofx::prop::kDefault);
    }
  }
  return status;
}

ofx::Status StrictHost::Create() {
  const ofx::Status status = Call(ofx::action::kCreateInstance);
  instance_ = status == ofx::kOk;
  return status;
}

ofx::Status StrictHost::Destroy() {
  instance_ = false;
  return Call(ofx::action::kDestroyInstance);
}

ofx::Status StrictHost::Run(const Render& render) {
  if (clips_.contains("Source")) {
    clips_["Source"].properties->Ints(ofx::prop::kConnected, {render.source != nullptr ? 1 : 0});
  }
  PropertySet in("render");
  const ofx::RectI window = render.window.value_or(render.output->bounds);
  in.Doubles(ofx::prop::kTime, {render.time})
      .Ints(ofx::prop::kRenderWindow, {window.x1, window.y1, window.x2, window.y2});
  if (render.withScaleAndField) {
    in.Doubles(ofx::prop::kRenderScale, {render.scaleX, render.scaleY})
        .Strings(ofx::prop::kFieldToRender, {render.field});
  }
  in.Seal();
  rendering = &render;
  const ofx::Status status = Call(ofx::action::kRender, &in);
  rendering = nullptr;
  return status;
}

std::string StrictHost::Identity(double time, bool connected) {
  clips_["Source"].properties->Ints(ofx::prop::kConnected, {connected ? 1 : 0});
  PropertySet in("identity"), out("identity");
  in.Doubles(ofx::prop::kTime, {time}).Seal();
  out.Strings(ofx::prop::kName, {""}).Doubles(ofx::prop::kTime, {0.0});
  return Call(ofx::action::kIsIdentity, &in, &out) == ofx::kOk ? out.String(ofx::prop::kName) : "";
}

std::optional<ofx::RectD> StrictHost::Region(bool connected) {
  if (clips_.contains("Source")) {
    clips_["Source"].properties->Ints(ofx::prop::kConnected, {connected ? 1 : 0});
  }
  PropertySet in("region"), out("region");
  in.Doubles(ofx::prop::kTime, {0.0}).Seal();
  out.Doubles(ofx::prop::kRegionOfDefinition, {0.0, 0.0, 0.0, 0.0});
  if (Call(ofx::action::kRegionOfDefinition, &in, &out) != ofx::kOk) return std::nullopt;
  const auto side = [&](size_t i) { return out.Double(ofx::prop::kRegionOfDefinition, i); };
  return ofx::RectD{side(0), side(1), side(2), side(3)};
}

std::vector<std::string> StrictHost::messages() const {
  const std::lock_guard lock(mutex_);
  return messages_;
}

std::vector<ofx::PointD> StrictHost::Overlay(double time, bool withContext) {
  overlay_.clear();
  const auto entry = reinterpret_cast<ofx::MainEntry>(effect_.PointerOf(ofx::prop::kOverlay));
  if (entry == nullptr) return {};
  for (const char* action : {ofx::action::kDescribe, ofx::action::kCreateInstance}) {
    entry(action, this, nullptr, nullptr);
  }
  PropertySet in("overlay");
  in.Doubles(ofx::prop::kTime, {time})
      .Pointer(ofx::prop::kEffectInstance, this)
      .Pointer(ofx::prop::kDrawContext, withContext ? this : nullptr)
      .Seal();
  entry(ofx::action::kDraw, this, in.handle(), nullptr);
  entry(ofx::action::kDestroyInstance, this, nullptr, nullptr);
  return overlay_;
}

void StrictHost::FailAllocation(int nth) {
  allocations_ = 0;
  failing_ = nth;
}

}  // namespace kelto::test
