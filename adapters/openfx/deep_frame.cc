#include "adapters/openfx/deep_frame.h"

#include "adapters/frei0r/covered_pixels.h"
#include "adapters/openfx/deep_photos.h"
#include "deep/engine.h"
#include "framing/frame_rects.h"

namespace kelto::openfx {
namespace {

/// The source behind a window, from its top row on.
DeepPicture Backdrop(const Image& source, const ofx::RectI& window) {
  DeepPicture picture(window.x2 - window.x1, window.y2 - window.y1, DeepSample::kFloat32, true);
  const DeepTarget rows = picture.view();
  for (int32_t row = 0; row < picture.height(); ++row) {
    auto* to = rows.Row<float>(row);
    for (int x = window.x1; x < window.x2; ++x) {
      const int y = window.y2 - 1 - row;
      const Pixel pixel = source.Holds(x, y) ? source.Read(x, y) : Pixel{};
      for (const double sample : pixel) *to++ = static_cast<float>(sample);
    }
  }
  return picture;
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
                      level(parts.background->blue), 1.0f};
  }
  return job;
}

}  // namespace

bool DrawDeepFrame(const frei0r::Adapter::Parts& parts, const Image* source,
                   const ofx::RectI& frame, const ofx::RectI& window, const Image& output) {
  const std::shared_ptr<const DeepPicture> photo = DeepPhoto(parts.photo);
  // The effect may still hold the file that another one has replaced.
  const PixelSize& size = parts.shown.frame.photo;
  if (!photo || photo->width() != size.width || photo->height() != size.height) return false;
  const bool video = source != nullptr && !parts.background;
  DeepJob job = JobOf(parts, frame, window);
  DeepPicture backdrop;
  if (video) {
    backdrop = Backdrop(*source, window);
    job.backdrop = std::as_const(backdrop).view();
  }
  DeepPicture drawn(window.x2 - window.x1, window.y2 - window.y1, DeepSample::kFloat32, true);
  RenderDeep(job, photo->view(), drawn.view());
  const frei0r::CoveredPixels covered =
      frei0r::CoveredBy(parts.shown.frame, parts.shown.view, job.frame, parts.shown.nearest);
  for (int y = window.y1; y < window.y2; ++y) {
    const int row = frame.y2 - 1 - y;
    const auto* from = std::as_const(drawn).view().Row<float>(window.y2 - 1 - y);
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
