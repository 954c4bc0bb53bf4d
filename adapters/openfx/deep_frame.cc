#include "adapters/openfx/deep_frame.h"

#include <optional>

#include "adapters/frei0r/covered_pixels.h"
#include "adapters/openfx/deep_photos.h"
#include "adapters/openfx/host_memory.h"
#include "deep/engine.h"
#include "framing/frame_rects.h"

namespace kelto::openfx {
namespace {

/// Floats of a window, not cleared.
class Floats {
 public:
  Floats(ofx::Effect effect, const ofx::RectI& window)
      : memory_(effect, DeepPicture::BytesFor(Width(window), Height(window), kSample)) {
    rows_.pixels = memory_.data();
    rows_.width = Width(window);
    rows_.height = Height(window);
    rows_.rowBytes = static_cast<ptrdiff_t>(PixelBytes(kSample)) * rows_.width;
    rows_.sample = kSample;
  }
  const DeepTarget& rows() const { return rows_; }

 private:
  static constexpr DeepSample kSample = DeepSample::kFloat32;
  static int32_t Width(const ofx::RectI& window) { return window.x2 - window.x1; }
  static int32_t Height(const ofx::RectI& window) { return window.y2 - window.y1; }

  HostMemory memory_;
  DeepTarget rows_;
};

/// The source behind a window, from its top row on.
void FillBackdrop(const Image& source, const ofx::RectI& window, const DeepTarget& rows) {
  for (int32_t row = 0; row < rows.height; ++row) {
    auto* to = rows.Row<float>(row);
    for (int x = window.x1; x < window.x2; ++x) {
      const int y = window.y2 - 1 - row;
      const Pixel pixel = source.Holds(x, y) ? source.Read(x, y) : Pixel{};
      for (const double sample : pixel) *to++ = static_cast<float>(sample);
    }
  }
}

DeepJob JobOf(const frei0r::Adapter::Parts& parts, const ofx::RectI& frame,
              const ofx::RectI& window) {
  const DrawnFrame& drawn = parts.shown.frame;
  const FrameRects rects = ComputeFrameRects(drawn.geometry, drawn.photo, parts.shown.view);
  DeepJob job;
  job.sourceRect = rects.source;
  job.targetRect = rects.target;
  job.frame = drawn.geometry.output;
  job.left = window.x1 - frame.x1;
  job.top = frame.y2 - window.y2;
  job.filterMode = parts.shown.nearest ? 0 : parts.shown.filter;
  if (parts.background) {
    const auto level = [](uint8_t byte) { return static_cast<float>(byte) / 255.0f; };
    job.background = {level(parts.background->red), level(parts.background->green),
                      level(parts.background->blue), level(parts.background->alpha)};
  }
  return job;
}

}  // namespace

bool DrawDeepFrame(ofx::Effect effect, const frei0r::Adapter::Parts& parts, const Image* source,
                   const ofx::RectI& frame, const ofx::RectI& window, const Image& output,
                   std::string& reason) {
  const std::shared_ptr<const DeepPicture> photo = ProcessDeepPhotos().Get(parts.photo, reason);
  // The effect may still hold the file that another one has replaced.
  const PixelSize& size = parts.shown.frame.photo;
  if (!photo || photo->width() != size.width || photo->height() != size.height) return false;
  const bool video = source != nullptr && !parts.background;
  DeepJob job = JobOf(parts, frame, window);
  std::optional<Floats> backdrop;
  if (video) {
    FillBackdrop(*source, window, backdrop.emplace(effect, window).rows());
    job.backdrop = backdrop->rows();
  }
  const Floats drawn(effect, window);
  RenderDeep(job, photo->view(), drawn.rows());
  const frei0r::CoveredPixels covered =
      frei0r::CoveredBy(parts.shown.frame, parts.shown.view, job.frame, parts.shown.nearest);
  for (int y = window.y1; y < window.y2; ++y) {
    if (!output.Draws(y)) continue;
    const int row = frame.y2 - 1 - y;
    const auto* from = drawn.rows().Row<const float>(window.y2 - 1 - y);
    for (int x = window.x1; x < window.x2; ++x, from += 4) {
      const int column = x - frame.x1;
      // What the photo does not touch stays as it is to the bit.
      if (video && (row < covered.top || row >= covered.bottom || column < covered.left ||
                    column >= covered.right)) {
        output.CopyFrom(*source, x, y);
      } else {
        output.Write(x, y, {from[0], from[1], from[2], from[3]});
      }
    }
  }
  return true;
}

}  // namespace kelto::openfx
