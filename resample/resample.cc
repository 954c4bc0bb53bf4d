#include "resample/resample.h"

#include <algorithm>

#include "resample/background.h"
#include "resample/canvas.h"
#include "resample/filtered.h"
#include "resample/filters.h"
#include "resample/geometry.h"
#include "resample/realtime.h"

namespace kelto {
namespace {

/// The chroma choice with bytes that a source pixel has, whatever the caller asked for.
ChromaBytes ValidChroma(const ChromaBytes& chroma) {
  return {std::clamp(chroma.even, 0, 3), std::clamp(chroma.odd, 0, 3)};
}

void DrawFrameFiltered(const ResampleJob& job, const FilterSpec& filter, const Picture& picture,
                       PixelFormat format) {
  const Canvas canvas = MakeCanvas(job, format, true);
  if (canvas.Empty()) return;
  const FilteredPlan plan = PlanFiltered(job, canvas, filter, picture);
  // Pixels that the picture covers in part are mixed with the background already there.
  FillBackground(canvas, job.background, picture.columns.span.Whole(),
                 canvas.BufferRows(picture.rows.span.Whole()));
  DrawFiltered(plan);
}

void DrawFrameRealTime(const ResampleJob& job, const Picture& picture, PixelFormat format) {
  // Fields follow the host's mode here: without it, rows follow each other in any field mode.
  constexpr int32_t kInterlaced = 2;
  const Canvas canvas = MakeCanvas(job, format, job.interlaceSelector == kInterlaced);
  if (canvas.Empty()) return;
  const Range columns = picture.columns.span.Centres();
  const Range rows = canvas.BufferRows(picture.rows.span.Centres());
  FillBackground(canvas, job.background, columns, rows);
  DrawRealTime(canvas, job.source, job.chroma, picture, columns, rows);
}

void DrawFrame(const ResampleJob& request, PixelFormat format) {
  ResampleJob job = request;
  job.chroma = ValidChroma(request.chroma);
  const Picture picture = ClipJob(job) ? FramePicture(job) : Picture{};
  if (const FilterSpec* filter = FrameFilter(job.filterMode)) {
    DrawFrameFiltered(job, *filter, picture, format);
  } else {
    DrawFrameRealTime(job, picture, format);
  }
}

}  // namespace

void ResampleTo422(const ResampleJob& job) { DrawFrame(job, PixelFormat::kPacked422); }

void ResampleTo4Byte(const ResampleJob& job) { DrawFrame(job, PixelFormat::kFourByte); }

void ReduceImage(const ResampleJob& job) {
  const Canvas canvas = MakeCanvas(job, PixelFormat::kFourByte, true);
  const Picture picture = ReductionPicture(job);
  if (canvas.Empty() || picture.Empty()) return;
  if (const FilterSpec* filter = ReductionFilter(job.filterMode)) {
    DrawFiltered(PlanFiltered(job, canvas, *filter, picture));
  } else {
    DrawRealTime(canvas, job.source, job.chroma, picture, picture.columns.span.pixels,
                 canvas.BufferRows(picture.rows.span.pixels));
  }
}

}  // namespace kelto
