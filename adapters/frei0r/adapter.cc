#include "adapters/frei0r/adapter.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <exception>
#include <new>
#include <string>

#include "adapters/frei0r/console.h"
#include "adapters/frei0r/covered_pixels.h"
#include "adapters/frei0r/frame_parts.h"
#include "adapters/frei0r/photo_effect.h"
#include "adapters/frei0r/scene.h"
#include "catalogue/parameters.h"

namespace kelto::frei0r {
namespace {

const Parameter& At(Role role, int index) { return Parameters(role)[static_cast<size_t>(index)]; }

uint64_t NewSceneId() {
  static std::atomic<uint64_t> last{0};
  return ++last;
}

constexpr uint32_t kBlack = 0xff000000;

/// What a host means by 0 where 0 is nothing: it left the place in its list of values empty.
double ZeroMeans(int index, double value) { return index == kZoom && value == 0.0 ? 1.0 : value; }

host::SampleAspect SampleAspectOf(double ratio) {
  constexpr double kSteps = 2520.0;  // the shapes of video's pixels in few digits: 16/15, 64/45 ...
  if (ratio == 1.0) return {};
  const double wide = std::clamp(std::round(ratio * kSteps), 1.0, 65535.0);
  return {static_cast<int32_t>(wide), static_cast<int32_t>(kSteps)};
}

}  // namespace

Adapter::Adapter(Role role, uint32_t width, uint32_t height, uint32_t rowLength, FrameClock clock)
    : role_(role),
      width_(width),
      height_(height),
      rowLength_(rowLength),
      values_(DefaultValues(role)),
      clock_(clock),
      scene_(std::make_unique<Scene>()) {}

Adapter::~Adapter() = default;

void Adapter::SetNumber(int index, double value) noexcept try {
  const std::lock_guard lock(mutex_);
  const Parameter& parameter = At(role_, index);
  if (parameter.isText) return;
  const std::string name = parameter.name;
  if (!std::isfinite(value)) {
    SayOnce(name + ": was set to something that is not a number; staying as it was", name + " nan");
    return;
  }
  const double meant = ZeroMeans(index, value);
  const double held = std::clamp(meant, parameter.lower, parameter.upper);
  if (held != meant) {
    SayOnce(name + " " + std::to_string(value) + ": goes from " + std::to_string(parameter.lower) +
                " to " + std::to_string(parameter.upper) + "; held there",
            name + " range");
  }
  double& number = values_.numbers[static_cast<size_t>(index)];
  changed_ |= number != held;
  number = held;
} catch (const std::exception&) {
  // No memory for a message; the parameter stays as it was.
}

void Adapter::SetText(int index, const char* value) noexcept try {
  const std::lock_guard lock(mutex_);
  if (!At(role_, index).isText) return;
  std::string& text = values_.texts[static_cast<size_t>(index)];
  const char* given = value == nullptr ? "" : value;
  if (text == given) return;  // some hosts set every parameter before every frame
  text = given;
  changed_ = true;
} catch (const std::exception&) {
  // No memory for the text; the parameter stays as it was.
}

double Adapter::Number(int index) const {
  const std::lock_guard lock(mutex_);
  return values_.numbers[static_cast<size_t>(index)];
}

const char* Adapter::Text(int index) const {
  const std::lock_guard lock(mutex_);
  return values_.texts[static_cast<size_t>(index)].c_str();
}

void Adapter::Render(double time, const uint32_t* in, uint32_t* out) noexcept {
  if (out == nullptr || width_ == 0 || height_ == 0) return;
  const std::lock_guard lock(mutex_);
  try {
    ReadParameters();
    const double rate = scene_->format.rate.PerSecond();
    const int64_t frame = clock_.Next(time, rate);
    if (scene_->frames > 0 && clock_.MissesRate()) {
      char text[160];
      std::snprintf(
          text, sizeof text,
          "frames: the host's times are not those of %g fps, so frames are counted, which "
          "is wrong on several threads; give the stream's rate in fps",
          rate);
      SayOnce(text);
    }
    RenderOver(in, out, frame, nullptr);
  } catch (const std::exception& error) {
    // Beyond what RenderOver minds: memory.
    FillBackground(in, out);
    std::fprintf(stderr, "kelto_pan_zoom: a frame could not be rendered: %s\n", error.what());
  }
}

void Adapter::RenderFrame(int64_t frame, const uint32_t* in, uint32_t* out,
                          CoveredPixels* covered) noexcept {
  if (out == nullptr || width_ == 0 || height_ == 0) return;
  const std::lock_guard lock(mutex_);
  CoveredPixels all{0, 0, static_cast<int32_t>(width_), static_cast<int32_t>(height_)};
  CoveredPixels& touched = covered != nullptr ? *covered : all;
  touched = all;
  try {
    ReadParameters();
    RenderOver(in, out, frame, &touched);
  } catch (const std::exception&) {
    FillBackground(in, out);
    fault_ = kNoMemory;
  }
  // A frame without the photograph is the video's.
  if (!fault_.empty() && in != nullptr && !scene_->background) touched = {};
}

bool Adapter::TakeApart(int64_t frame, Parts& parts) {
  const std::lock_guard lock(mutex_);
  fault_.clear();
  ReadParameters();
  if (!effect_ || scene_->outlined || scene_->format.Interlaced() ||
      scene_->levels != entry::kLevelsRGB || scene_->playMode != hfxPlayModeRender) {
    return false;
  }
  FrameRequest request;
  request.scene = scene_.get();
  request.sceneId = sceneId_;
  request.moment = MomentOf(frame);
  request.quality = values_.numbers[kQuality];
  request.size = {static_cast<int32_t>(width_), static_cast<int32_t>(height_)};
  fault_ = effect_->Look(request, parts.shown);
  if (fault_ == kNoMemory) throw std::bad_alloc();
  if (!fault_.empty()) return false;
  parts.photo = scene_->photo;
  parts.background = scene_->background;
  return true;
}

void Adapter::SetPixelAspect(double ratio) noexcept {
  const std::lock_guard lock(mutex_);
  if (!(ratio > 0.0) || pixelAspect_ == ratio) return;
  pixelAspect_ = ratio;
  changed_ = true;
}

std::string Adapter::Fault() const {
  const std::lock_guard lock(mutex_);
  return fault_;
}

uint64_t Adapter::PictureBytes() { return PhotoEffect::PictureBytes(); }

void Adapter::ReadParameters() {
  if (!changed_) return;
  Scene scene = SceneOf(values_, role_, *scene_);
  if (!effect_ || scene.photo != scene_->photo || scene.levels != scene_->levels) {
    effect_.reset();  // first, so that a picture nobody else shows makes room for the new one
    if (!scene.photo.empty()) effect_ = PhotoEffect::Share(scene.photo, scene.levels);
  }
  if (pixelAspect_ > 0.0) scene.format.sampleAspect = SampleAspectOf(pixelAspect_);
  *scene_ = std::move(scene);
  sceneId_ = NewSceneId();
  changed_ = false;
}

Moment Adapter::MomentOf(int64_t frame) const {
  const int32_t frames = scene_->frames;
  if (frames == 0) return MomentAt(values_.numbers[kProgress]);
  return {static_cast<int32_t>(std::clamp<int64_t>(frame, 0, frames - 1)), frames};
}

void Adapter::RenderOver(const uint32_t* in, uint32_t* out, int64_t frame, CoveredPixels* covered) {
  fault_.clear();
  if (!effect_) {
    fault_ = "no photo";
    return FillBackground(in, out);
  }

  FrameRequest request;
  request.covered = covered;
  request.scene = scene_.get();
  request.sceneId = sceneId_;
  request.moment = MomentOf(frame);
  request.quality = values_.numbers[kQuality];
  // The effect demands an input. Of this one it takes nothing: it draws over a colour.
  const uint32_t* behind = out;
  const size_t pixels = size_t{rowLength_} * (height_ - 1) + width_;
  if (!scene_->background) {
    // It overwrites the video, which is the host's and not to be written to. A source has none.
    if (in != nullptr) {
      videoCopy_.assign(in, in + pixels);
    } else {
      videoCopy_.assign(pixels, kBlack);
    }
    behind = videoCopy_.data();
  }
  // A frame drawn in place loses the video that it is to keep.
  const bool keeps = !scene_->background && in != nullptr;
  if (keeps && in == out) original_.assign(in, in + videoCopy_.size());
  request.overNothing = scene_->background == host::kNothing;
  if (request.overNothing) {
    original_.assign(pixels, 0);
    request.covered = nullptr;
  }
  const hfxImage video = ImageOf(in == out || request.overNothing ? original_.data() : in);
  if (keeps || request.overNothing) request.video = &video;
  hfxImage input = ImageOf(behind), output = ImageOf(out);
  request.input = &input;
  request.output = &output;
  fault_ = effect_->Render(request);
  if (!fault_.empty()) {
    SayOnce(fault_);
    FillBackground(in, out);
  } else if (scene_->outlined) {
    MakeOpaque(out);  // the effect's outlines are not
  }
}

hfxImage Adapter::ImageOf(const uint32_t* pixels) const {
  // The effect writes to outputs only; its interface has one kind of image for both.
  auto* bytes = reinterpret_cast<uint8_t*>(const_cast<uint32_t*>(pixels));
  return {static_cast<int32_t>(width_),
          static_cast<int32_t>(height_),
          bytes,
          ptrdiff_t{4} * rowLength_,
          hfxColorspaceRGB,
          hfxImgFormatBGRA};
}

void Adapter::MakeOpaque(uint32_t* out) const {
  for (size_t row = 0; row < height_; ++row) {
    auto* bytes = reinterpret_cast<uint8_t*>(out + row * rowLength_);
    for (size_t x = 0; x < width_; ++x) bytes[4 * x + 3] = 255;
  }
}

void Adapter::FillBackground(const uint32_t* in, uint32_t* out) const {
  const host::Colour colour = scene_->background.value_or(host::Colour{});
  const uint8_t bytes[4] = {colour.blue, colour.green, colour.red, colour.alpha};
  uint32_t pixel = 0;
  std::memcpy(&pixel, bytes, sizeof pixel);
  const bool video = !scene_->background && in != nullptr;
  for (size_t row = 0; row < height_; ++row) {
    const size_t start = row * rowLength_;
    if (!video) {
      std::fill_n(out + start, width_, pixel);
    } else if (in != out) {
      std::copy_n(in + start, width_, out + start);
    }
  }
}

}  // namespace kelto::frei0r
